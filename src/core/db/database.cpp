#include "database.h"

#include "core/db/datasources.h"
#include "core/db/integrity.h"
#include "core/platform/voice.h"
#include "core/platform/platform.h"
#include "core/db/sqldialect.h"
#include "core/db/sqlitefunctions.h"
#include "core/db/statementrunner.h"
#include "core/db/schema.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>

#include <initializer_list>

Recordset gRS;
QString gSQL;
bool gNotConnected = true;
qint32 gMaxRecipeID = 0;

namespace {

int g_batchDepth = 0; // batches open inside one another
// The first failure inside the open batch that no statement can help (a full disk, a lost
// server): the batch cannot be kept, and says why once, not once per statement.
StatementError g_trouble;
// The server dropped the connection: the next command opens it again before it runs.
bool g_connectionLost = false;
GatheredFailures *g_gathered = nullptr;
QString g_searchNarrowing; // see SearchNarrowing
// The server-wide lock the writers of one collection take turns on ("MIRE" in ASCII).
constexpr qint64 kWriterLock = 0x4d495245;
// A statement waits briefly for another program's lock; a batch waits up to kLockWaitMs, in
// steps, with the progress window telling why.
constexpr int kStatementLockWaitMs = 2000;
constexpr int kLockStepMs = 250;

bool onServer(const QSqlDatabase &db)
{
    return db.driverName() == u"QPSQL";
}

void prepareConnection(QSqlDatabase &db)
{
    if (db.driverName() != u"QSQLITE")
        return;
    QSqlQuery setup(db);
    setup.exec(QStringLiteral("PRAGMA foreign_keys = ON"));
    InstallTextFunctions(db);
    InstallCaseFolding(db);
    setup.exec(QStringLiteral("PRAGMA journal_mode = DELETE"));
    // Searches read every line of every recipe: reading the file through a memory map spares
    // copying each page.
    setup.exec(QStringLiteral("PRAGMA mmap_size = 268435456"));
    // A recipe stored inside a larger batch keeps its way back in memory, not in a temporary file.
    setup.exec(QStringLiteral("PRAGMA temp_store = MEMORY"));
    SetLockWait(db, kStatementLockWaitMs);
}

// The database as the household knows it: the file, or the database on its server.
QString describe(const DataSource &source)
{
    if (!source.onServer())
        return source.database;
    return QStringLiteral("%1 on %2").arg(source.database, source.serverName());
}

// Why a server refused the connection, in the household's words where the cause is a common
// one; the server's own words otherwise.
QString refusal(const DataSource &source, const QString &said)
{
    if (!source.onServer())
        return said;
    const auto saying = [&said](const char *words) { return said.contains(QLatin1String(words), Qt::CaseInsensitive); };
    if (saying("password authentication failed") || saying("no password supplied"))
        return QStringLiteral("the server did not accept the user name and password (see the line for this server in "
                              "~/.pgpass, or the Password of the data source)");
    if (saying("database \"") && saying("does not exist"))
        return QStringLiteral("the server %1 has no database named %2").arg(source.serverName(), source.database);
    if (saying("role \"") && saying("does not exist"))
        return QStringLiteral("the server %1 has no user named %2").arg(source.serverName(), source.user);
    if (saying("connection refused"))
        return QStringLiteral("nothing answers on %1 at port %2; the server may not be running")
            .arg(source.serverName())
            .arg(source.port >= 0 ? source.port : 5432);
    if (saying("timeout expired"))
        return QStringLiteral("the server %1 did not answer within %2 seconds")
            .arg(source.serverName())
            .arg(source.connectTimeout);
    if (saying("could not translate host name"))
        return QStringLiteral("this computer does not know the name %1").arg(source.serverName());
    return said;
}

bool failOpen(OpenFailure *failure, OpenFailure::Kind kind, const QString &file, const QString &reason = {},
              bool server = false)
{
    if (failure)
        *failure = {kind, file, reason, server};
    return false;
}

} // namespace

QSqlDatabase gConn()
{
    return QSqlDatabase::database(kDataSourceName, false);
}

