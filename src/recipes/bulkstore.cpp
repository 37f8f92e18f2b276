#include "bulkstore.h"

#include "reciperepository.h"

#include "core/db/boundstatement.h"
#include "core/db/database.h"
#include "core/db/integrity.h"
#include "core/db/statementrunner.h"

#include <QSqlDatabase>
#include <QStringEncoder>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

namespace {

// Recipes written at a time: each table's pages of five hundred recipes lie together, and what
// waits stays a megabyte or two.
constexpr std::size_t kWrittenTogether = 500;

// FNV-1a over the texts' UTF-8 bytes (in words of eight), each text led by its length so that no two different
// recipes spell the same sequence. Never 0, which marks a recipe read back already.
class Digest
{
public:
    void add(qint64 number) { mix(quint64(number)); }
    void add(QByteArrayView text)
    {
        mix(quint64(text.size()));
        // Eight bytes at a time, the rest one by one.
        qsizetype at = 0;
        for (quint64 word; at + 8 <= text.size(); at += 8) {
            std::memcpy(&word, text.data() + at, 8);
            mix(word);
        }
        for (; at < text.size(); ++at)
            mix(static_cast<unsigned char>(text[at]));
    }
    quint64 value() const { return m_value == 0 ? 1 : m_value; }

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
    for (const QChar *c = text.begin(), *end = text.end(); c != end; ++c) {
        if (*c == u'\'' || c->isNull())
            return false;
        if (c->isHighSurrogate() && c + 1 != end && (c + 1)->isLowSurrogate())
            ++c;
        else if (c->isSurrogate())
            return false;
    }
    return true;
}

// A line number the statements write as a whole number.
bool plainNumber(const QString &text)
{
    return !text.isEmpty() && text.size() <= 9 &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

// Line numbers that the table's key takes one after the other: each larger than the last.
template<typename Lines, typename Number>
bool rising(const Lines &lines, Number number)
{
    qint64 last = 0;
    for (const auto &line : lines) {
        if (!plainNumber(number(line)) || number(line).toLongLong() <= last)
            return false;
        last = number(line).toLongLong();
    }
    return true;
}

} // namespace

// The statements, prepared once for the whole import.
struct BulkRecipeStore::Statements {
    BoundStatement recipe {"INSERT INTO RECIPE VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"};
    BoundStatement line {"INSERT INTO INGREDIENTS VALUES (?, ?, ?, ?, ?, ?)"};
    BoundStatement step {"INSERT INTO DIRECTIONS VALUES (?, ?, ?)"};
    // A recipe goes with its lines, named one by one: the import may have set the references'
    // check aside.
    BoundStatement remove[3] {BoundStatement {"DELETE FROM RECIPE WHERE id = ?"},
                              BoundStatement {"DELETE FROM INGREDIENTS WHERE recipe_id = ?"},
                              BoundStatement {"DELETE FROM DIRECTIONS WHERE recipe_id = ?"}};

