#include "bulkstore.h"

#include "reciperepository.h"

#include "core/db/boundstatement.h"
#include "core/db/database.h"
#include "core/db/integrity.h"
#include "core/db/statementrunner.h"

#include <QSqlDatabase>

#include <algorithm>
#include <memory>

namespace {

// FNV-1a over the texts' UTF-16 units, each text led by its length so that no two different
// recipes spell the same sequence.
class Digest
{
public:
    void add(qint64 number) { mix(quint64(number)); }
    void add(QStringView text)
    {
        mix(quint64(text.size()));
        for (const QChar c : text)
            mix(c.unicode());
    }
    quint64 value() const { return m_value; }

private:
    void mix(quint64 unit)
    {
        m_value ^= unit;
        m_value *= 1099511628211ULL;
    }
    quint64 m_value = 14695981039346656037ULL;
};

// The texts a statement carries exactly as they stand: no apostrophe (which the statements
// may take for a delimiter), no NUL, no half of a surrogate pair.
bool carriedAsWritten(const QString &text)
{
    return !text.contains(u'\'') && !text.contains(QChar(0)) && QStringView(text).isValidUtf16();
}

// A line number the statements write as a whole number.
bool plainNumber(const QString &text)
{
    return !text.isEmpty() && text.size() <= 9 &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

bool bindable(const RecipeData &r)
{
    for (const QString *text :
         {&r.recipeType, &r.servings, &r.category, &r.title, &r.prepTime, &r.cookTime, &r.notes, &r.rating}) {
        if (!carriedAsWritten(*text))
            return false;
    }
    for (const IngredientLine &line : r.ingredients) {
        if (!plainNumber(line.number) || !carriedAsWritten(line.amount) || !carriedAsWritten(line.measure) ||
            !carriedAsWritten(line.ingredient) || !carriedAsWritten(line.cabinet))
            return false;
    }
    return std::all_of(r.directions.begin(), r.directions.end(), [](const DirectionLine &line) {
        return plainNumber(line.step) && carriedAsWritten(line.direction);
    });
}

} // namespace

// The statements, prepared once for the whole import.
struct BulkRecipeStore::Statements {
    BoundStatement recipe {"INSERT INTO RECIPE VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"};
    BoundStatement line {"INSERT INTO INGREDIENTS VALUES (?, ?, ?, ?, ?, ?)"};
    BoundStatement step {"INSERT INTO DIRECTIONS VALUES (?, ?, ?)"};
    BoundStatement remove {"DELETE FROM RECIPE WHERE id = ?"};

