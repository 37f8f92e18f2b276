#include "searchindexes.h"

#include "core/db/database.h"
#include "core/db/integrity.h"
#include "core/db/schema.h"
#include "core/db/sqldialect.h"

#include <QSqlQuery>

namespace {

const QString kPause = QStringLiteral("CABINET_AVAILABILITY_PAUSE");

// The recipes from this identifier on are counted at the end of a bulk import instead of line
// by line (see SearchIndexesBulk).
#define BELOW_PAUSE(id) id " < (SELECT coalesce(min(from_id), 9223372036854775807) FROM CABINET_AVAILABILITY_PAUSE)"

// The counts of the lines of one recipe (or of a bulk's recipes) against the cabinet's items.
#define COUNT_LINES(where)                                                                                             \
    "INSERT INTO CABINET_AVAILABILITY (recipe_id, type, matched, missing) SELECT I.recipe_id, C.type, count(*), "      \
    "sum(C.available = 0) FROM INGREDIENTS I, CABINET C WHERE C.item = I.cabinet AND " where                           \
    " GROUP BY I.recipe_id, C.type ON CONFLICT (recipe_id, type) DO UPDATE SET matched = matched + excluded.matched, " \
    "missing = missing + excluded.missing"

// The same for the items of the cabinet's type of that place (counted from 0; an insert's quoted
// texts are taken for the household's own, so the type is not written out): the lines are read
// in recipe order and grouped as they come, without the sort the grouping by type needs.
#define COUNT_TYPE_LINES(place, where)                                                                                 \
    "INSERT INTO CABINET_AVAILABILITY (recipe_id, type, matched, missing) SELECT I.recipe_id, C.type, count(*), "      \
    "sum(C.available = 0) FROM INGREDIENTS I, CABINET C WHERE C.item = I.cabinet AND C.type = (SELECT DISTINCT type "  \
    "FROM CABINET ORDER BY type LIMIT 1 OFFSET " place ") AND " where " GROUP BY I.recipe_id ON CONFLICT (recipe_id, " \
    "type) DO UPDATE SET matched = matched + excluded.matched, missing = missing + excluded.missing"

// A line taken out of the counts of every type that has its item.
#define LINE_OUT                                                                                                       \
    "UPDATE CABINET_AVAILABILITY SET matched = matched - 1, missing = missing - (SELECT C.available = 0 FROM "         \
    "CABINET C WHERE C.item = old.cabinet AND C.type = CABINET_AVAILABILITY.type) WHERE recipe_id = old.recipe_id "    \
    "AND type IN (SELECT C.type FROM CABINET C WHERE C.item = old.cabinet) AND " BELOW_PAUSE("old.recipe_id") ";"

// An item's lines taken out of (sign -) or into (sign +) the counts of its type.
#define ITEM_LINES(row, sign)                                                                                          \
    "UPDATE CABINET_AVAILABILITY SET matched = matched " sign " (SELECT count(*) FROM INGREDIENTS I WHERE "            \
    "I.recipe_id = CABINET_AVAILABILITY.recipe_id AND I.cabinet = " row ".item), missing = missing " sign " (" row     \
    ".available = 0) * (SELECT count(*) FROM INGREDIENTS I WHERE I.recipe_id = CABINET_AVAILABILITY.recipe_id AND "    \
    "I.cabinet = " row ".item) WHERE type = " row ".type AND recipe_id IN (SELECT I.recipe_id FROM INGREDIENTS I "     \
    "WHERE I.cabinet = " row ".item AND " BELOW_PAUSE("I.recipe_id") ");"

#define ITEM_IN                                                                                                        \
    "INSERT INTO CABINET_AVAILABILITY (recipe_id, type, matched, missing) SELECT I.recipe_id, new.type, count(*), "    \
    "count(*) * (new.available = 0) FROM INGREDIENTS I WHERE I.cabinet = new.item AND " BELOW_PAUSE(                   \
        "I.recipe_id") " GROUP BY I.recipe_id ON CONFLICT (recipe_id, type) DO UPDATE SET matched = matched + "        \
                       "excluded.matched, "                                                                            \
                       "missing = missing + excluded.missing;"

// The ingredient index holds a row a line, its text in upper case, keyed by its recipe and its
// number in one (the number 0 to 1023, which is what lines have: any other line is not indexed,
// and the search walks the lines while one is stored). The index keeps no copy of the texts:
// a line goes out of it with the text it came in with.
#define LINE_KEY(row) row ".recipe_id * 1024 + " row ".ingred_id"
#define INDEXED(row) row ".ingred_id BETWEEN 0 AND 1023 AND " BELOW_PAUSE(row ".recipe_id")
#define LINE_INDEXED(row)                                                                                              \
    "INSERT INTO INGREDIENT_LINE_TRIGRAMS (rowid, line) SELECT " LINE_KEY(row) ", upper(" row                          \
                                                                               ".ingredient) WHERE " INDEXED(row) ";"
#define LINE_UNINDEXED(row)                                                                                            \
    "INSERT INTO INGREDIENT_LINE_TRIGRAMS (INGREDIENT_LINE_TRIGRAMS, rowid, line) SELECT 'delete', " LINE_KEY(         \
        row) ", upper(" row ".ingredient) WHERE " INDEXED(row) ";"

// The rows of the ingredient index of the lines the condition names.
#define INDEX_LINES(where)                                                                                             \
    "INSERT INTO INGREDIENT_LINE_TRIGRAMS (rowid, line) SELECT recipe_id * 1024 + ingred_id, upper(ingredient) "       \
    "FROM INGREDIENTS WHERE ingred_id BETWEEN 0 AND 1023 AND " where

// A line comes: it counts for each type that has its item, and its text is indexed. An import
// sets this trigger aside while it stores its lines (see SearchIndexesBulk).
const char *const kLineIn =
    "CREATE TRIGGER CABINET_AVAILABILITY_line_in AFTER INSERT ON INGREDIENTS BEGIN " COUNT_LINES(
        "I.recipe_id = new.recipe_id AND I.ingred_id = new.ingred_id") "; " LINE_INDEXED("new") " END";
const QString kDropLineIn = QStringLiteral("DROP TRIGGER CABINET_AVAILABILITY_line_in");

// The table and the triggers that keep it. Each cabinet name matches at most one item of a type
// (items are unique per name and type, compared as the join compares them), so a line is
// satisfied exactly when its item is available.
const char *const kKeeping[] = {
    "CREATE TABLE CABINET_AVAILABILITY (recipe_id INTEGER NOT NULL, type TEXT COLLATE NOCASE NOT NULL, "
    "matched INTEGER NOT NULL, missing INTEGER NOT NULL, PRIMARY KEY (recipe_id, type)) WITHOUT ROWID",
    "CREATE INDEX CABINET_AVAILABILITY_ready ON CABINET_AVAILABILITY(type, missing, recipe_id)",
    "CREATE TABLE CABINET_AVAILABILITY_PAUSE (from_id INTEGER NOT NULL)",
    "CREATE VIRTUAL TABLE INGREDIENT_LINE_TRIGRAMS USING fts5(line, tokenize = 'trigram', detail = none, content = "
    "'', columnsize = 0)",
    // An import indexes its lines at its end: held in memory a while longer, they are written in
    // fewer pieces, which need less merging as the collection grows.
    "INSERT INTO INGREDIENT_LINE_TRIGRAMS (INGREDIENT_LINE_TRIGRAMS, rank) VALUES ('hashsize', 8388608)",
    // The lines the index leaves out, found at once (there are none, as a rule).
    "CREATE INDEX INGREDIENT_LINE_TRIGRAMS_outside ON INGREDIENTS(recipe_id, ingred_id) WHERE ingred_id NOT "
    "BETWEEN 0 AND 1023",
    kLineIn,
    // A line goes (also with its recipe).
    "CREATE TRIGGER CABINET_AVAILABILITY_line_out AFTER DELETE ON INGREDIENTS BEGIN " LINE_OUT LINE_UNINDEXED(
        "old") " END",
    // A line's text or place changed.
    "CREATE TRIGGER INGREDIENT_LINE_TRIGRAMS_line_changed AFTER UPDATE OF recipe_id, ingred_id, ingredient ON "
    "INGREDIENTS BEGIN " LINE_UNINDEXED("old") LINE_INDEXED("new") " END",
    // A line renamed (the cabinet tools' repair): as gone and come again.
    "CREATE TRIGGER CABINET_AVAILABILITY_line_moved AFTER UPDATE OF recipe_id, cabinet ON INGREDIENTS "
    "BEGIN " LINE_OUT COUNT_LINES(
        "I.recipe_id = new.recipe_id AND I.ingred_id = new.ingred_id AND " BELOW_PAUSE("new.recipe_id")) "; END",
    // An item comes, goes, is ticked or unticked, or renamed.
    "CREATE TRIGGER CABINET_AVAILABILITY_item_in AFTER INSERT ON CABINET BEGIN " ITEM_IN " END",
    "CREATE TRIGGER CABINET_AVAILABILITY_item_out AFTER DELETE ON CABINET BEGIN " ITEM_LINES("old", "-") " END",
    "CREATE TRIGGER CABINET_AVAILABILITY_tick AFTER UPDATE OF available ON CABINET WHEN old.item IS "
    "new.item AND "
    "old.type IS new.type AND (old.available = 0) <> (new.available = 0) BEGIN " ITEM_LINES("old", "-")
        ITEM_LINES("new", "+") " END",
    "CREATE TRIGGER CABINET_AVAILABILITY_item_moved AFTER UPDATE OF item, type ON CABINET WHEN old.item IS "
    "NOT "
    "new.item OR old.type IS NOT new.type BEGIN " ITEM_LINES("old", "-") ITEM_IN " END",
    // What is stored now (its lines counted after, by countLines).
    INDEX_LINES("1 = 1"),
};

// Counts the lines the condition on "I" names. Type by type is quicker for the one or two
// types a household's cabinet holds (each reads the lines once); beyond, one sort is.
bool countLines(const QString &where)
{
    const Recordset rs = ExecuteSQL(QStringLiteral("SELECT count(DISTINCT type) FROM CABINET"));
    const qint64 types = rs && !rs.eof() ? rs.integer(0) : 0;
    if (types > 2)
        return !ExecuteSQL(QString::fromLatin1(COUNT_LINES("%1")).arg(where)).failed();
    for (qint64 type = 0; type < types; ++type)
        if (ExecuteSQL(QString::fromLatin1(COUNT_TYPE_LINES("%1", "%2")).arg(type).arg(where)).failed())
            return false;
    return true;
}

bool onFile()
{
    return gConn().isOpen() && gConn().driverName() == u"QSQLITE";
}

bool serverKeepsAvailability()
{
    QSqlQuery q(gConn());
    return q.exec(QStringLiteral("SELECT to_regclass('cabinet_availability') IS NOT NULL")) && q.next() &&
           q.value(0).toBool();
}

bool isKept()
{
    if (!gNotConnected && gConn().driverName() == u"QPSQL") {
        QSqlQuery q(gConn());
        return q.exec(QStringLiteral("SELECT count(*) FROM pg_indexes WHERE indexname = 'ingredients_trigrams'")) &&
               q.next() && q.value(0).toInt() > 0 && serverKeepsAvailability();
    }
    if (!onFile())
        return false;
    // A file of an earlier version may keep the availability with an index of another shape.
    const Recordset rs = ExecuteSQL(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name IN ('") + kPause +
                                    QStringLiteral("', '") + kIngredientIndex + QStringLiteral("')"));
    return rs && !rs.eof() && rs.integer(0) == 2;
}

} // namespace

// The availability a server keeps, as the file database's triggers keep it. A line reads its
// item's tick FOR SHARE, so that a tick changed on another computer at the same moment waits
// for the line's commit (and then counts it), or the line waits for the tick's.
const char *const kServerKeeping[] = {
    "CREATE TABLE cabinet_availability (recipe_id integer NOT NULL, type citext NOT NULL, matched integer NOT "
    "NULL, missing integer NOT NULL, PRIMARY KEY (recipe_id, type))",
    "CREATE INDEX cabinet_availability_ready ON cabinet_availability (type, missing, recipe_id)",
    "CREATE FUNCTION cabinet_availability_line() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
    "IF TG_OP IN ('DELETE', 'UPDATE') THEN "
    "UPDATE cabinet_availability A SET matched = A.matched - 1, missing = A.missing - (C.available = 0)::int "
    "FROM cabinet C WHERE C.item = OLD.cabinet AND C.type = A.type AND A.recipe_id = OLD.recipe_id; END IF; "
    "IF TG_OP IN ('INSERT', 'UPDATE') THEN "
    "INSERT INTO cabinet_availability (recipe_id, type, matched, missing) SELECT NEW.recipe_id, C.type, 1, "
    "(C.available = 0)::int FROM cabinet C WHERE C.item = NEW.cabinet FOR SHARE "
    "ON CONFLICT (recipe_id, type) DO UPDATE SET matched = cabinet_availability.matched + excluded.matched, "
    "missing = cabinet_availability.missing + excluded.missing; END IF; RETURN NULL; END $$",
    "CREATE TRIGGER cabinet_availability_line AFTER INSERT OR DELETE OR UPDATE OF recipe_id, cabinet ON ingredients "
    "FOR EACH ROW EXECUTE FUNCTION cabinet_availability_line()",
    "CREATE FUNCTION cabinet_availability_item() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
    "IF TG_OP IN ('DELETE', 'UPDATE') THEN "
    "UPDATE cabinet_availability A SET matched = A.matched - L.n, missing = A.missing - L.n * (OLD.available = "
    "0)::int FROM (SELECT recipe_id, count(*)::int AS n FROM ingredients WHERE cabinet = OLD.item GROUP BY "
    "recipe_id) L WHERE A.recipe_id = L.recipe_id AND A.type = OLD.type; END IF; "
    "IF TG_OP IN ('INSERT', 'UPDATE') THEN "
    "INSERT INTO cabinet_availability (recipe_id, type, matched, missing) SELECT recipe_id, NEW.type, count(*), "
    "count(*) * (NEW.available = 0)::int FROM ingredients WHERE cabinet = NEW.item GROUP BY recipe_id "
    "ON CONFLICT (recipe_id, type) DO UPDATE SET matched = cabinet_availability.matched + excluded.matched, "
    "missing = cabinet_availability.missing + excluded.missing; END IF; RETURN NULL; END $$",
    "CREATE TRIGGER cabinet_availability_item AFTER INSERT OR DELETE OR UPDATE OF item, type, available ON cabinet "
    "FOR EACH ROW EXECUTE FUNCTION cabinet_availability_item()",
    // What is stored now.
    "INSERT INTO cabinet_availability (recipe_id, type, matched, missing) SELECT I.recipe_id, C.type, count(*), "
    "sum((C.available = 0)::int) FROM ingredients I JOIN cabinet C ON C.item = I.cabinet GROUP BY I.recipe_id, "
    "C.type",
};

// Made once for a collection, by whichever computer comes first: the others wait for it.
bool keepServerAvailability()
{
    if (serverKeepsAvailability())
        return true;
    QSqlDatabase db = gConn();
    if (!db.transaction())
        return false;
    QSqlQuery q(db);
    bool made = q.exec(QStringLiteral("SELECT pg_advisory_xact_lock(20261124)"));
    if (made && !serverKeepsAvailability()) {
        for (const char *statement : kServerKeeping)
            made = made && q.exec(QString::fromLatin1(statement));
    }
    if (made)
        return db.commit();
    db.rollback();
    return false;
}

// On a server: trigram indexes of titles and ingredient texts, which its LIKE uses by itself,
// and the availability kept. A server that does not offer them (no pg_trgm, no right to add
// it) is searched as before.
bool keepServerIndexes()
{
    QSqlQuery q(gConn());
    const bool indexed =
        q.exec(QStringLiteral("CREATE EXTENSION IF NOT EXISTS pg_trgm")) &&
        q.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS INGREDIENTS_trigrams ON INGREDIENTS USING gin "
                              "((ingredient::text) gin_trgm_ops)")) &&
        q.exec(QStringLiteral(
            "CREATE INDEX IF NOT EXISTS RECIPE_title_trigrams ON RECIPE USING gin ((title::text) gin_trgm_ops)"));
    return keepServerAvailability() && indexed;
}

