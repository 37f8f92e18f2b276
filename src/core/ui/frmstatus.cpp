#include "frmstatus.h"

#include "core/ui/msgbox.h"
#include "core/ui/userinputblock.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace {
QPointer<frmStatus> g_status;
bool g_cancellable = false;
} // namespace

frmStatus::frmStatus(QWidget *parent) : QWidget(parent, Qt::Tool | Qt::WindowTitleHint | Qt::CustomizeWindowHint)
{
    setObjectName(QStringLiteral("frmStatus"));
    setWindowTitle(ProgramTitle());
    setAttribute(Qt::WA_DeleteOnClose);
    lblMessage = new QLabel(this);
    lblMessage->setObjectName(QStringLiteral("lblMessage"));
    lblMessage->setWordWrap(true);
    lblMessage->setMinimumWidth(360);
    pgbStatus = new QProgressBar(this);
    pgbStatus->setObjectName(QStringLiteral("pgbStatus"));
    pgbStatus->setTextVisible(false);
    pgbStatus->setRange(0, 100);
    lblPct = new QLabel(QStringLiteral("0%"), this);
    lblPct->setObjectName(QStringLiteral("lblPct"));
    lblPct->setAlignment(Qt::AlignCenter);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->hide();
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblMessage);
    layout->addWidget(pgbStatus);
    layout->addWidget(lblPct);
    layout->addWidget(cmdCancel, 0, Qt::AlignHCenter);
    // A notice has no progress to show: the bar appears with the first progress set.
    pgbStatus->hide();
    lblPct->hide();
}

void ShowStatus(const QString &message)
{
    if (!g_status)
        g_status = new frmStatus;
    g_status->lblMessage->setText(message);
    g_status->adjustSize();
    // Over the window the user is working in, or the middle of the screen.
    const QWidget *over = QApplication::activeWindow();
    const QRect area =
        over && over != g_status ? over->frameGeometry() : QApplication::primaryScreen()->availableGeometry();
    g_status->move(area.center() - g_status->rect().center());
    g_status->show();
    g_status->repaint();
}

void SetStatusMaximum(int maximum)
{
    if (g_status)
        g_status->pgbStatus->setMaximum(std::max(1, maximum));
}

void SetStatusProgress(int value)
{
    if (!g_status)
        return;
    QProgressBar *bar = g_status->pgbStatus;
    bar->setValue(std::clamp(value, bar->minimum(), bar->maximum()));
    if (bar->isHidden()) {
        bar->show();
        g_status->lblPct->show();
        g_status->adjustSize();
    }
    g_status->lblPct->setText(QString::number(100 * bar->value() / std::max(1, bar->maximum())) + u'%');
    g_status->repaint();
}

void ShowStatusStep(const QString &message, int value)
{
    static QElapsedTimer sincePaint;
    if (!g_status) {
        ShowStatus(message);
        sincePaint.start();
    }
    QProgressBar *bar = g_status->pgbStatus;
    const bool paint =
        !sincePaint.isValid() || sincePaint.elapsed() >= 50 || value >= bar->maximum() || bar->isHidden();
    if (!paint) {
        // Painted with the next step that is due.
        g_status->lblMessage->setText(message);
        bar->setValue(std::clamp(value, bar->minimum(), bar->maximum()));
        return;
    }
    g_status->lblMessage->setText(message);
    SetStatusProgress(value);
    if (g_cancellable) // a click on Cancel is seen here, between two steps
        QCoreApplication::processEvents();
    sincePaint.start();
}

void CloseStatus()
{
    if (g_status)
        g_status->close();
    g_status = nullptr;
}

frmStatus *StatusWindow()
{
    return g_status;
}

StatusCancel::StatusCancel()
{
    if (!g_status)
        return;
    m_window = g_status;
    g_cancellable = true;
    m_block = std::make_unique<UserInputBlock>(g_status);
    m_clicked = QObject::connect(g_status->cmdCancel, &QPushButton::clicked, g_status, [this] { m_requested = true; });
    g_status->cmdCancel->show();
    g_status->cmdCancel->setFocus();
    g_status->adjustSize();
}

StatusCancel::~StatusCancel()
{
    g_cancellable = false;
    // Its own window, whichever is shown now: the click must never reach a guard that is gone.
    QObject::disconnect(m_clicked);
    if (m_window)
        m_window->cmdCancel->hide();
}
