#pragma once
// The program-wide values the windows share: the current recipe type, the count of open
// working windows and the settings read into memory at start-up.

#include <QString>
#include <QStringList>

extern QString gRecipeType; // "Food", "Drink" or "Other"
extern qint16 gSubWindows; // open search, cabinet, menu and editor windows

struct AppSettings {
    int BaseFontSize = 9;
    bool NewPage = true;
    bool BlankLines = true;
    bool PageNumbers = false;
    QString Transfer;
    QString Preview;
    QString Database;
    bool RecipeView = true;
    bool Seek = true;
    bool SeekAmount = false;
    bool StandardAdd = false;
    bool OnlyNewRecipes = false;
    // How the recipe view and the report show amounts: "" as written, "US" or "Metric".
    QString ShowMeasures;
    // Whether the needed amounts sum compatible measures into one amount.
    bool CombineMeasures = false;
};

extern AppSettings gSettings;

// The three recipe types, in the order every type list shows them.
QStringList RecipeTypes();
// The code a recipe type is stored as: its first character ("F", "D", "O").
QString TypeCode(const QString &recipeType);

// A working window's place in the open-window count: counted from its load until it closes
// (or is destroyed without closing), once each.
class SubWindowCount
{
public:
    SubWindowCount() = default;
    ~SubWindowCount() { unload(); }
    SubWindowCount(const SubWindowCount &) = delete;
    SubWindowCount &operator=(const SubWindowCount &) = delete;
    // True the first time only: the window loads now and is counted.
    bool load();
    void unload();
    bool loaded() const { return m_state != State::Fresh; }

private:
    enum class State { Fresh, Open, Closed };
    State m_state = State::Fresh;
};
