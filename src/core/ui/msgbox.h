#pragma once
// The one seam through which Mirepan asks questions and gives notices.
//
// Every message box, input box, timed wait and modal sub-dialog goes through these functions.
// Production shows Qt dialogs; a test installs a Responder that records each box and
// answers from a script, so no test ever blocks on a modal window.

#include <QString>
#include <QStringList>

class QDialog;

enum class MsgButtons { Ok, YesNo, OkCancel };
enum class MsgIcon { None, Question, Critical, Information, Exclamation };
enum class MsgResult { Ok, Yes, No, Cancel };

struct MsgStyle {
    MsgButtons buttons = MsgButtons::Ok;
    MsgIcon icon = MsgIcon::None;
    // Yes/No questions default to Yes; a few questions make No (keep the old line) the default.
    bool defaultNo = false;
};

namespace Msg {
inline constexpr MsgStyle Ok {};
inline constexpr MsgStyle Critical {MsgButtons::Ok, MsgIcon::Critical};
inline constexpr MsgStyle Information {MsgButtons::Ok, MsgIcon::Information};
inline constexpr MsgStyle Question {MsgButtons::YesNo, MsgIcon::Question};
inline constexpr MsgStyle QuestionDefaultNo {MsgButtons::YesNo, MsgIcon::Question, true};
} // namespace Msg

// The title a box gets when its message names none.
QString ProgramTitle();

// Shows a message box; an empty title means the program's title.
MsgResult MsgBox(const QString &prompt, MsgStyle style = Msg::Ok, const QString &title = {});
// Offers the choices as buttons under a critical message ("&Locate..."); answers the index of
// the one pressed. The safe choice is the default and what closing the box answers.
int ChooseAction(const QString &prompt, const QString &title, const QStringList &choices, int safeChoice,
                 MsgIcon icon = MsgIcon::Critical);
// Asks for a line of text; returns "" for Cancel.
QString InputBox(const QString &prompt, const QString &title = {}, const QString &defaultText = {});
// Asks for a file with the desktop's file dialog, starting at current; filter as Qt writes it
// ("Rich text (*.rtf);;All files (*)"). A file to write need not exist. "" for Cancel.
// Save names a file the command replaces without asking (its own settings); Export asks
// before replacing a file that exists.
enum class FileUse { Open, Save, Export };
QString AskFileName(const QString &title, const QString &current, const QString &filter, FileUse use);
// Asks for one or more files to read; none for Cancel.
QStringList AskFileNames(const QString &title, const QString &current, const QString &filter);
// A list for a message: one line each, the first 20 and then how many more there are.
QString MessageList(const QStringList &lines);
// Shows a dialog modally and returns when it has been hidden.
void ShowModal(QDialog *dialog);
// Waits the given seconds while the windows keep painting; the user's clicks and keys
// meanwhile are dropped.
void Wait(double seconds);

class Responder
{
public:
    virtual ~Responder() = default;
    virtual MsgResult messageBox(const QString &prompt, MsgStyle style, const QString &title) = 0;
    virtual QString inputBox(const QString &prompt, const QString &title, const QString &defaultText) = 0;
    virtual QString fileName(const QString &title, const QString &current) = 0;
    // One answer of fileName, a name a line.
    virtual QStringList fileNames(const QString &title, const QString &current)
    {
        const QString names = fileName(title, current);
        return names.isEmpty() ? QStringList() : names.split(u'\n');
    }
    virtual void showModal(QDialog *dialog) = 0;
    // One answer of ChooseAction: the index of a choice.
    virtual int choice(const QString &prompt, const QString &title, const QStringList &choices, int safeChoice)
    {
        Q_UNUSED(prompt)
        Q_UNUSED(title)
        Q_UNUSED(choices)
        return safeChoice;
    }
    virtual void wait(double seconds) = 0;
};

// Installs a responder (nullptr restores the real dialogs). Not owned.
void SetResponder(Responder *responder);
