#include "schema.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace {

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
        return fail(error, QStringLiteral("the database %1 already holds tables; it is left as it is")
                               .arg(db.databaseName()));
    count.finish();
    if (!db.transaction())
        return fail(error, db.lastError().text());
    if (!runSchema(db, ServerSchemaText(), error)) {
        db.rollback();
        return false;
    }
    return db.commit() || fail(error, db.lastError().text());
}
