#include "msgbox.h"

#include "core/ui/userinputblock.h"

#include <QApplication>
#include <QDateTime>
#include <QDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>

namespace {
Responder *g_responder = nullptr;

QMessageBox::Icon toQtIcon(MsgIcon icon)
{
    switch (icon) {
    case MsgIcon::Question:
        return QMessageBox::Question;
    case MsgIcon::Critical:
        return QMessageBox::Critical;
    case MsgIcon::Information:
        return QMessageBox::Information;
    case MsgIcon::Exclamation:
        return QMessageBox::Warning;
    case MsgIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}
} // namespace

QString ProgramTitle()
{
    return QStringLiteral("Mirepan");
}

void SetResponder(Responder *responder)
{
    g_responder = responder;
}

MsgResult MsgBox(const QString &prompt, MsgStyle style, const QString &title)
{
    const QString caption = title.isEmpty() ? ProgramTitle() : title;
    if (g_responder)
        return g_responder->messageBox(prompt, style, caption);

    QMessageBox box(toQtIcon(style.icon), caption, prompt, QMessageBox::NoButton, QApplication::activeWindow());
    switch (style.buttons) {
    case MsgButtons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case MsgButtons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(style.defaultNo ? QMessageBox::No : QMessageBox::Yes);
        box.setEscapeButton(QMessageBox::No);
        break;
    case MsgButtons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        box.setDefaultButton(QMessageBox::Ok);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Yes:
        return MsgResult::Yes;
    case QMessageBox::No:
        return MsgResult::No;
    case QMessageBox::Cancel:
        return MsgResult::Cancel;
    default:
        return MsgResult::Ok;
    }
}

int ChooseAction(const QString &prompt, const QString &title, const QStringList &choices, int safeChoice, MsgIcon icon)
{
    const QString caption = title.isEmpty() ? ProgramTitle() : title;
    if (g_responder)
        return g_responder->choice(prompt, caption, choices, safeChoice);
    QMessageBox box(toQtIcon(icon), caption, prompt, QMessageBox::NoButton, QApplication::activeWindow());
    QList<QAbstractButton *> buttons;
    for (const QString &text : choices)
        buttons.append(box.addButton(text, QMessageBox::ActionRole));
    box.setDefaultButton(static_cast<QPushButton *>(buttons.value(safeChoice)));
    box.setEscapeButton(buttons.value(safeChoice));
    box.exec();
    const qsizetype pressed = buttons.indexOf(box.clickedButton());
    return pressed < 0 ? safeChoice : int(pressed);
}

QString InputBox(const QString &prompt, const QString &title, const QString &defaultText)
{
    const QString caption = title.isEmpty() ? ProgramTitle() : title;
    if (g_responder)
        return g_responder->inputBox(prompt, caption, defaultText);
    bool ok = false;
    const QString answer =
        QInputDialog::getText(QApplication::activeWindow(), caption, prompt, QLineEdit::Normal, defaultText, &ok);
    return ok ? answer : QString();
}

QString AskFileName(const QString &title, const QString &current, const QString &filter, FileUse use)
{
    if (g_responder)
        return g_responder->fileName(title, current);
    QWidget *parent = QApplication::activeWindow();
    if (use == FileUse::Open)
        return QFileDialog::getOpenFileName(parent, title, current, filter);
    if (use == FileUse::Export)
        return QFileDialog::getSaveFileName(parent, title, current, filter);
    // The file is only named here; it is written (and replaced) when the command runs.
    return QFileDialog::getSaveFileName(parent, title, current, filter, nullptr, QFileDialog::DontConfirmOverwrite);
}

QStringList AskFileNames(const QString &title, const QString &current, const QString &filter)
{
    if (g_responder)
        return g_responder->fileNames(title, current);
    return QFileDialog::getOpenFileNames(QApplication::activeWindow(), title, current, filter);
}

void ShowModal(QDialog *dialog)
{
    if (g_responder) {
        g_responder->showModal(dialog);
        return;
    }
    dialog->exec();
}

void Wait(double seconds)
{
    const UserInputBlock block;
    if (g_responder) {
        g_responder->wait(seconds);
        return;
    }
    const QDateTime end = QDateTime::currentDateTime().addMSecs(qint64(seconds * 1000));
    while (QDateTime::currentDateTime() < end) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 100);
        QThread::msleep(100);
    }
}

QString MessageList(const QStringList &lines)
{
    constexpr qsizetype kListed = 20;
    QString list = lines.mid(0, kListed).join(u'\n');
    if (lines.size() > kListed)
        list += QStringLiteral("\n... and %1 more").arg(lines.size() - kListed);
    return list;
}
