#pragma once
// modCabinet: what the cabinet holds, as the recipe search sees it.

#include <QList>
#include <QString>

// The recipes of the type all of whose cabinet-linked ingredients are available, in
// ascending identifier order. An ingredient whose cabinet name has no cabinet item of the
// type takes no part.
QList<qint32> BuildAvailableRecipeList(const QString &recipeType);
// The same list, found by walking every ingredient line that has a cabinet item of the type.
QList<qint32> WalkAvailableRecipes(const QString &recipeType);
// True when the identifier is in the list (kept in identifier order).
bool IsRecipeAvailable(const QList<qint32> &list, qint32 id);
