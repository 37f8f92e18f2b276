#pragma once
// Text functions the embedded engine lacks: its UPPER folds only the ASCII letters, while a
// household searches for "crème" and "Борщ" as readily as for "pie".

class QSqlDatabase;

// Replaces UPPER on an SQLite connection by one that folds every letter.
void InstallTextFunctions(QSqlDatabase &db);
