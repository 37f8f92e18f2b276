#include "reciperepository.h"

#include "core/database.h"
#include "core/platform.h"

namespace {

QString q(const QString &text)
{
    return QStringLiteral("', '") + text;
}

} // namespace

QStringList RecipeInsertStatements(const RecipeData &r, qint32 id)
{
    const QString number = QString::number(id);
    QStringList statements;
    statements.reserve(1 + r.ingredients.size() + r.directions.size());
    statements.append(QStringLiteral("INSERT INTO RECIPE VALUES (") + number + QStringLiteral(", '") +
                      r.servings + q(r.recipeType.left(1)) + q(r.category) + q(r.title) +
                      q(r.prepTime) + q(r.cookTime) + q(r.notes) + q(r.rating) + QStringLiteral("')"));
    for (const IngredientLine &line : r.ingredients) {
        statements.append(QStringLiteral("INSERT INTO INGREDIENTS VALUES (") + number +
                          QStringLiteral(", ") + line.number + QStringLiteral(", '") + line.amount +
                          q(line.measure) + q(line.ingredient) + q(line.cabinet) + QStringLiteral("')"));
    }
    for (const DirectionLine &line : r.directions) {
        statements.append(QStringLiteral("INSERT INTO DIRECTIONS VALUES (") + number +
                          QStringLiteral(", ") + line.step + QStringLiteral(", '") + line.direction +
                          QStringLiteral("')"));
    }
    return statements;
}

bool StoreRecipe(const RecipeData &recipe, qint32 id, bool replace)
{
    StatementBatch batch;
    if (replace) {
        gSQL = QStringLiteral("DELETE * FROM RECIPE WHERE ID = ") + QString::number(id);
        if (ExecuteSQL(gSQL).failed()) {
            batch.fail();
            return false;
        }
    }
    for (const QString &statement : RecipeInsertStatements(recipe, id)) {
        gSQL = statement;
        if (ExecuteSQL(gSQL).failed()) {
            batch.fail();
            return false;
        }
    }
    return true;
}

RecipeData LoadRecipe(qint32 id)
{
    RecipeData recipe;
    const QString number = QString::number(id);
    gSQL = QStringLiteral("SELECT * FROM RECIPE WHERE ID = ") + number;
    Recordset found = ExecuteSQL(gSQL);
    recipe.exists = found && !found.eof();
    if (Recordset &rs = found; recipe.exists) {
        const QString type = rs.text(QStringLiteral("type"));
        recipe.recipeType = type == u"D" ? QStringLiteral("Drink")
                            : type == u"O" ? QStringLiteral("Other")
                                           : QStringLiteral("Food");
        recipe.title = rs.text(QStringLiteral("title"));
        recipe.category = rs.text(QStringLiteral("category"));
        recipe.servings = rs.text(QStringLiteral("servings"));
        recipe.prepTime = rs.text(QStringLiteral("prep_time"));
        recipe.cookTime = rs.text(QStringLiteral("Cook_time"));
        recipe.notes = rs.text(QStringLiteral("notes"));
        recipe.rating = rs.text(QStringLiteral("rating"));
    }
    gSQL = QStringLiteral("SELECT * FROM INGREDIENTS WHERE recipe_id = ") + number +
           QStringLiteral(" ORDER BY ingred_id");
    for (Recordset rs = ExecuteSQL(gSQL); rs && !rs.eof(); rs.MoveNext()) {
        recipe.ingredients.append({Format(rs.value(QStringLiteral("ingred_id")).toLongLong(), QStringLiteral("00")),
                                   rs.text(QStringLiteral("amount")), rs.text(QStringLiteral("measure")),
                                   rs.text(QStringLiteral("ingredient")), rs.text(QStringLiteral("cabinet"))});
    }
    gSQL = QStringLiteral("SELECT * FROM DIRECTIONS WHERE recipe_id = ") + number +
           QStringLiteral(" ORDER BY step");
    for (Recordset rs = ExecuteSQL(gSQL); rs && !rs.eof(); rs.MoveNext()) {
        recipe.directions.append({Format(rs.value(QStringLiteral("step")).toLongLong(), QStringLiteral("00")),
                                  rs.text(QStringLiteral("direction"))});
    }
    return recipe;
}
