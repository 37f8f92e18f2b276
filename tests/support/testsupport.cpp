#include "testsupport.h"

#include "core/platform/appstate.h"
#include "core/platform/atomicfile.h"
#include "core/db/database.h"
#include "core/ui/voicewindows.h"
#include "core/db/datasources.h"
#include "core/db/schema.h"
#include "core/ui/frmstatus.h"
#include "core/platform/platform.h"
#include "recipes/reciperepository.h"

#include <QCoreApplication>
#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QLabel>
#include <QWidget>

#include <QDialog>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <QTest>
#include <QTreeWidget>

#include <utility>

ScriptedResponder::ScriptedResponder()
{
    SetResponder(this);
    InstallWindowVoice();
}

ScriptedResponder::~ScriptedResponder()
{
    SetResponder(nullptr);
}

MsgResult ScriptedResponder::messageBox(const QString &prompt, MsgStyle style, const QString &title)
{
    boxes.append({prompt, title, style});
    if (style.buttons == MsgButtons::Ok) {
        if (!m_answers.isEmpty() && m_answers.head() == MsgResult::Ok)
            m_answers.dequeue();
        return MsgResult::Ok;
    }
    if (m_answers.isEmpty()) {
        failures.append(QStringLiteral("unscripted question: ") + prompt);
        return MsgResult::No;
    }
    return m_answers.dequeue();
}

int ScriptedResponder::choice(const QString &prompt, const QString &title, const QStringList &choices, int safeChoice)
{
    boxes.append({prompt + QStringLiteral("\n[") + choices.join(QStringLiteral("] [")) + u']', title, Msg::Critical});
    if (m_choices.isEmpty()) {
        failures.append(QStringLiteral("unscripted choice: ") + prompt);
        return safeChoice;
    }
    return m_choices.dequeue();
}

QString ScriptedResponder::inputBox(const QString &prompt, const QString &title, const QString &defaultText)
{
    Q_UNUSED(title);
    inputPrompts.append(prompt);
    inputDefaults.append(defaultText);
    if (m_inputs.isEmpty()) {
        failures.append(QStringLiteral("unscripted input box: ") + prompt);
        return {};
    }
    return m_inputs.dequeue();
}

QString ScriptedResponder::fileName(const QString &title, const QString &current)
{
    fileDialogs << title << current;
    if (m_files.isEmpty()) {
        failures.append(QStringLiteral("unscripted file dialog: ") + title);
        return {};
    }
    return m_files.dequeue();
}

void ScriptedResponder::showModal(QDialog *dialog)
{
    if (m_modals.isEmpty()) {
        failures.append(QStringLiteral("unscripted modal dialog: ") + dialog->objectName());
        dialog->hide();
        return;
    }
    dialog->show();
    m_modals.dequeue()(dialog);
    if (dialog->isVisible()) {
        failures.append(QStringLiteral("modal dialog left open: ") + dialog->objectName());
        dialog->hide();
    }
}

QStringList ScriptedResponder::prompts() const
{
    QStringList list;
    for (const RecordedBox &box : boxes)
        list.append(box.prompt);
    return list;
}

bool ScriptedResponder::clean() const
{
    return failures.isEmpty() && m_answers.isEmpty() && m_inputs.isEmpty() && m_files.isEmpty() && m_modals.isEmpty() &&
           m_choices.isEmpty();
}

QString ScriptedResponder::report() const
{
    QStringList lines = failures;
    if (!m_answers.isEmpty())
        lines.append(QStringLiteral("%1 scripted answers unused").arg(m_answers.size()));
    if (!m_inputs.isEmpty())
        lines.append(QStringLiteral("%1 scripted inputs unused").arg(m_inputs.size()));
    if (!m_files.isEmpty())
        lines.append(QStringLiteral("%1 scripted file names unused").arg(m_files.size()));
    if (!m_modals.isEmpty())
        lines.append(QStringLiteral("%1 modal handlers unused").arg(m_modals.size()));
    lines.append(QStringLiteral("boxes: ") + prompts().join(QStringLiteral(" | ")));
    return lines.join(u'\n');
}

void ScriptedResponder::clear()
{
    boxes.clear();
    inputPrompts.clear();
    inputDefaults.clear();
    failures.clear();
    m_answers.clear();
    m_inputs.clear();
    m_files.clear();
    m_choices.clear();
    fileDialogs.clear();
    m_modals.clear();
    m_waited = 0;
}

void FakeShell::startProgram(const QString &program, const QStringList &arguments)
{
    started.append(program + u' ' + arguments.join(u' '));
    if (!regVesk.isEmpty() && program.endsWith(QStringLiteral("reg_vesk")))
        QProcess::execute(regVesk, arguments);
}

bool FakeShell::openDocument(const QString &path)
{
    opened.append(path);
    return QFile::exists(path);
}

void SessionTest::init()
{
    m_home = std::make_unique<TestHome>();
    if (m_withDatabase)
        m_home->createAndOpenDatabase();
    m_boxes = std::make_unique<ScriptedResponder>();
    ResetSessionValues();
}

void SessionTest::cleanup()
{
    const bool clean = m_boxes->clean();
    const QString report = m_boxes->report();
    m_boxes.reset();
    m_home.reset();
    QVERIFY2(clean, qPrintable(report));
}

QStringList ColumnTexts(const QTreeWidget *list, int column)
{
    QStringList texts;
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        texts.append(list->topLevelItem(i)->text(column));
    return texts;
}

void ScriptedResponder::wait(double seconds)
{
    m_waited += seconds;
    if (frmStatus *status = StatusWindow())
        statusAtWait.append(status->lblMessage->text());
    if (duringWait)
        std::exchange(duringWait, nullptr)(); // once: what it starts may wait again
}

QPalette DarkDesktopPalette()
{
    QPalette dark(QColor(50, 50, 50));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::WindowText, Qt::white);
    return dark;
}

void SaveScreenshot(QWidget *widget, const QString &name)
{
    const QString dir = qEnvironmentVariable("MIREPAN_SCREENSHOTS");
    if (dir.isEmpty())
        return;
    QDir().mkpath(dir);
    widget->grab().save(QDir(dir).filePath(name + QStringLiteral(".png")));
}
