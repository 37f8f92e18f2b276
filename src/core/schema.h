#pragma once
// Creating an empty recipe database from the shipped schema: a SQLite file, or the tables in
// an empty database on a PostgreSQL server.

#include <QString>

class QSqlDatabase;

// The shipped schema's statements for the file database.
QString SchemaText();
// The same tables for a PostgreSQL server.
QString ServerSchemaText();
// Creates the tables in the SQLite file at path (creating the file). False, with the reason
// in error, when that failed.
bool CreateDatabaseFromSchema(const QString &path, QString *error = nullptr);
// Creates the tables in the open server database, all or nothing. A database that already
// holds tables is never touched: false, with the reason in error.
bool CreateServerSchema(QSqlDatabase &db, QString *error = nullptr);
