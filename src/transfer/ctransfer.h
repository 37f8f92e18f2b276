#pragma once
// cTransfer: recipes exchanged with other households through one transfer file, a file of the
// settings file's form with a section per recipe ([1], [2], ...), the number of the last one in
// [ID] Max, and [Imported] Flag=True once it has been read in.
//
// A section holds Servings, Type, Category, Title, PrepTime, CookTime, Notes and Rating in that
// order, then Ing1, Ing2, ... ("amount | measure | ingredient | cabinet") and Dir1, Dir2, ...
// ("step | direction"). Values are written as they stand. The file's reading and writing are
// in transferfile.h; this is the command the household sees.

#include <QString>
#include <QStringList>

class cTransfer
{
public:
    // The transfer file named in the settings (a bare name is in the program directory).
    cTransfer();

    QString FileName;

    // Appends the recipes (seven-digit identifiers) as the sections after Max, in one write.
    void Export(const QStringList &chosen);
    // Asks, then adds every recipe of the file as a new recipe, section by section from 1 to
    // the first missing one.
    void Import();
    // The n-th field (from 1) of a value split at " | ", without the blanks at its ends; the
    // last field runs to the end of the value; "" past the last field.
    static QString SubItem(const QString &value, int n);

private:
    // Why a recipe or a line of the file being imported was left out, one line each.
    QStringList m_leftOut;
};
