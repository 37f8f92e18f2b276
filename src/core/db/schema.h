#pragma once
// Creating an empty recipe database from the shipped schema: a SQLite file, or the tables in
// an empty database on a PostgreSQL server.

#include <QString>

class QSqlDatabase;
class QSqlQuery;

// The shipped schema's statements for the file database.
QString SchemaText();
// The same tables for a PostgreSQL server.
QString ServerSchemaText();
// Creates the tables in the SQLite file at path (creating the file). False, with the reason
// in error, when that failed.
bool CreateDatabaseFromSchema(const QString &path, QString *error = nullptr);
// Why the open database cannot serve as the recipe database (a table or column missing or out
// of its place, unreadable); "" when it can. Reads only.
QString RecipeDatabaseProblem(QSqlDatabase &db);
// Why the SQLite file cannot serve as the recipe database (damaged, not a database, a table
// or column missing); "" when it can. Reads only.
QString RecipeDatabaseProblem(const QString &file);
// Creates the tables in the open server database, all or nothing. A database that already
// holds tables is never touched: false, with the reason in error.
bool CreateServerSchema(QSqlDatabase &db, QString *error = nullptr);
// Removes from the file database what it keeps for the searches (the cabinet's availability,
// the ingredient index, and the triggers that keep them), of this version or an earlier one;
// the next start makes them again. False when a statement failed.
bool DropSearchIndexes(QSqlQuery &q);