bool OpenDatabase(OpenFailure *failure)
{
    const DataSource source = FindDataSource(kDataSourceName);
    if (source.name.isEmpty())
        return failOpen(failure, OpenFailure::NotRegistered, {});
    const QString file = source.database;
    if (!QSqlDatabase::isDriverAvailable(source.driver))
        return failOpen(failure, OpenFailure::Unusable, file,
                        QStringLiteral("the database driver %1 is not installed").arg(source.driver));
    // SQLite would quietly create a missing file; a missing database is a failed open.
    if (source.driver == u"QSQLITE" && !QFileInfo(file).isFile())
        return failOpen(failure, OpenFailure::Missing, file);

    if (QSqlDatabase::contains(kDataSourceName)) {
        gRS = Recordset();
        ReleaseCachedStatements(); // the engine closes a connection only with no statement left
        const bool sameDriver = gConn().driverName() == source.driver;
        gConn().close();
        if (!sameDriver)
            QSqlDatabase::removeDatabase(kDataSourceName);
    }
    QSqlDatabase db =
        QSqlDatabase::contains(kDataSourceName) ? gConn() : QSqlDatabase::addDatabase(source.driver, kDataSourceName);
    ConfigureConnection(db, source);
    if (!db.open())
        return failOpen(failure, OpenFailure::Unusable, describe(source),
                        refusal(source, db.lastError().text().trimmed()), source.onServer());
    if (const QString problem = RecipeDatabaseProblem(db); !problem.isEmpty()) {
        db.close();
        return failOpen(failure, OpenFailure::Unusable, describe(source), problem, source.onServer());
    }
    prepareConnection(db);
    SetKnownDamage({});
    gNotConnected = false;
    return true;
}

void ConfigureConnection(QSqlDatabase &db, const DataSource &source)
{
    db.setDatabaseName(source.database);
    db.setHostName(source.host);
    db.setPort(source.port);
    if (source.onServer()) {
        // Left out of the entry, the user name and password come from the server's usual
        // sources ($PGUSER, $PGPASSWORD, ~/.pgpass), so they need not be written down here.
        db.setUserName(source.user);
        db.setPassword(source.password);
        QStringList options {QStringLiteral("connect_timeout=%1").arg(source.connectTimeout)};
        if (!source.sslMode.isEmpty())
            options << QStringLiteral("sslmode=") + source.sslMode;
        db.setConnectOptions(options.join(u';'));
    } else {
        db.setUserName(QStringLiteral("admin"));
        db.setPassword(QStringLiteral("marjoram"));
    }
}

void CloseDatabase()
{
    gRS = Recordset();
    ReleaseCachedStatements();
    if (QSqlDatabase::contains(kDataSourceName))
        gConn().close();
    gNotConnected = true;
}

bool IsDelimiterApostrophe(const QString &sql, qsizetype i)
{
    const QChar before = i > 0 ? sql[i - 1] : QChar();
    const QChar after = i + 1 < sql.size() ? sql[i + 1] : QChar();
    // The two characters before, blanks around them left out, are a comma: ", '" or " ,'".
    const bool commaBefore =
        i == 1 ? before == u','
               : i > 1 && ((sql[i - 2] == u',' && before == u' ') || (sql[i - 2] == u' ' && before == u','));
    return before == u'(' || after == u',' || commaBefore || after == u')';
}

qsizetype DelimiterApostropheIn(const QString &text)
{
    // The text as it stands between the delimiters of an INSERT.
    static const QString prefix = QStringLiteral("INSERT INTO T VALUES (0, '");
    const QString statement = prefix + text + QStringLiteral("')");
    for (qsizetype k = text.indexOf(u'\''); k >= 0; k = text.indexOf(u'\'', k + 1)) {
        if (IsDelimiterApostrophe(statement, prefix.size() + k))
            return k;
    }
    return -1;
}

QString PrepareSQL(QString &sql)
{
    sql = Trim(sql);
    if (!sql.startsWith(QStringLiteral("INSERT INTO")))
        return sql;
    QString out;
    out.reserve(sql.size() + 8);
    qsizetype copied = 0;
    for (qsizetype i = sql.indexOf(u'\''); i >= 0; i = sql.indexOf(u'\'', i + 1)) {
        if (IsDelimiterApostrophe(sql, i))
            continue;
        out += QStringView(sql).sliced(copied, i + 1 - copied);
        out += u'\'';
        copied = i + 1;
    }
    out += QStringView(sql).sliced(copied);
    return out;
}

