#pragma once
// The recipes the transfer tests send and the looks they take at what came back, shared by the
// tests of the file and of the commands.

#include "core/db/database.h"
#include "recipes/reciperepository.h"
#include "support/testhome.h"

// A soup of the given number of ingredient lines and steps, every field filled.
inline RecipeData TransferRecipe(const QString &title, int ingredients = 2, int directions = 1)
{
    QStringList lines, steps;
    for (int i = 1; i <= ingredients; ++i)
        lines << QStringLiteral("%1|cups|onions, sliced %1|onion").arg(i);
    for (int i = 1; i <= directions; ++i)
        steps << QStringLiteral("Step %1.").arg(i);
    RecipeData r = TestRecipe(title, lines, steps);
    r.servings = QStringLiteral("4");
    r.category = QStringLiteral("Soup");
    r.prepTime = QStringLiteral("00:15");
    r.cookTime = QStringLiteral("00:40");
    r.rating = QStringLiteral("3");
    return r;
}

// Stores the recipe under the next identifier and answers it in the search window's form.
inline QString store(const RecipeData &r)
{
    return SevenDigits(StoreTestRecipe(r));
}

inline QString describe(qint32 id)
{
    return Describe(LoadRecipe(id));
}

inline QStringList titlesFrom(qint32 firstId)
{
    QStringList titles;
    for (Recordset rs = ExecuteSQL(QStringLiteral("SELECT title FROM RECIPE WHERE id >= %1 ORDER BY id").arg(firstId));
         rs && !rs.eof(); rs.MoveNext())
        titles << rs.text(0);
    return titles;
}
