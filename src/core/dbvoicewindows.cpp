#include "dbvoicewindows.h"

#include "dbvoice.h"
#include "frmstatus.h"
#include "msgbox.h"

#include <QLabel>
#include <QProgressBar>

namespace {

class WindowVoice : public DatabaseVoice
{
public:
    void report(const QString &text, const QString &title) override { MsgBox(text, Msg::Critical, title); }

    bool waiting(const QString &text, int elapsedMs, int limitMs) override
    {
        if (!m_waiting) {
            m_waiting = true;
            // A wait inside a longer task (an import) borrows its progress window and gives it
            // back as it was.
            m_borrowed = StatusWindow() != nullptr;
            if (m_borrowed) {
                m_previous = StatusWindow()->lblMessage->text();
                m_previousMaximum = StatusWindow()->pgbStatus->maximum();
                m_previousValue = StatusWindow()->pgbStatus->value();
            } else {
                ShowStatus(text);
            }
        }
        if (frmStatus *status = StatusWindow()) {
            status->lblMessage->setText(text);
            SetStatusMaximum(limitMs);
            SetStatusProgress(elapsedMs);
        }
        return true;
    }

    void waitEnded() override
    {
        if (!m_waiting)
            return;
        m_waiting = false;
        if (!m_borrowed)
            CloseStatus();
        else if (frmStatus *status = StatusWindow()) {
            status->lblMessage->setText(m_previous);
            SetStatusMaximum(m_previousMaximum);
            SetStatusProgress(m_previousValue);
        }
    }

private:
    bool m_waiting = false;
    bool m_borrowed = false;
    QString m_previous;
    int m_previousMaximum = 100;
    int m_previousValue = 0;
};

} // namespace

void InstallWindowDatabaseVoice()
{
    static WindowVoice voice;
    SetDatabaseVoice(&voice);
}
