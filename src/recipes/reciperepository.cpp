#include "reciperepository.h"

#include "cabinetnames.h"

#include "core/db/database.h"
#include "core/platform/platform.h"

namespace {

// The parts one after the other, in one allocation: an import builds hundreds of thousands of
// statements.
QString joined(std::initializer_list<QStringView> parts)
{
    qsizetype size = 0;
    for (const QStringView part : parts)
        size += part.size();
    QString text;
    text.reserve(size);
    for (const QStringView part : parts)
        text += part;
    return text;
}

// Every text the recipe stores, in the order the statements store them.
QList<const QString *> storedTexts(const RecipeData &r)
{
    QList<const QString *> texts {&r.servings, &r.category, &r.title, &r.prepTime, &r.cookTime, &r.notes, &r.rating};
    texts.reserve(texts.size() + 4 * r.ingredients.size() + r.directions.size());
    for (const IngredientLine &line : r.ingredients)
        texts << &line.amount << &line.measure << &line.ingredient << &line.cabinet;
    for (const DirectionLine &line : r.directions)
        texts << &line.direction;
    return texts;
}

// The stored text at position k of storedTexts, named as the user knows the field.
QString storedTextName(const RecipeData &r, qsizetype k)
{
    static const QStringList fields {QStringLiteral("The servings"),     QStringLiteral("The category"),
                                     QStringLiteral("The title"),        QStringLiteral("The preparation time"),
                                     QStringLiteral("The cooking time"), QStringLiteral("The notes"),
                                     QStringLiteral("The rating")};
    static const QStringList lineFields {QStringLiteral("The amount"), QStringLiteral("The measure"),
                                         QStringLiteral("The ingredient"), QStringLiteral("The cabinet name")};
    if (k < fields.size())
        return fields[k];
    k -= fields.size();
    if (k < 4 * r.ingredients.size())
        return lineFields[k % 4] + QStringLiteral(" of ingredient line ") + r.ingredients[k / 4].number;
    return QStringLiteral("Direction ") + r.directions[k - 4 * r.ingredients.size()].step;
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
    const QList<const QString *> want = storedTexts(meant);
    const QList<const QString *> got = storedTexts(stored);
    for (qsizetype i = 0; i < want.size(); ++i) {
        if (*want[i] != *got[i])
            return storedTextName(meant, i) +
                   QStringLiteral(" would not be stored as it stands on screen, so nothing was saved.");
    }
    return {};
}

} // namespace

QString UnstorableText(const RecipeData &recipe)
{
    const QList<const QString *> texts = storedTexts(recipe);
    for (qsizetype i = 0; i < texts.size(); ++i) {
        if (const qsizetype k = DelimiterApostropheIn(*texts[i]); k >= 0) {
            return storedTextName(recipe, i) + QStringLiteral(" cannot be stored as it stands: the apostrophe in \"") +
                   excerpt(*texts[i], k) +
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
    constexpr QStringView between = u"', '";
    statements.append(joined({u"INSERT INTO RECIPE VALUES (", number, u", '", r.servings, between,
                              QStringView(r.recipeType).left(1), between, r.category, between, r.title, between,
                              r.prepTime, between, r.cookTime, between, r.notes, between, r.rating, u"')"}));
    for (const IngredientLine &line : r.ingredients) {
        statements.append(joined({u"INSERT INTO INGREDIENTS VALUES (", number, u", ", line.number, u", '", line.amount,
                                  between, line.measure, between, line.ingredient, between, line.cabinet, u"')"}));
    }
    for (const DirectionLine &line : r.directions)
        statements.append(
            joined({u"INSERT INTO DIRECTIONS VALUES (", number, u", ", line.step, u", '", line.direction, u"')"}));
    return statements;
}

bool StoreRecipe(const RecipeData &recipe, qint32 id, bool replace, QString *problem, qint32 *storedId,
                 bool addCabinetNames)
{
    StatementBatch batch;
    const auto refuse = [&](const QString &why) {
        if (problem)
            *problem = batch.failure().isEmpty() ? why : batch.failure();
        batch.fail();
        return false;
    };
    if (!batch.begun())
        return refuse(batch.failure());
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
    if (addCabinetNames) {
        CabinetNames names;
        names.add(recipe);
        if (!AddCabinetItems(names).isEmpty())
            return refuse({});
    }
    if (!batch.commit())
        return refuse(batch.failure());
    if (storedId)
        *storedId = id;
    return true;
}

RecipeData LoadRecipe(qint32 id)
{
    return LoadRecipe(QString::number(id));
}

RecipeData LoadRecipe(const QString &number)
{
    RecipeData recipe;
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
    gSQL =
        QStringLiteral("SELECT * FROM INGREDIENTS WHERE recipe_id = ") + number + QStringLiteral(" ORDER BY ingred_id");
    if (Recordset rs = ExecuteSQL(gSQL); rs) {
        const int number = rs.columnIndex(QStringLiteral("ingred_id"));
        const int amount = rs.columnIndex(QStringLiteral("amount"));
        const int measure = rs.columnIndex(QStringLiteral("measure"));
        const int ingredient = rs.columnIndex(QStringLiteral("ingredient"));
        const int cabinet = rs.columnIndex(QStringLiteral("cabinet"));
        for (; !rs.eof(); rs.MoveNext()) {
            recipe.ingredients.append({Format(rs.value(number).toLongLong(), QStringLiteral("00")), rs.text(amount),
                                       rs.text(measure), rs.text(ingredient), rs.text(cabinet)});
        }
    }
    gSQL = QStringLiteral("SELECT * FROM DIRECTIONS WHERE recipe_id = ") + number + QStringLiteral(" ORDER BY step");
    if (Recordset rs = ExecuteSQL(gSQL); rs) {
        const int step = rs.columnIndex(QStringLiteral("step"));
        const int direction = rs.columnIndex(QStringLiteral("direction"));
        for (; !rs.eof(); rs.MoveNext())
            recipe.directions.append({Format(rs.value(step).toLongLong(), QStringLiteral("00")), rs.text(direction)});
    }
    return recipe;
}

bool DeleteRecipe(qint32 id, QString *problem)
{
    StatementBatch batch;
    const QString number = QString::number(id);
    for (const QString &statement : {QStringLiteral("DELETE * FROM INGREDIENTS WHERE recipe_id = "),
                                     QStringLiteral("DELETE * FROM DIRECTIONS WHERE recipe_id = "),
                                     QStringLiteral("DELETE * FROM RECIPE WHERE ID = ")}) {
        gSQL = statement + number;
        if (!batch.begun() || ExecuteSQL(gSQL).failed())
            batch.fail();
    }
    if (batch.commit())
        return true;
    if (problem)
        *problem = batch.failure();
    return false;
}
