#include "reciperepository.h"

#include "core/database.h"
#include "core/platform.h"

namespace {

QString q(const QString &text)
{
    return QStringLiteral("', '") + text;
}

struct NamedText {
    QString name; // as the user knows the field
    QString text;
};

// Every text the recipe stores, named for a message, in the order the statements store them.
QList<NamedText> storedTexts(const RecipeData &r)
{
    QList<NamedText> texts{{QStringLiteral("The servings"), r.servings},
                           {QStringLiteral("The category"), r.category},
                           {QStringLiteral("The title"), r.title},
                           {QStringLiteral("The preparation time"), r.prepTime},
                           {QStringLiteral("The cooking time"), r.cookTime},
                           {QStringLiteral("The notes"), r.notes},
                           {QStringLiteral("The rating"), r.rating}};
    for (const IngredientLine &line : r.ingredients) {
        const QString of = QStringLiteral(" of ingredient line ") + line.number;
        texts.append({QStringLiteral("The amount") + of, line.amount});
        texts.append({QStringLiteral("The measure") + of, line.measure});
        texts.append({QStringLiteral("The ingredient") + of, line.ingredient});
        texts.append({QStringLiteral("The cabinet name") + of, line.cabinet});
    }
    for (const DirectionLine &line : r.directions)
        texts.append({QStringLiteral("Direction ") + line.step, line.direction});
    return texts;
}

// The line numbers as the database keeps them: whole numbers.
QList<qint64> lineNumbers(const RecipeData &r)
{
    QList<qint64> numbers;
    for (const IngredientLine &line : r.ingredients)
        numbers.append(qint64(Val(line.number)));
    for (const DirectionLine &line : r.directions)
        numbers.append(-qint64(Val(line.step)));
    return numbers;
}

// A few characters either side of position at, to show the user where the trouble is.
QString excerpt(const QString &text, qsizetype at)
{
    const qsizetype from = std::max<qsizetype>(0, at - 8);
    const qsizetype to = std::min<qsizetype>(text.size(), at + 9);
    return (from > 0 ? QStringLiteral("...") : QString()) + text.mid(from, to - from) +
           (to < text.size() ? QStringLiteral("...") : QString());
}

// What differs between the recipe meant and the recipe stored; "" when they are equal.
QString difference(const RecipeData &meant, const RecipeData &stored)
{
    if (!stored.exists || stored.recipeType != meant.recipeType)
        return QStringLiteral("The recipe was not stored as it stands on screen, so nothing was saved.");
    if (lineNumbers(stored) != lineNumbers(meant))
        return QStringLiteral("The ingredient lines or directions were not stored as they stand on screen, so "
                              "nothing was saved.");
    const QList<NamedText> want = storedTexts(meant);
    const QList<NamedText> got = storedTexts(stored);
    for (qsizetype i = 0; i < want.size(); ++i) {
        if (want[i].text != got[i].text)
            return want[i].name + QStringLiteral(" would not be stored as it stands on screen, so nothing was saved.");
    }
    return {};
}

} // namespace

QString UnstorableText(const RecipeData &recipe)
{
    for (const NamedText &field : storedTexts(recipe)) {
        if (const qsizetype k = DelimiterApostropheIn(field.text); k >= 0) {
            return field.name + QStringLiteral(" cannot be stored as it stands: the apostrophe in \"") +
                   excerpt(field.text, k) +
                   QStringLiteral("\" touches a comma or a parenthesis and would end the text there. "
                                  "Change the text around that apostrophe and save again.");
        }
    }
    return {};
}

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

bool StoreRecipe(const RecipeData &recipe, qint32 id, bool replace, QString *problem, qint32 *storedId)
{
    StatementBatch batch;
    const auto refuse = [&](const QString &why) {
        batch.fail();
        if (problem)
            *problem = why;
        return false;
    };
    if (id == 0)
        id = NextId(QStringLiteral("RECIPE"));
    if (replace) {
        gSQL = QStringLiteral("DELETE * FROM RECIPE WHERE ID = ") + QString::number(id);
        if (ExecuteSQL(gSQL).failed())
            return refuse({});
    }
    for (const QString &statement : RecipeInsertStatements(recipe, id)) {
        gSQL = statement;
        if (ExecuteSQL(gSQL).failed())
            return refuse(UnstorableText(recipe));
    }
    // A statement can succeed and still store another text than the one meant (an apostrophe
    // taken for a delimiter shifts the values): what was stored is checked before the commit.
    if (const QString differs = difference(recipe, LoadRecipe(id)); !differs.isEmpty()) {
        const QString known = UnstorableText(recipe);
        return refuse(known.isEmpty() ? differs : known);
    }
    if (storedId)
        *storedId = id;
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
