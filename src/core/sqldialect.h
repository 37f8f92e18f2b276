#pragma once
// The statements are written in the dialect of the original recipe database ("DELETE * FROM",
// "&" to join texts, UCASE); this turns them into the engine's, outside quoted texts only.

#include <QString>

// With likeFoldsCase (an engine whose LIKE ignores case for every letter), UCASE(column) LIKE
// becomes column LIKE: the same answer without folding every row first.
QString TranslateJetSql(const QString &sql, bool likeFoldsCase = false);
