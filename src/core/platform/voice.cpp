#include "voice.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcVoice, "mirepan.voice")

Voice *g_voice = nullptr;

} // namespace

void Voice::report(const QString &text, const QString &title)
{
    qCWarning(lcVoice).noquote() << title << ':' << text;
}

void Voice::notice(const QString &text, const QString &title)
{
    qCInfo(lcVoice).noquote() << title << ':' << text;
}

bool Voice::waiting(const QString &, int, int)
{
    return true;
}

void Voice::working(const QString &text)
{
    qCDebug(lcVoice).noquote() << text;
}

void SetVoice(Voice *voice)
{
    g_voice = voice;
}

Voice &TheVoice()
{
    static Voice log;
    return g_voice ? *g_voice : log;
}

WorkingNotice::WorkingNotice(const QString &text)
{
    TheVoice().working(text);
}

WorkingNotice::~WorkingNotice()
{
    TheVoice().workEnded();
}
