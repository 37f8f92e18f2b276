#pragma once
// Small helpers every window uses on its controls.

#include <QObject>
#include <QPointer>
#include <QString>

class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QTreeWidget;
class QWidget;

// Gives a control its name (the name the product knows it by) and returns it.
template<typename W>
W *Named(W *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

// An editable combo box whose own completion is off (the type-ahead of InstallSeek decides)
// and which never adds what is typed to its list.
QComboBox *NewEditableCombo(QWidget *parent, const char *name);

// Greys a control: disabled, a text or combo box on the button-face colour, a list without
// selection.
void DisableControl(QWidget *control);
// Enables a control: a text or combo box back on the desktop's own colours (white on a light
// desktop).
void EnableControl(QWidget *control);
// True when the list has items and its current item is selected.
bool HasSelection(const QTreeWidget *list);
// Selects the whole text of the box.
void SelectAllText(QLineEdit *box);
// Fills a combo box with "Food", "Drink", "Other".
void FillRecipeTypes(QComboBox *combo);
// Type-ahead completion of an editable combo box from its own list: typing the start of an
// entry (without regard to case) completes it, the completed rest selected so that typing
// goes on. Deleting never completes. Runs only while enabled() says so.
void InstallSeek(QComboBox *combo, bool (*enabled)());

// The one window of its kind: made on first use (and deleted when it closes), shown and
// brought forward.
template<typename W>
W *ShowOnly(QPointer<W> &window)
{
    if (!window) {
        window = new W;
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

// The hourglass pointer for the lifetime of the guard.
class WaitCursor
{
public:
    WaitCursor();
    ~WaitCursor();
    WaitCursor(const WaitCursor &) = delete;
    WaitCursor &operator=(const WaitCursor &) = delete;
};

// A time typed as hours and minutes: the colons are dropped and the number written back as
// "00:00", the last two digits being the minutes (130 and 1:30 give 01:30, 7:5 gives 00:75).
QString NormaliseTimeText(const QString &text);
// Fills a combo box with the display values of a list section.
void LoadIniList(QComboBox *combo, const QString &section);
// Lets every single-line box of the window take a text of any length, as the database's
// columns do: a long text pasted into a box would otherwise be cut at 32,767 characters.
void AllowAnyLength(QWidget *window);
// Sizes the window to the size it is laid out for, or smaller to fit the screen's available area
// (a small screen, a large scale), and places it inside that area.
void FitToScreen(QWidget *window, int width, int height);
