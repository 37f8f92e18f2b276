#pragma once
// The database session shared by the whole program: one connection to the data source
// "PANTRIO", the shared result set and the statement being built.
//
// Every statement is SQL text run by ExecuteSQL. A failed statement returns no result;
// an error in the command text is passed over in silence, any other failure is reported.

#include "core/db/datasources.h"
#include "core/db/recordset.h"
#include "core/db/statementrunner.h"

#include <QSqlDatabase>
#include <QString>

inline const QString kDataSourceName = QStringLiteral("PANTRIO");

QSqlDatabase gConn();
extern Recordset gRS;
extern QString gSQL;
extern bool gNotConnected;
extern qint32 gMaxRecipeID; // recipe numbers are 32-bit: imports of 100,000 recipes and more

// Why an open failed: nothing registered (the first start), the registered file missing (a
// drive not plugged in), or a database that cannot be used (damaged, not a recipe database,
// a table or column missing), with the reason in words.
struct OpenFailure {
    enum Kind { None, NotRegistered, Missing, Unusable };
    Kind kind = None;
    QString file; // for a server: the database and its server
    QString reason;
    bool onServer = false;
};

// Opens the registered data source "PANTRIO" (user "admin", password "marjoram"). A missing
// registration, a missing file or a file that is not a recipe database is a failed open, and
// failure (when given) says which; the file is never written to then.
bool OpenDatabase(OpenFailure *failure = nullptr);
void CloseDatabase();
// Sets the connection up for the data source: file or server, user and password.
void ConfigureConnection(QSqlDatabase &db, const DataSource &source);
// Trims the statement in place, prepares it (PrepareSQL), translates it to the engine's
// dialect and runs it. A failed statement answers a result whose failed() is true.
Recordset ExecuteSQL(QString &sql);
Recordset ExecuteSQL(const QString &sql);
// Trims the statement (the caller's text too) and, for an INSERT, doubles the apostrophes
// inside its quoted values.
QString PrepareSQL(QString &sql);
// Whether the apostrophe at position i of an INSERT is taken for a delimiter of a quoted value:
// one that touches a comma or a parenthesis is; any other is part of a value and is doubled.
bool IsDelimiterApostrophe(const QString &sql, qsizetype i);
// The first apostrophe of a text that an INSERT would take for the end of the text (so the
// text cannot be stored as it stands); -1 when there is none.
qsizetype DelimiterApostropheIn(const QString &text);
// The largest id of the table plus one; 1 for an empty table.
qint32 NextId(const QString &table);

// Runs several statements as one commit, so that a recipe's dozens of lines are written at
// once. Nothing of the batch is kept unless commit() says so: after fail(), a failed commit, or
// a scope left early, the batch is rolled back and a recipe is stored whole or not at all. A
// batch inside another fails alone; what it kept is committed with the outer one.
//
// The file database is claimed for writing at the start; while another program holds it, the
// batch waits a bounded time (the progress window tells why) before it gives up.
// Whether a batch has begun and not ended: statements run now are kept or dropped with it.
bool BatchIsOpen();

class StatementBatch
{
public:
    StatementBatch();
    ~StatementBatch();
    // False when the database could not be claimed: run none of the statements then (they
    // would each be kept on their own); failure() says why.
    bool begun() const { return m_active; }
    void fail() { m_failed = true; }
    // Keeps what the batch stored: true when it is in the database. A failed commit rolls the
    // batch back and leaves the connection usable for the next command; failure() says why.
    bool commit();
    // Why the batch could not begin, store or commit, in the household's words: a statement
    // that failed for a reason no statement can help (a full disk) fails the whole batch.
    // "" while nothing of the kind happened.
    QString failure() const;
    // Shows failure() in a message box.
    void reportFailure() const;
    StatementBatch(const StatementBatch &) = delete;
    StatementBatch &operator=(const StatementBatch &) = delete;

private:
    void rollBack();

    bool m_active = false;
    bool m_failed = false;
    QString m_savepoint; // set inside another batch
    QString m_failure;
};

// While it lives, the file database works in little memory: it reads through its own page
// cache instead of a memory map of the file, and sorts and rewrites in temporary files instead
// of memory. An import of 150,000 recipes, which reads back and counts all it stored, then needs
// no more memory than one of 30,000; the rewrite in order copies the file on disk; and a check
// that read every page lets go of their mapping at its end. What it found is put back.
class LowMemoryWork
{
public:
    LowMemoryWork();
    ~LowMemoryWork();
    LowMemoryWork(const LowMemoryWork &) = delete;
    LowMemoryWork &operator=(const LowMemoryWork &) = delete;

private:
    QString m_mmapSize; // as found; empty on another engine
    QString m_tempStore;
};

// While it lives, the recipe searches ExecuteSQL runs (as the search window writes them) meet
// the condition on their recipes "A" too: their rows are those of the statement that meet it.
// The cabinet filter narrows its search so to the recipes the database keeps as available,
// instead of reading every recipe and setting most aside. An empty condition narrows nothing.
class SearchNarrowing
{
public:
    explicit SearchNarrowing(const QString &condition);
    ~SearchNarrowing();
    SearchNarrowing(const SearchNarrowing &) = delete;
    SearchNarrowing &operator=(const SearchNarrowing &) = delete;

private:
    QString m_before;
};

// While it lives, the file database does not look up a line's recipe as each line is stored: a
// bulk import writes each recipe before its lines, reads everything it stored back, and removes
// a recipe's lines itself. Made outside a batch (inside one the engine keeps its check); what it
// found is put back.
class UncheckedReferences
{
public:
    UncheckedReferences();
    ~UncheckedReferences();
    UncheckedReferences(const UncheckedReferences &) = delete;
    UncheckedReferences &operator=(const UncheckedReferences &) = delete;

private:
    bool m_setAside = false;
};

// While it lives, the failed statements' messages are gathered here instead of shown a box
// each: a command that runs thousands (an import) names them once, in its closing summary.
class GatheredFailures
{
public:
    GatheredFailures();
    ~GatheredFailures();
    const QStringList &texts() const { return m_texts; }
    void add(const QString &text) { m_texts.append(text); }
    GatheredFailures(const GatheredFailures &) = delete;
    GatheredFailures &operator=(const GatheredFailures &) = delete;

private:
    QStringList m_texts;
    GatheredFailures *m_outer;
};

// Tells of a statement that failed outside ExecuteSQL as ExecuteSQL tells of its own: inside a
// batch a failure no statement can help fails the batch, any other is shown or gathered.
void ReportFailedStatement(const QString &statement, const StatementError &error);

// How long a command waits for another program that holds the database, in milliseconds.
inline constexpr int kLockWaitMs = 10000;
// The household's words for a failure of the database: the cause, then what it means.
QString PlainFailure(const StatementError &error);
