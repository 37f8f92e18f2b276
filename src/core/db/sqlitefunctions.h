#pragma once
// Text functions the embedded engine lacks: its UPPER folds only the ASCII letters, while a
// household searches for "crème" and "Борщ" as readily as for "pie".

class QSqlDatabase;

// Replaces UPPER and LIKE on an SQLite connection by ones that fold every letter.
void InstallTextFunctions(QSqlDatabase &db);

// Makes the texts of the file compare without regard to case for every letter (the NOCASE
// collation of the schema's text columns, which the engine applies to A-Z only), so that
// "Épices" and "épices" are one cabinet item. The file's indexes were ordered by the engine's
// own rule: the first time, the cabinet items that become one are merged (the item kept is
// available when either was) and the indexes are put in the new order, in one transaction;
// the file then says so. A file that cannot be written keeps the engine's rule. True when the
// connection compares every letter.
bool InstallCaseFolding(QSqlDatabase &db);
