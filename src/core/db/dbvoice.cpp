#include "dbvoice.h"

#include <QLoggingCategory>
#include <QThread>

namespace {

Q_LOGGING_CATEGORY(lcDatabase, "mirepan.database")

// Without windows (reg_vesk, a tool): failures go to the log, waits simply pass.
class LogVoice : public DatabaseVoice
{
public:
    void report(const QString &text, const QString &title) override
    {
        qCWarning(lcDatabase).noquote() << title << ':' << text;
    }
    bool waiting(const QString &, int, int) override { return true; }
    void waitEnded() override { }
    void working(const QString &) override { }
    void workEnded() override { }
};

DatabaseVoice *g_voice = nullptr;

} // namespace

void SetDatabaseVoice(DatabaseVoice *voice)
{
    g_voice = voice;
}

DatabaseVoice &TheDatabaseVoice()
{
    static LogVoice log;
    return g_voice ? *g_voice : log;
}

DatabaseWork::DatabaseWork(const QString &text)
{
    TheDatabaseVoice().working(text);
}

DatabaseWork::~DatabaseWork()
{
    TheDatabaseVoice().workEnded();
}