namespace {

// Opens a connection the server dropped again, quietly; false when the server is still away.
bool reconnectIfLost()
{
    if (!g_connectionLost || g_batchDepth > 0)
        return true;
    QSqlDatabase db = gConn();
    gRS = Recordset();
    ReleaseCachedStatements();
    db.close();
    if (!db.open())
        return false;
    prepareConnection(db);
    g_connectionLost = false;
    return true;
}

// A failed statement: an error in the command text passes in silence; inside a batch a failure
// no statement can help fails the batch once; any other is shown.
Recordset failed(const QString &prepared, const StatementError &error);

} // namespace

namespace {

// Whether the file keeps the ingredient index and it holds every line (a line numbered outside
// it, found through its own small index, is searched by walking the lines).
bool keepsIngredientIndex(QSqlDatabase &db)
{
    StatementError error;
    const Recordset rs =
        RunStatement(db,
                     QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name = '") + kIngredientIndex +
                         QStringLiteral("' AND NOT EXISTS (SELECT 1 FROM INGREDIENTS WHERE "
                                        "ingred_id NOT BETWEEN 0 AND 1023)"),
                     &error);
    return !error.failed && rs && !rs.eof() && rs.integer(0) > 0;
}

} // namespace

Recordset ExecuteSQL(QString &sql)
{
    const QString prepared = PrepareSQL(sql);
    // After such a failure the engine may have rolled the batch back already: a further
    // statement would be kept on its own, outside the batch.
    if (g_trouble.failed && g_batchDepth > 0)
        return Recordset::failure();
    reconnectIfLost();
    QSqlDatabase db = gConn();
    StatementError error;
    if (!KnownDamage().isEmpty() && !prepared.startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive)) {
        // Nothing is written into a damaged file: it would spread the damage.
        error = {true, false, StatementError::Damaged, QStringLiteral("11"), KnownDamage()};
        return failed(prepared, error);
    }
    SqlEngine engine = onServer(db) ? SqlEngine::Postgres : SqlEngine::Sqlite;
    if (engine == SqlEngine::Sqlite && SearchesIngredientText(prepared) && keepsIngredientIndex(db))
        engine = SqlEngine::SqliteIndexed;
    const QString narrowed = g_searchNarrowing.isEmpty() ? prepared : NarrowRecipeSearch(prepared, g_searchNarrowing);
    Recordset result = RunStatement(db, TranslateJetSql(narrowed, engine), &error, g_batchDepth > 0);
    if (!error.failed)
        return result;
    if (error.cause == StatementError::Unreachable)
        g_connectionLost = true;
    return failed(prepared, error);
}

namespace {

Recordset failed(const QString &prepared, const StatementError &error)
{
    if (!error.commandText) {
        if (error.cause != StatementError::Other && g_batchDepth > 0) {
            if (!g_trouble.failed)
                g_trouble = error;
            return Recordset::failure();
        }
        // What the household can do about it, or the statement as detail, cut short: a box must
        // stay readable whatever was typed.
        constexpr qsizetype kShown = 600;
        const QString detail = error.cause != StatementError::Other ? PlainFailure(error)
                             : prepared.size() > kShown             ? prepared.left(kShown) + QStringLiteral("...")
                                                                    : prepared;
        // A server away is told in the household's words alone: there is nothing technical to read.
        const QString text =
            error.cause == StatementError::Unreachable
                ? detail
                : error.number + QStringLiteral(": ") + error.description + QStringLiteral("\n\n") + detail;
        if (g_gathered)
            g_gathered->add(text);
        else
            TheVoice().report(text, QStringLiteral("Database Error"));
    }
    return Recordset::failure();
}

} // namespace

Recordset ExecuteSQL(const QString &sql)
{
    QString copy = sql;
    return ExecuteSQL(copy);
}

