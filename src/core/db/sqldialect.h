#pragma once
// The statements are written in the dialect of the original recipe database ("DELETE * FROM",
// "&" to join texts, UCASE, TRUE and FALSE as values); this turns them into the engine's,
// outside quoted texts only.

#include <QString>

enum class SqlEngine {
    Sqlite, // the embedded file database, whose LIKE ignores case for every letter
    Postgres, // a shared server: TRUE and FALSE are not numbers, LIKE heeds case
};

QString TranslateJetSql(const QString &sql, SqlEngine engine = SqlEngine::Sqlite);
