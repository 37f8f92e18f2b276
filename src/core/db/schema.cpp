#include "schema.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QFileInfo>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>

#include <initializer_list>

namespace {

bool onServer(const QSqlDatabase &db)
{
    return db.driverName() == u"QPSQL";
}

struct TableColumns {
    const char *table;
    std::initializer_list<const char *> columns;
};

// The tables and columns every statement counts on: values are inserted without column
// names, so the order of the columns is part of the database's shape.
const TableColumns kRecipeTables[] = {
    {"RECIPE", {"id", "servings", "type", "category", "title", "prep_time", "cook_time", "notes", "rating"}},
    {"INGREDIENTS", {"recipe_id", "ingred_id", "amount", "measure", "ingredient", "cabinet"}},
    {"DIRECTIONS", {"recipe_id", "step", "direction"}},
    {"CABINET", {"item", "type", "available"}},
    {"MENU", {"ID", "parent", "key", "text"}},
};

QString resourceText(const QString &name)
{
    QFile file(QStringLiteral(":/mirepan/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll());
}

bool fail(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
    return false;
}

// Runs the schema's statements (each ends its line with ";"), stopping at the first that fails.
bool runSchema(QSqlDatabase &db, const QString &schema, QString *error)
{
    QSqlQuery query(db);
    QString statement;
    const QStringList lines = schema.split(u'\n');
    for (const QString &line : lines) {
        if (line.trimmed().startsWith(QStringLiteral("--")))
            continue;
        statement += line + u'\n';
        if (!line.trimmed().endsWith(u';'))
            continue;
        if (!query.exec(statement))
            return fail(error, query.lastError().text());
        statement.clear();
    }
    return true;
}

} // namespace

QString SchemaText()
{
    return resourceText(QStringLiteral("schema.sql"));
}

QString ServerSchemaText()
{
    return resourceText(QStringLiteral("schema_pg.sql"));
}

bool CreateDatabaseFromSchema(const QString &path, QString *error)
{
    const QString connection = QStringLiteral("schema-") + QUuid::createUuid().toString();
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(path);
        ok = db.open() ? runSchema(db, SchemaText(), error) : fail(error, db.lastError().text());
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return ok;
}

bool CreateServerSchema(QSqlDatabase &db, QString *error)
{
    QSqlQuery count(db);
    if (!count.exec(QStringLiteral("SELECT count(*) FROM information_schema.tables "
                                   "WHERE table_schema = current_schema()")) ||
        !count.next())
        return fail(error, count.lastError().text());
    if (count.value(0).toInt() > 0)
        return fail(error,
                    QStringLiteral("the database %1 already holds tables; it is left as it is").arg(db.databaseName()));
    count.finish();
    if (!db.transaction())
        return fail(error, db.lastError().text());
    if (!runSchema(db, ServerSchemaText(), error)) {
        db.rollback();
        return false;
    }
    return db.commit() || fail(error, db.lastError().text());
}

// Only reads: a damaged file is left exactly as it was.
QString RecipeDatabaseProblem(QSqlDatabase &db)
{
    if (db.driverName() == u"QSQLITE") {
        // The engine opens a file without looking at it: the first read tells.
        QSqlQuery check(db);
        if (!check.exec(QStringLiteral("SELECT count(*) FROM sqlite_master")) || !check.next())
            return QStringLiteral("it is not a database, or it is damaged (%1)").arg(check.lastError().databaseText());
        if (check.value(0).toInt() == 0)
            return QStringLiteral("it holds no tables");
    }
    for (const TableColumns &shape : kRecipeTables) {
        const QString table = QLatin1String(shape.table);
        // A server keeps unquoted names in lower case.
        const QSqlRecord record = db.record(onServer(db) ? table.toLower() : table);
        if (record.isEmpty())
            return QStringLiteral("the table %1 is missing").arg(table);
        int position = 0;
        for (const char *column : shape.columns) {
            if (position >= record.count() ||
                record.fieldName(position).compare(QLatin1String(column), Qt::CaseInsensitive) != 0)
                return QStringLiteral("the table %1 has no column %2 in its place").arg(table, QLatin1String(column));
            ++position;
        }
        QSqlQuery probe(db);
        if (!probe.exec(QStringLiteral("SELECT * FROM ") + table + QStringLiteral(" LIMIT 1")))
            return QStringLiteral("the table %1 cannot be read (%2)").arg(table, probe.lastError().databaseText());
    }
    return {};
}

QString RecipeDatabaseProblem(const QString &file)
{
    if (!QFileInfo(file).isFile())
        return QStringLiteral("the file does not exist");
    const QString name = QStringLiteral("check-") + QUuid::createUuid().toString();
    QString problem;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        problem = db.open() ? RecipeDatabaseProblem(db) : db.lastError().text();
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return problem;
}

bool DropSearchIndexes(QSqlQuery &q)
{
    // The triggers first: one left behind would name a table that is gone.
    QStringList drops;
    if (!q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'trigger' AND (name LIKE "
                               "'CABINET_AVAILABILITY%' OR name LIKE 'INGREDIENT%TRIGRAMS%')")))
        return false;
    while (q.next())
        drops << QStringLiteral("DROP TRIGGER IF EXISTS ") + q.value(0).toString();
    for (const char *table :
         {"CABINET_AVAILABILITY", "CABINET_AVAILABILITY_PAUSE", "INGREDIENTS_TRIGRAMS", "INGREDIENT_LINE_TRIGRAMS"})
        drops << QStringLiteral("DROP TABLE IF EXISTS ") + QLatin1String(table);
    drops << QStringLiteral("DROP INDEX IF EXISTS INGREDIENT_LINE_TRIGRAMS_outside");
    for (const QString &drop : std::as_const(drops))
        if (!q.exec(drop))
            return false;
    return true;
}