LowMemoryWork::LowMemoryWork()
{
    QSqlDatabase db = gConn();
    if (!db.isOpen() || db.driverName() != u"QSQLITE")
        return;
    QSqlQuery q(db);
    const auto current = [&q](const QString &pragma) {
        return q.exec(QStringLiteral("PRAGMA ") + pragma) && q.next() ? q.value(0).toString() : QString();
    };
    m_mmapSize = current(QStringLiteral("mmap_size"));
    m_tempStore = current(QStringLiteral("temp_store"));
    q.exec(QStringLiteral("PRAGMA mmap_size = 0"));
    q.exec(QStringLiteral("PRAGMA temp_store = FILE"));
}

LowMemoryWork::~LowMemoryWork()
{
    QSqlDatabase db = gConn();
    if (m_mmapSize.isEmpty() || !db.isOpen() || db.driverName() != u"QSQLITE")
        return;
    QSqlQuery back(db);
    back.exec(QStringLiteral("PRAGMA mmap_size = ") + m_mmapSize);
    if (!m_tempStore.isEmpty())
        back.exec(QStringLiteral("PRAGMA temp_store = ") + m_tempStore);
}

SearchNarrowing::SearchNarrowing(const QString &condition) : m_before(std::exchange(g_searchNarrowing, condition)) { }

SearchNarrowing::~SearchNarrowing()
{
    g_searchNarrowing = m_before;
}

UncheckedReferences::UncheckedReferences()
{
    QSqlDatabase db = gConn();
    if (g_batchDepth > 0 || !db.isOpen() || db.driverName() != u"QSQLITE")
        return;
    QSqlQuery q(db);
    m_setAside = q.exec(QStringLiteral("PRAGMA foreign_keys")) && q.next() && q.value(0).toInt() == 1 &&
                 q.exec(QStringLiteral("PRAGMA foreign_keys = OFF"));
}

UncheckedReferences::~UncheckedReferences()
{
    QSqlDatabase db = gConn();
    if (m_setAside && db.isOpen() && db.driverName() == u"QSQLITE")
        QSqlQuery(db).exec(QStringLiteral("PRAGMA foreign_keys = ON"));
}

void ReportFailedStatement(const QString &statement, const StatementError &error)
{
    failed(statement, error);
}

bool BatchIsOpen()
{
    return g_batchDepth > 0 && !g_trouble.failed;
}

qint32 NextId(const QString &table)
{
    const Recordset rs = ExecuteSQL(QStringLiteral("SELECT MAX(id) FROM ") + table);
    if (!rs || rs.eof() || rs.value(0).isNull())
        return 1;
    return rs.value(0).toInt() + 1;
}

namespace {

const QString kNotStored = QStringLiteral("Nothing of this change was stored.");
const QString kWaitingForLock =
    QStringLiteral("Another program is using the recipe database. Waiting for it to finish...");

// Runs one of the batch's own statements; while another program holds the file, tries again
// for up to kLockWaitMs, the progress window telling the user what the program waits for.
bool runWaiting(const QString &sql, StatementError &error)
{
    QSqlDatabase db = gConn();
    QElapsedTimer clock;
    bool ran = false;
    for (;;) {
        error = {};
        ran = RunControlStatement(db, sql, &error);
        if (ran || error.cause != StatementError::Busy)
            break;
        if (!clock.isValid()) {
            clock.start();
            SetLockWait(db, kLockStepMs);
        }
        if (clock.elapsed() >= kLockWaitMs || !TheVoice().waiting(kWaitingForLock, int(clock.elapsed()), kLockWaitMs))
            break;
    }
    if (clock.isValid()) {
        SetLockWait(db, kStatementLockWaitMs);
        TheVoice().waitEnded();
    }
    return ran;
}

} // namespace

QString PlainFailure(const StatementError &error)
{
    switch (error.cause) {
    case StatementError::Busy:
        return QStringLiteral("Another program is using the recipe database (another copy of Mirepan, a database "
                              "browser). ") +
               kNotStored + QStringLiteral(" Close the other program and try again.");
    case StatementError::Full:
        return QStringLiteral("The disk holding the recipe database is full. ") + kNotStored +
               QStringLiteral(" Make room on the disk and try again.");
    case StatementError::ReadOnly:
        return QStringLiteral("The recipe database is read-only. ") + kNotStored +
               QStringLiteral(" Check that the file and its folder may be written to.");
    case StatementError::Disk:
        return QStringLiteral("The recipe database could not be written to its disk. ") + kNotStored +
               QStringLiteral(" Check the disk and try again.");
    case StatementError::Damaged:
        return QStringLiteral("The recipe database is damaged. ") + kNotStored +
               QStringLiteral(" Restore it from a backup (Database, Restore).");
    case StatementError::Unreachable:
        return QStringLiteral("The recipe collection on ") + gConn().hostName() +
               QStringLiteral(" cannot be reached: ") + error.description.trimmed() +
               QStringLiteral(". Your unsaved work stays open; try again when the server is back.");
    case StatementError::Other:
        break;
    }
    return QStringLiteral("The recipe database refused the change (") + error.description + QStringLiteral("). ") +
           kNotStored;
}