    bool usable() const
    {
        return recipe.usable() && line.usable() && step.usable() &&
               std::all_of(std::begin(remove), std::end(remove), [](const BoundStatement &s) { return s.usable(); });
    }
    bool removeRecipe(qint32 id);
};

namespace {

bool run(BoundStatement &statement)
{
    const bool done = statement.step() == BoundStatement::Step::Done;
    statement.reset();
    return done;
}

} // namespace

bool BulkRecipeStore::Statements::removeRecipe(qint32 id)
{
    return std::all_of(std::begin(remove), std::end(remove), [id](BoundStatement &statement) {
        statement.bind(1, id);
        return run(statement);
    });
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

BoundRecipe::BoundRecipe(const RecipeData &r)
{
    for (const QString *text :
         {&r.recipeType, &r.servings, &r.category, &r.title, &r.prepTime, &r.cookTime, &r.notes, &r.rating}) {
        if (!carriedAsWritten(*text))
            return;
    }
    for (const IngredientLine &line : r.ingredients) {
        if (!carriedAsWritten(line.amount) || !carriedAsWritten(line.measure) || !carriedAsWritten(line.ingredient) ||
            !carriedAsWritten(line.cabinet))
            return;
    }
    if (!rising(r.ingredients, [](const IngredientLine &line) -> const QString & { return line.number; }) ||
        !rising(r.directions, [](const DirectionLine &line) -> const QString & { return line.step; }) ||
        !std::all_of(r.directions.begin(), r.directions.end(),
                     [](const DirectionLine &line) { return carriedAsWritten(line.direction); }))
        return;
    m_bindable = true;
    QStringEncoder utf8(QStringEncoder::Utf8, QStringConverter::Flag::Stateless);
    qsizetype units = r.recipeType.size() + r.servings.size() + r.category.size() + r.title.size() + r.prepTime.size() +
                      r.cookTime.size() + r.notes.size() + r.rating.size();
    for (const IngredientLine &line : r.ingredients)
        units += line.amount.size() + line.measure.size() + line.ingredient.size() + line.cabinet.size();
    for (const DirectionLine &line : r.directions)
        units += line.direction.size();
    m_texts.reserve(utf8.requiredSpace(units));
    const auto gather = [&](QStringView text) {
        const qsizetype at = m_texts.size();
        m_texts.resize(at + utf8.requiredSpace(text.size()));
        const char *end = utf8.appendToBuffer(m_texts.data() + at, text);
        m_texts.truncate(end - m_texts.constData());
        return Text {at, m_texts.size() - at};
    };
    const QString type = r.recipeType.left(1);
    std::size_t field = 0;
    for (const QString *text :
         {&type, &r.servings, &r.category, &r.title, &r.prepTime, &r.cookTime, &r.notes, &r.rating})
        m_fields[field++] = gather(*text);
    m_lines.reserve(std::size_t(r.ingredients.size()));
    for (const IngredientLine &line : r.ingredients)
        m_lines.push_back({line.number.toLongLong(),
                           {gather(line.amount), gather(line.measure), gather(line.ingredient), gather(line.cabinet)}});
    m_steps.reserve(std::size_t(r.directions.size()));
    for (const DirectionLine &line : r.directions)
        m_steps.push_back({line.step.toLongLong(), gather(line.direction)});

    Digest digest;
    for (const Text &text : m_fields)
        digest.add(bytes(text));
    for (const Line &line : m_lines) {
        digest.add(line.number);
        for (const Text &text : line.fields)
            digest.add(bytes(text));
    }
    for (const Step &step : m_steps) {
        digest.add(step.number);
        digest.add(bytes(step.direction));
    }
    m_digest = digest.value();
}

bool BulkRecipeStore::store(const RecipeData &recipe, QString *problem, qint32 *storedId, BoundRecipe *bound)
{
    qint32 id = m_first == 0 ? 0 : m_first + qint32(m_digests.size());
    std::optional<BoundRecipe> made;
    if (m_statements && !bound)
        bound = &made.emplace(recipe);
    if (m_statements && bound->bindable()) {
        if (id == 0)
            id = NextId(QStringLiteral("RECIPE"));
        m_digests.push_back(bound->m_digest);
        m_recipes.push_back({id, m_digests.size() - 1, std::move(*bound)});
        if (m_recipes.size() == kWrittenTogether && !write()) {
            if (problem)
                *problem = QString();
            return false;
        }
    } else {
        // On the file database, under the identifier that comes next (the gathered recipes' own
        // are not written yet); on a server, under the highest there is then, as a save takes it.
        if (!StoreRecipe(recipe, m_statements ? id : 0, false, problem, &id, false))
            return false;
        m_digests.push_back(0);
    }
    if (m_first == 0)
        m_first = id;
    if (storedId)
        *storedId = id;
    return true;
}

bool BulkRecipeStore::write()
{
    Statements &s = *m_statements;
    // Table by table, so that each table's new pages follow one another. A recipe the engine
    // refuses goes again whole and is named.
    std::vector<bool> refused(m_recipes.size());
    const auto refuse = [&](std::size_t i) {
        if (!BatchIsOpen())
            return false; // the batch failed and has said why
        const Gathered &gathered = m_recipes[i];
        if (!s.removeRecipe(gathered.id))
            return false;
        refused[i] = true;
        m_digests[gathered.stored] = 0;
        const BoundRecipe &r = gathered.recipe;
        m_refused.append({gathered.id, QString::fromUtf8(r.bytes(r.m_fields[3])), gathered.stored,
                          QStringLiteral("the database refused it")});
        return true;
    };
    for (std::size_t i = 0; i < m_recipes.size(); ++i) {
        const BoundRecipe &r = m_recipes[i].recipe;
        s.recipe.bind(1, m_recipes[i].id);
        s.recipe.bind(2, r.bytes(r.m_fields[1]));
        s.recipe.bind(3, r.bytes(r.m_fields[0]));
        for (int field = 2; field < 8; ++field)
            s.recipe.bind(field + 2, r.bytes(r.m_fields[field]));
        if (!run(s.recipe) && !refuse(i))
            return false;
    }
    for (std::size_t i = 0; i < m_recipes.size(); ++i) {
        const BoundRecipe &r = m_recipes[i].recipe;
        for (const BoundRecipe::Line &line : r.m_lines) {
            if (refused[i])
                break;
            s.line.bind(1, m_recipes[i].id);
            s.line.bind(2, line.number);
            for (int field = 0; field < 4; ++field)
                s.line.bind(field + 3, r.bytes(line.fields[field]));
            if (!run(s.line) && !refuse(i))
                return false;
        }
    }
    for (std::size_t i = 0; i < m_recipes.size(); ++i) {
        const BoundRecipe &r = m_recipes[i].recipe;
        for (const BoundRecipe::Step &step : r.m_steps) {
            if (refused[i])
                break;
            s.step.bind(1, m_recipes[i].id);
            s.step.bind(2, step.number);
            s.step.bind(3, r.bytes(step.direction));
            if (!run(s.step) && !refuse(i))
                return false;
        }
    }
    m_recipes.clear();
    return true;
}

bool BulkRecipeStore::verify(QList<Removed> &removed)
{
    if (!m_statements || m_digests.empty())
        return true;
    if (!write())
        return false;
    removed = std::exchange(m_refused, {}); // gone already
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
    const qsizetype refused = removed.size();
    for (qint32 id = m_first; id <= last; ++id) {
        Digest digest;
        QString title;
        const bool found = atRecipe == Step::Row && recipes.integer(0) == id;
        if (found) {
            for (int column = 1; column <= 8; ++column)
                digest.add(recipes.bytes(column));
            title = QString::fromUtf8(recipes.bytes(4));
            atRecipe = recipes.step();
        }
        for (; atLine == Step::Row && lines.integer(0) <= id; atLine = lines.step()) {
            digest.add(lines.integer(1));
            for (int column = 2; column <= 5; ++column)
                digest.add(lines.bytes(column));
        }
        for (; atStep == Step::Row && steps.integer(0) <= id; atStep = steps.step()) {
            digest.add(steps.integer(1));
            digest.add(steps.bytes(2));
        }
        const quint64 meant = m_digests[std::size_t(id - m_first)];
        if (meant != 0 && (!found || digest.value() != meant))
            removed.append(
                {id, title, std::size_t(id - m_first), QStringLiteral("the database did not keep it as it was read")});
    }
    if (atRecipe == Step::Failed || atLine == Step::Failed || atStep == Step::Failed)
        return false;
    for (qsizetype i = refused; i < removed.size(); ++i) {
        if (!m_statements->removeRecipe(removed[i].id))
            return false;
    }
    // Named in the order the file has them.
    std::sort(removed.begin(), removed.end(), [](const Removed &a, const Removed &b) { return a.stored < b.stored; });
    return true;
}
