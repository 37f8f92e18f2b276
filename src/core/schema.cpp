#include "schema.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

QString SchemaText()
{
    QFile file(QStringLiteral(":/mirepan/schema.sql"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll());
}

bool CreateDatabaseFromSchema(const QString &path, QString *error)
{
    const QString connection = QStringLiteral("schema-") + QUuid::createUuid().toString();
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(path);
        ok = db.open();
        if (!ok && error)
            *error = db.lastError().text();
        QSqlQuery query(db);
        QString statement;
        const QStringList lines = SchemaText().split(u'\n');
        for (const QString &line : lines) {
            if (!ok)
                break;
            if (line.trimmed().startsWith(QStringLiteral("--")))
                continue;
            statement += line + u'\n';
            if (!line.trimmed().endsWith(u';'))
                continue;
            if (!query.exec(statement)) {
                ok = false;
                if (error)
                    *error = query.lastError().text();
            }
            statement.clear();
        }
        query.finish();
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return ok;
}