bool KeepSearchIndexes()
{
    if (gNotConnected)
        return false;
    if (gConn().driverName() == u"QPSQL")
        return keepServerIndexes();
    if (!onFile())
        return false;
    if (isKept())
        return true;
    if (DatabaseIsReadOnly() || !KnownDamage().isEmpty())
        return false;
    StatementBatch batch;
    if (!batch.begun())
        return false;
    QSqlQuery q(gConn());
    if (!DropSearchIndexes(q))
        return false;
    q.finish();
    for (const char *statement : kKeeping)
        if (ExecuteSQL(QString::fromLatin1(statement)).failed())
            return false; // rolled back with the batch; the search walks the lines meanwhile
    return countLines(QStringLiteral("1 = 1")) && batch.commit();
}

namespace {

bool keptHere()
{
    return !gNotConnected && (gConn().driverName() == u"QPSQL" ? serverKeepsAvailability() : onFile() && isKept());
}

QString keptAvailable(const QString &recipeType)
{
    return QStringLiteral("SELECT recipe_id FROM CABINET_AVAILABILITY WHERE type = '") + recipeType.left(1) +
           QStringLiteral("' AND missing = 0 AND matched > 0");
}

} // namespace

QString KeptAvailabilityCondition(const QString &recipeType)
{
    return keptHere() ? QStringLiteral("A.id IN (") + keptAvailable(recipeType) + u')' : QString();
}

