#pragma once
// Creating an empty recipe database from the shipped schema.

#include <QString>

// The shipped schema's statements.
QString SchemaText();
// Creates the tables in the SQLite file at path (creating the file). False, with the reason
// in error, when that failed.
bool CreateDatabaseFromSchema(const QString &path, QString *error = nullptr);
