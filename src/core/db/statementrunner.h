#pragma once
// Running one statement on the engine behind a connection.

#include "core/db/recordset.h"

class QSqlDatabase;
struct sqlite3;

struct StatementError {
    // What went wrong, as far as the household can do something about it.
    enum Cause { Other, Busy, Full, ReadOnly, Disk, Damaged, Unreachable };
    bool failed = false;
    bool commandText = false; // the engine could not parse or prepare the statement
    Cause cause = Other;
    QString number;
    QString description;
};

// Runs the statement (already in the engine's dialect). A query answers its rows; any other
// statement answers no result. On failure the error says why and the result is empty.
// insideBatch: a transaction is open, which a failing statement must leave usable.
Recordset RunStatement(QSqlDatabase &db, const QString &sql, StatementError *error, bool insideBatch = false);
// Runs one of the program's own statements that steer the connection (BEGIN, SAVEPOINT,
// RELEASE, ROLLBACK TO, COMMIT); true when it ran, else the error (when given) says why. Every
// save runs a few of them.
bool RunControlStatement(QSqlDatabase &db, const QString &sql, StatementError *error = nullptr);
// How long a statement on the file database waits for another program's lock before it fails
// as busy.
void SetLockWait(QSqlDatabase &db, int milliseconds);
// Whether the file database was opened for reading only (the file or its folder may not be
// written to); false on a server.
bool ConnectionIsReadOnly(QSqlDatabase &db);
// Lets go of the statements kept for reuse; before the connection closes.
void ReleaseCachedStatements();
// The file database's own handle behind the connection; nullptr on a server or when closed.
sqlite3 *SqliteConnection(QSqlDatabase &db);
// Why a statement of the file database failed with the code, as ExecuteSQL tells it.
StatementError SqliteFailure(sqlite3 *connection, int code);