std::optional<QList<qint32>> KeptAvailableRecipes(const QString &recipeType)
{
    QList<qint32> available;
    if (keptHere()) {
        gSQL = keptAvailable(recipeType) + QStringLiteral(" ORDER BY recipe_id");
    } else if (!gNotConnected && gConn().driverName() == u"QPSQL") {
        // A server without it counts the lines itself and hands over the recipes alone.
        gSQL = QStringLiteral("SELECT A.recipe_id FROM INGREDIENTS A, CABINET B WHERE A.cabinet = B.item AND "
                              "B.type = '") +
               recipeType.left(1) +
               QStringLiteral("' GROUP BY A.recipe_id HAVING sum(CASE WHEN B.available = 0 THEN 1 ELSE 0 END) = 0 "
                              "ORDER BY A.recipe_id");
    } else {
        return std::nullopt;
    }
    Recordset rs = ExecuteSQL(gSQL);
    if (!rs)
        return std::nullopt;
    for (; !rs.eof(); rs.MoveNext())
        available.append(qint32(rs.integer(0)));
    return available;
}

bool SearchIndexesAreKept()
{
    return isKept();
}

SearchIndexesBulk::SearchIndexesBulk()
{
    // Only inside the import's batch: set aside, the upkeep is back by its end in any case.
    if (!BatchIsOpen() || !onFile() || !isKept())
        return;
    m_from = NextId(QStringLiteral("RECIPE"));
    if (ExecuteSQL(QStringLiteral("INSERT INTO CABINET_AVAILABILITY_PAUSE VALUES (%1)").arg(m_from)).failed() ||
        ExecuteSQL(kDropLineIn).failed())
        m_from = 0;
}

SearchIndexesBulk::~SearchIndexesBulk()
{
    if (m_from) // not finished: the batch is rolled back, and the pause with it
        finish();
}

bool SearchIndexesBulk::finish()
{
    if (!m_from)
        return true;
    const qint64 from = std::exchange(m_from, 0);
    return !ExecuteSQL(QStringLiteral("DELETE FROM CABINET_AVAILABILITY_PAUSE WHERE from_id = %1").arg(from))
                .failed() &&
           countLines(QStringLiteral("I.recipe_id >= %1").arg(from)) &&
           !ExecuteSQL(QString::fromLatin1(INDEX_LINES("recipe_id >= %1")).arg(from)).failed() &&
           !ExecuteSQL(QString::fromLatin1(kLineIn)).failed();
}
