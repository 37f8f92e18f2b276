#pragma once
// Text functions the embedded engine lacks: its UPPER folds only the ASCII letters, while a
// household searches for "crème" and "Борщ" as readily as for "pie".

class QSqlDatabase;

// Replaces UPPER and LIKE on an SQLite connection by ones that fold every letter.
void InstallTextFunctions(QSqlDatabase &db);
