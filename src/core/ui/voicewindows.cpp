#include "voicewindows.h"

#include "core/db/database.h"
#include "core/platform/voice.h"
#include "core/ui/frmstatus.h"
#include "core/ui/msgbox.h"

#include <QLabel>
#include <QProgressBar>

namespace {

// The progress window for a wait or a task of the session. One inside a longer task (an
// import, a backup) borrows that task's window and gives it back as it was, so the task's own
// guard is the one that closes it.
class BorrowedStatus
{
public:
    void begin(const QString &text)
    {
        if (m_active)
            return;
        m_active = true;
        m_borrowed = StatusWindow() != nullptr;
        if (m_borrowed) {
            frmStatus *status = StatusWindow();
            m_previous = status->lblMessage->text();
            m_previousMaximum = status->pgbStatus->maximum();
            m_previousValue = status->pgbStatus->value();
            m_previousBar = !status->pgbStatus->isHidden();
            status->lblMessage->setText(text);
            status->repaint();
        } else {
            ShowStatus(text);
        }
    }

    void end()
    {
        if (!m_active)
            return;
        m_active = false;
        if (!m_borrowed) {
            CloseStatus();
        } else if (frmStatus *status = StatusWindow()) {
            status->lblMessage->setText(m_previous);
            if (m_previousBar) {
                SetStatusMaximum(m_previousMaximum);
                SetStatusProgress(m_previousValue);
            }
            status->repaint();
        }
    }

private:
    bool m_active = false;
    bool m_borrowed = false;
    QString m_previous;
    int m_previousMaximum = 100;
    int m_previousValue = 0;
    bool m_previousBar = false;
};

class WindowVoice : public Voice
{
public:
    void report(const QString &text, const QString &title) override { MsgBox(text, Msg::Critical, title); }
    void notice(const QString &text, const QString &title) override { MsgBox(text, Msg::Ok, title); }

    bool waiting(const QString &text, int elapsedMs, int limitMs) override
    {
        m_wait.begin(text);
        if (frmStatus *status = StatusWindow()) {
            status->lblMessage->setText(text);
            SetStatusMaximum(limitMs);
            SetStatusProgress(elapsedMs);
        }
        return true;
    }
    void waitEnded() override { m_wait.end(); }
    void working(const QString &text) override { m_work.begin(text); }
    void workEnded() override { m_work.end(); }

private:
    BorrowedStatus m_wait;
    BorrowedStatus m_work;
};

} // namespace

void InstallWindowVoice()
{
    static WindowVoice voice;
    SetVoice(&voice);
}

bool ReportNotConnected()
{
    if (!gNotConnected)
        return false;
    MsgBox(QStringLiteral("Because you were not able to connect to the database, this function "
                          "has been disabled."),
           Msg::Ok, QStringLiteral("Message"));
    return true;
}