    bool usable() const { return recipe.usable() && line.usable() && step.usable() && remove.usable(); }
};

namespace {

bool run(BoundStatement &statement)
{
    const bool done = statement.step() == BoundStatement::Step::Done;
    statement.reset();
    return done;
}

} // namespace

quint64 RecipeDigest(const RecipeData &r)
{
    Digest digest;
    digest.add(QStringView(r.recipeType).left(1));
    for (const QString *text : {&r.servings, &r.category, &r.title, &r.prepTime, &r.cookTime, &r.notes, &r.rating})
        digest.add(*text);
    for (const IngredientLine &line : r.ingredients) {
        digest.add(line.number.toLongLong());
        for (const QString *text : {&line.amount, &line.measure, &line.ingredient, &line.cabinet})
            digest.add(*text);
    }
    for (const DirectionLine &line : r.directions) {
        digest.add(line.step.toLongLong());
        digest.add(line.direction);
    }
    return digest.value();
}

BulkRecipeStore::BulkRecipeStore()
{
    QSqlDatabase db = gConn();
    if (SqliteConnection(db) && BatchIsOpen() && KnownDamage().isEmpty()) {
        m_statements = std::make_unique<Statements>();
        if (!m_statements->usable())
            m_statements.reset();
    }
}

BulkRecipeStore::~BulkRecipeStore() = default;

bool BulkRecipeStore::store(const RecipeData &recipe, QString *problem, qint32 *storedId)
{
    const qint32 next = m_first == 0 ? 0 : m_first + qint32(m_digests.size());
    qint32 id = 0;
    if (m_statements && bindable(recipe)) {
        id = next != 0 ? next : NextId(QStringLiteral("RECIPE"));
        if (!bind(recipe, id)) {
            // What was stored of it goes again; a failure that ends the batch has said why.
            Statements &s = *m_statements;
            s.remove.bind(1, id);
            run(s.remove);
            if (problem)
                *problem = QString();
            return false;
        }
    } else if (!StoreRecipe(recipe, 0, false, problem, &id, false)) {
        return false;
    }
    if (m_first == 0)
        m_first = id;
    m_digests.push_back(RecipeDigest(recipe));
    if (storedId)
        *storedId = id;
    return true;
}

bool BulkRecipeStore::bind(const RecipeData &r, qint32 id)
{
    Statements &s = *m_statements;
    const QString type = r.recipeType.left(1);
    s.recipe.bind(1, id);
    s.recipe.bind(2, r.servings);
    s.recipe.bind(3, type);
    s.recipe.bind(4, r.category);
    s.recipe.bind(5, r.title);
    s.recipe.bind(6, r.prepTime);
    s.recipe.bind(7, r.cookTime);
    s.recipe.bind(8, r.notes);
    s.recipe.bind(9, r.rating);
    if (!run(s.recipe))
        return false;
    for (const IngredientLine &line : r.ingredients) {
        s.line.bind(1, id);
        s.line.bind(2, line.number.toLongLong());
        s.line.bind(3, line.amount);
        s.line.bind(4, line.measure);
        s.line.bind(5, line.ingredient);
        s.line.bind(6, line.cabinet);
        if (!run(s.line))
            return false;
    }
    for (const DirectionLine &line : r.directions) {
        s.step.bind(1, id);
        s.step.bind(2, line.step.toLongLong());
        s.step.bind(3, line.direction);
        if (!run(s.step))
            return false;
    }
    return true;
}

bool BulkRecipeStore::verify(QList<Removed> &removed)
{
    // Recipes stored by statements were each read back as they were stored.
    if (!m_statements || m_digests.empty())
        return true;
    const qint32 last = m_first + qint32(m_digests.size()) - 1;
    BoundStatement recipes("SELECT id, type, servings, category, title, prep_time, cook_time, notes, rating "
                           "FROM RECIPE WHERE id BETWEEN ? AND ? ORDER BY id");
    BoundStatement lines("SELECT recipe_id, ingred_id, amount, measure, ingredient, cabinet FROM INGREDIENTS "
                         "WHERE recipe_id BETWEEN ? AND ? ORDER BY recipe_id, ingred_id");
    BoundStatement steps("SELECT recipe_id, step, direction FROM DIRECTIONS WHERE recipe_id BETWEEN ? AND ? "
                         "ORDER BY recipe_id, step");
    if (!recipes.usable() || !lines.usable() || !steps.usable())
        return false;
    for (BoundStatement *statement : {&recipes, &lines, &steps}) {
        statement->bind(1, m_first);
        statement->bind(2, last);
    }
    using Step = BoundStatement::Step;
    Step atRecipe = recipes.step();
    Step atLine = lines.step();
    Step atStep = steps.step();
    for (qint32 id = m_first; id <= last; ++id) {
        Digest digest;
        QString title;
        const bool found = atRecipe == Step::Row && recipes.integer(0) == id;
        if (found) {
            for (int column = 1; column <= 8; ++column)
                digest.add(recipes.text(column));
            title = recipes.text(4).toString();
            atRecipe = recipes.step();
        }
        for (; atLine == Step::Row && lines.integer(0) <= id; atLine = lines.step()) {
            digest.add(lines.integer(1));
            for (int column = 2; column <= 5; ++column)
                digest.add(lines.text(column));
        }
        for (; atStep == Step::Row && steps.integer(0) <= id; atStep = steps.step()) {
            digest.add(steps.integer(1));
            digest.add(steps.text(2));
        }
        if (!found || digest.value() != m_digests[std::size_t(id - m_first)])
            removed.append({id, title, std::size_t(id - m_first)});
    }
    if (atRecipe == Step::Failed || atLine == Step::Failed || atStep == Step::Failed)
        return false;
    for (const Removed &gone : std::as_const(removed)) {
        gSQL = QStringLiteral("DELETE * FROM RECIPE WHERE ID = ") + QString::number(gone.id);
        if (ExecuteSQL(gSQL).failed())
            return false;
    }
    return true;
}
