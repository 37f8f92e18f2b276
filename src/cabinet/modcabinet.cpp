#include "modcabinet.h"

#include "core/ui/controls.h"
#include "core/db/database.h"
#include "recipes/searchindexes.h"

#include <algorithm>

QList<qint32> BuildAvailableRecipeList(const QString &recipeType)
{
    WaitCursor busy;
    // The database keeps the answer as the cabinet and the recipes change; only a database
    // that does not (a server, a read-only file) has its lines walked.
    if (std::optional<QList<qint32>> kept = KeptAvailableRecipes(recipeType))
        return *kept;
    return WalkAvailableRecipes(recipeType);
}

QList<qint32> WalkAvailableRecipes(const QString &recipeType)
{
    QList<qint32> available;
    gSQL = QStringLiteral("SELECT * FROM INGREDIENTS A, CABINET B WHERE A.cabinet = B.item and b.type = '") +
           recipeType.left(1) + QStringLiteral("' ORDER BY recipe_id, ingred_id");
    Recordset rs = ExecuteSQL(gSQL);
    if (!rs || rs.eof())
        return available;
    const int recipeColumn = rs.columnIndex(QStringLiteral("recipe_id"));
    const int lineColumn = rs.columnIndex(QStringLiteral("ingred_id"));
    const int availableColumn = rs.columnIndex(QStringLiteral("available"));

    // Rows come grouped by recipe, then by ingredient line; a line with several cabinet rows
    // is satisfied when any of them is available, a recipe when all of its lines are.
    qint64 recipe = rs.integer(recipeColumn);
    qint64 line = rs.integer(lineColumn);
    bool lineSatisfied = false;
    bool recipeQualifies = true;
    for (; !rs.eof(); rs.MoveNext()) {
        const qint64 rowRecipe = rs.integer(recipeColumn);
        const qint64 rowLine = rs.integer(lineColumn);
        if (rowRecipe != recipe || rowLine != line) {
            recipeQualifies = recipeQualifies && lineSatisfied;
            lineSatisfied = false;
            if (rowRecipe != recipe) {
                if (recipeQualifies)
                    available.append(qint32(recipe));
                recipeQualifies = true;
            }
            recipe = rowRecipe;
            line = rowLine;
        }
        lineSatisfied = lineSatisfied || rs.integer(availableColumn) != 0;
    }
    if (recipeQualifies && lineSatisfied)
        available.append(qint32(recipe));
    return available;
}

bool IsRecipeAvailable(const QList<qint32> &list, qint32 id)
{
    // The list is in identifier order: a binary search answers what a scan would.
    return std::binary_search(list.cbegin(), list.cend(), id);
}
