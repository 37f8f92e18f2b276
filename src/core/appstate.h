#pragma once
// The program-wide values the windows share: the current recipe type, the count of open
// working windows and the settings read into memory at start-up.

#include <QString>
#include <QStringList>

extern QString gRecipeType; // "Food", "Drink" or "Other"
extern qint16 gSubWindows;  // open search, cabinet, menu and editor windows

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
};

extern AppSettings gSettings;

// The three recipe types, in the order every type list shows them.
QStringList RecipeTypes();
// The code a recipe type is stored as: its first character ("F", "D", "O").
QString TypeCode(const QString &recipeType);
// A working window opened (load) or closed (unload).
void SubWindowOpened();
void SubWindowClosed();
