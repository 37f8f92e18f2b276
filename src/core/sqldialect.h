#pragma once
// The statements are written in the dialect of the original recipe database ("DELETE * FROM",
// "&" to join texts, UCASE); this turns them into the engine's, outside quoted texts only.

#include <QString>

QString TranslateJetSql(const QString &sql);
