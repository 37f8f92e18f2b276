#pragma once
// The progress window shared by the whole program: a message, a bar and its percentage.

#include <QPointer>
#include <QWidget>

#include <memory>

class QLabel;
class QProgressBar;
class QPushButton;
class UserInputBlock;

class frmStatus : public QWidget
{
    Q_OBJECT
public:
    explicit frmStatus(QWidget *parent = nullptr);

    QLabel *lblMessage;
    QProgressBar *pgbStatus;
    QLabel *lblPct;
    // Shown only while a task that may be stopped runs.
    QPushButton *cmdCancel;
};

// Shows the status window (creating it when needed) with the message.
void ShowStatus(const QString &message);
// Sets the progress bar (and its percentage) and repaints.
void SetStatusProgress(int value);
// One step of a long task: the message and the bar's value. The window is repainted at most
// every 50 ms (and at the last step), so thousands of quick steps do not spend their time
// painting.
void ShowStatusStep(const QString &message, int value);
// Sets the bar's end value (100 unless told).
void SetStatusMaximum(int maximum);
// Unloads the status window.
void CloseStatus();
// The shared instance, or nullptr while none is shown.
frmStatus *StatusWindow();

// Closes the status window when the scope ends, whichever way it ends.
class StatusGuard
{
public:
    explicit StatusGuard(const QString &message) { ShowStatus(message); }
    ~StatusGuard() { CloseStatus(); }
    StatusGuard(const StatusGuard &) = delete;
    StatusGuard &operator=(const StatusGuard &) = delete;
};

// While it lives, the status window shows Cancel, and each step of the task (ShowStatusStep)
// lets a click reach it; every other click and key is dropped meanwhile. The task asks
// requested() between its steps and stops there.
class StatusCancel
{
public:
    StatusCancel();
    ~StatusCancel();
    bool requested() const { return m_requested; }
    StatusCancel(const StatusCancel &) = delete;
    StatusCancel &operator=(const StatusCancel &) = delete;

private:
    bool m_requested = false;
    QPointer<frmStatus> m_window;
    QMetaObject::Connection m_clicked;
    std::unique_ptr<UserInputBlock> m_block;
};
