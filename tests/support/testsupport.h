#pragma once
// What the tests of windows share, beside testhome.h: a scripted answerer for message boxes,
// a fake shell, and the session fixture.

#include "testhome.h"

#include "core/ui/msgbox.h"
#include "core/ui/shell.h"

#include <QList>
#include <QObject>
#include <QPalette>
#include <QQueue>
#include <QStringList>
#include <QTemporaryDir>

class QRandomGenerator;
class QTreeWidget;

#include <functional>

#include <memory>

struct RecordedBox {
    QString prompt;
    QString title;
    MsgStyle style;
};

// Records every box and answers from a script. Yes/No questions need a scripted answer; an
// unscripted question is a failure (answered No so nothing is changed). OK boxes need none.
class ScriptedResponder : public Responder
{
public:
    ScriptedResponder();
    ~ScriptedResponder() override;

    void answer(MsgResult result) { m_answers.enqueue(result); }
    void answerInput(const QString &text) { m_inputs.enqueue(text); }
    void answerFile(const QString &path) { m_files.enqueue(path); }
    void answerChoice(int index) { m_choices.enqueue(index); }
    // What to do with the next modal dialog (fill it, press its buttons); it must hide it.
    void onModal(std::function<void(QDialog *)> handler) { m_modals.enqueue(std::move(handler)); }
    // What the user does during the next wait (clicks, keys).
    std::function<void()> duringWait;

    MsgResult messageBox(const QString &prompt, MsgStyle style, const QString &title) override;
    QString inputBox(const QString &prompt, const QString &title, const QString &defaultText) override;
    QString fileName(const QString &title, const QString &current) override;
    void showModal(QDialog *dialog) override;
    int choice(const QString &prompt, const QString &title, const QStringList &choices, int safeChoice) override;
    void wait(double seconds) override;

    QList<RecordedBox> boxes;
    QStringList inputPrompts;
    QStringList inputDefaults;
    QStringList fileDialogs; // title, then the name it started from
    QStringList failures;
    // The status window's message at each wait.
    QStringList statusAtWait;
    double waited() const { return m_waited; }
    // Prompts of all boxes shown, in order.
    QStringList prompts() const;
    // True when every scripted answer was used and nothing unexpected happened.
    bool clean() const;
    QString report() const;
    void clear();

private:
    QQueue<MsgResult> m_answers;
    QQueue<QString> m_inputs;
    QQueue<QString> m_files;
    QQueue<int> m_choices;
    QQueue<std::function<void(QDialog *)>> m_modals;
    double m_waited = 0;
};

// Records what would be started or opened; optionally runs the started program at once.
class FakeShell : public ShellHook
{
public:
    FakeShell() { SetShellHook(this); }
    ~FakeShell() override { SetShellHook(nullptr); }
    void startProgram(const QString &program, const QStringList &arguments) override;
    bool openDocument(const QString &path) override;

    QStringList started;
    QStringList opened;
    // When set, programs named reg_vesk run synchronously from this path.
    QString regVesk;
};

// A test class whose every test function gets a fresh session: a program directory (with an
// open database unless told otherwise), the program-wide values as at start-up, and the
// scripted responder; a box that came unexpected fails the test. A class with more to set up
// declares its own init() and cleanup() and calls these first.
class SessionTest : public QObject
{
    Q_OBJECT
protected:
    explicit SessionTest(bool withDatabase = true) : m_withDatabase(withDatabase) { }
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<ScriptedResponder> m_boxes;

protected Q_SLOTS:
    void init();
    // Fails the test when a box came unexpected or a scripted answer went unused.
    void cleanup();

private:
    bool m_withDatabase;
};

// The texts of a list's column, top to bottom.
QStringList ColumnTexts(const QTreeWidget *list, int column = 0);

// A dark desktop's palette, for the windows' looks on one.
QPalette DarkDesktopPalette();

// Saves a picture of the widget under $MIREPAN_SCREENSHOTS (when set) for a look by eye.
void SaveScreenshot(QWidget *widget, const QString &name);
