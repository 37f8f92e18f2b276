#pragma once
// The statements are written in the dialect of the original recipe database ("DELETE * FROM",
// "&" to join texts, UCASE, TRUE and FALSE as values); this turns them into the engine's,
// outside quoted texts only.

#include <QString>

enum class SqlEngine {
    Sqlite, // the embedded file database, whose LIKE ignores case for every letter
    SqliteIndexed, // the same, keeping the ingredient index
    Postgres, // a shared server: TRUE and FALSE are not numbers, LIKE heeds case
};

QString TranslateJetSql(const QString &sql, SqlEngine engine = SqlEngine::Sqlite);

// The index of the ingredient texts the file database may keep: a row a line, keyed by
// recipe_id * 1024 + ingred_id, its text in upper case, searched by the trigrams (three letters
// in a row) of a text.
inline const QString kIngredientIndex = QStringLiteral("INGREDIENT_LINE_TRIGRAMS");
// Whether the statement searches the ingredient texts for a text (what the index speeds up).
bool SearchesIngredientText(const QString &sql);

// A recipe search ("SELECT DISTINCT id, title FROM RECIPE A ... ORDER BY A.title", as the search
// window writes it) with the condition on its recipes "A" added; any other statement as it is.
QString NarrowRecipeSearch(const QString &sql, const QString &condition);
