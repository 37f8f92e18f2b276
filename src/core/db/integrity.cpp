#include "integrity.h"

#include "database.h"
#include "statementrunner.h"

#include <QSqlError>
#include <QSqlQuery>

namespace {
QString g_damage;
}

QString CheckDatabaseIntegrity()
{
    QSqlDatabase db = gConn();
    if (gNotConnected || db.driverName() != u"QSQLITE")
        return {};
    gRS = Recordset();
    QSqlQuery check(db);
    // A file the engine cannot even read through says so in the error.
    if (!check.exec(QStringLiteral("PRAGMA quick_check(1)")) || !check.next())
        return check.lastError().databaseText().isEmpty() ? QStringLiteral("the file cannot be read")
                                                          : check.lastError().databaseText();
    const QString verdict = check.value(0).toString();
    return verdict == u"ok" ? QString() : verdict;
}

bool DatabaseIsReadOnly()
{
    QSqlDatabase db = gConn();
    return !gNotConnected && ConnectionIsReadOnly(db);
}

void SetKnownDamage(const QString &damage)
{
    g_damage = damage;
}

QString KnownDamage()
{
    return g_damage;
}