StatementBatch::StatementBatch()
{
    if (gNotConnected)
        return;
    StatementError error;
    if (!KnownDamage().isEmpty()) {
        m_failure = PlainFailure({true, false, StatementError::Damaged, QStringLiteral("11"), KnownDamage()});
        return;
    }
    if (g_batchDepth == 0) {
        g_trouble = {};
        reconnectIfLost();
        // Writers take turns: a batch that numbers a new recipe (the largest id plus one) and
        // then stores it cannot meet another writer's recipe under the same number. The file
        // database is claimed for writing at the start (waiting while another program writes),
        // a server's collection through a lock of its own; the turn ends with the batch.
        if (QSqlDatabase db = gConn(); onServer(db)) {
            m_active = RunControlStatement(db, QStringLiteral("BEGIN"), &error);
            if (m_active)
                QSqlQuery(db).exec(QStringLiteral("SELECT pg_advisory_xact_lock(%1)").arg(kWriterLock));
        } else {
            m_active = runWaiting(QStringLiteral("BEGIN IMMEDIATE"), error);
        }
    } else {
        // Inside another batch: a savepoint, so that this one can fail alone.
        m_savepoint = QStringLiteral("batch") + QString::number(g_batchDepth);
        m_active = runWaiting(QStringLiteral("SAVEPOINT ") + m_savepoint, error);
    }
    if (m_active) {
        ++g_batchDepth;
    } else {
        g_connectionLost = g_connectionLost || error.cause == StatementError::Unreachable;
        m_failure = PlainFailure(error);
    }
}

StatementBatch::~StatementBatch()
{
    if (m_active)
        rollBack();
}

void StatementBatch::rollBack()
{
    m_active = false;
    --g_batchDepth;
    if (m_failure.isEmpty() && g_trouble.failed)
        m_failure = PlainFailure(g_trouble);
    if (g_batchDepth == 0)
        g_trouble = {};
    QSqlDatabase db = gConn();
    if (!m_savepoint.isEmpty()) {
        RunControlStatement(db, QStringLiteral("ROLLBACK TO ") + m_savepoint);
        RunControlStatement(db, QStringLiteral("RELEASE ") + m_savepoint);
    } else {
        // A commit that failed on a full disk may have ended the transaction already; the
        // rollback then has nothing to do.
        RunControlStatement(db, QStringLiteral("ROLLBACK"));
    }
}

bool StatementBatch::commit()
{
    if (!m_active)
        return false;
    if (m_failed || g_trouble.failed) {
        rollBack();
        return false;
    }
    StatementError error;
    const bool kept = m_savepoint.isEmpty() ? runWaiting(QStringLiteral("COMMIT"), error)
                                            : runWaiting(QStringLiteral("RELEASE ") + m_savepoint, error);
    if (!kept) {
        g_connectionLost = g_connectionLost || error.cause == StatementError::Unreachable;
        m_failure = PlainFailure(error);
        rollBack();
        return false;
    }
    m_active = false;
    --g_batchDepth;
    return true;
}

QString StatementBatch::failure() const
{
    if (m_failure.isEmpty() && m_active && g_trouble.failed)
        return PlainFailure(g_trouble);
    return m_failure;
}

void StatementBatch::reportFailure() const
{
    if (const QString why = failure(); !why.isEmpty())
        TheVoice().report(why, QStringLiteral("Not Saved"));
}

GatheredFailures::GatheredFailures() : m_outer(g_gathered)
{
    g_gathered = this;
}

GatheredFailures::~GatheredFailures()
{
    g_gathered = m_outer;
}
