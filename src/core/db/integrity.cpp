#include "integrity.h"

#include "database.h"
#include "statementrunner.h"

#include <QDateTime>
#include <QFileInfo>
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
    check.finish();
    // The check read every page through the file's mapping: let go of them, so the program's
    // memory stays what its windows need.
    {
        const LowMemoryWork release;
    }
    return verdict == u"ok" ? QString() : verdict;
}

QString DatabaseFileStamp()
{
    QSqlDatabase db = gConn();
    if (gNotConnected || db.driverName() != u"QSQLITE")
        return {};
    const QFileInfo file(db.databaseName());
    return QStringLiteral("%1:%2").arg(file.size()).arg(file.lastModified().toMSecsSinceEpoch());
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
