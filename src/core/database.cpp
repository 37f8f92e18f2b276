#include "database.h"

#include "datasources.h"
#include "modini.h"
#include "msgbox.h"
#include "platform.h"
#include "programdir.h"
#include "sqldialect.h"
#include "sqlitefunctions.h"
#include "statementrunner.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>

#include <initializer_list>

Recordset gRS;
QString gSQL;
bool gNotConnected = true;
qint16 gMaxRecipeID = 0;

namespace {

int g_batchDepth = 0; // batches open inside one another
// The server-wide lock the writers of one collection take turns on ("MIRE" in ASCII).
constexpr qint64 kWriterLock = 0x4d495245;

bool onServer(const QSqlDatabase &db)
{
    return db.driverName() == u"QPSQL";
}

struct TableColumns {
    const char *table;
    std::initializer_list<const char *> columns;
};

// The tables and columns every statement counts on: values are inserted without column
// names, so the order of the columns is part of the database's shape.
const TableColumns kRecipeTables[] = {
    {"RECIPE", {"id", "servings", "type", "category", "title", "prep_time", "cook_time", "notes", "rating"}},
    {"INGREDIENTS", {"recipe_id", "ingred_id", "amount", "measure", "ingredient", "cabinet"}},
    {"DIRECTIONS", {"recipe_id", "step", "direction"}},
    {"CABINET", {"item", "type", "available"}},
    {"MENU", {"ID", "parent", "key", "text"}},
};

} // namespace

// Only reads: a damaged file is left exactly as it was.
QString RecipeDatabaseProblem(QSqlDatabase &db)
{
    if (db.driverName() == u"QSQLITE") {
        // The engine opens a file without looking at it: the first read tells.
        QSqlQuery check(db);
        if (!check.exec(QStringLiteral("SELECT count(*) FROM sqlite_master")) || !check.next())
            return QStringLiteral("it is not a database, or it is damaged (%1)").arg(check.lastError().databaseText());
        if (check.value(0).toInt() == 0)
            return QStringLiteral("it holds no tables");
    }
    for (const TableColumns &shape : kRecipeTables) {
        const QString table = QLatin1String(shape.table);
        // A server keeps unquoted names in lower case.
        const QSqlRecord record = db.record(onServer(db) ? table.toLower() : table);
        if (record.isEmpty())
            return QStringLiteral("the table %1 is missing").arg(table);
        int position = 0;
        for (const char *column : shape.columns) {
            if (position >= record.count() ||
                record.fieldName(position).compare(QLatin1String(column), Qt::CaseInsensitive) != 0)
                return QStringLiteral("the table %1 has no column %2 in its place").arg(table, QLatin1String(column));
            ++position;
        }
        QSqlQuery probe(db);
        if (!probe.exec(QStringLiteral("SELECT * FROM ") + table + QStringLiteral(" LIMIT 1")))
            return QStringLiteral("the table %1 cannot be read (%2)").arg(table, probe.lastError().databaseText());
    }
    return {};
}

namespace {

void prepareConnection(QSqlDatabase &db)
{
    if (db.driverName() != u"QSQLITE")
        return;
    QSqlQuery setup(db);
    setup.exec(QStringLiteral("PRAGMA foreign_keys = ON"));
    InstallTextFunctions(db);
    setup.exec(QStringLiteral("PRAGMA journal_mode = DELETE"));
    // Searches read every line of every recipe: reading the file through a memory map spares
    // copying each page.
    setup.exec(QStringLiteral("PRAGMA mmap_size = 268435456"));
    // A recipe stored inside a larger batch keeps its way back in memory, not in a temporary file.
    setup.exec(QStringLiteral("PRAGMA temp_store = MEMORY"));
}

// The database as the household knows it: the file, or the database on its server.
QString describe(const DataSource &source)
{
    if (!source.onServer())
        return source.database;
    return QStringLiteral("%1 on %2").arg(source.database, source.serverName());
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
    QSqlDatabase db = QSqlDatabase::contains(kDataSourceName)
                          ? gConn()
                          : QSqlDatabase::addDatabase(source.driver, kDataSourceName);
    ConfigureConnection(db, source);
    if (!db.open())
        return failOpen(failure, OpenFailure::Unusable, describe(source), db.lastError().text().trimmed(),
                        source.onServer());
    if (const QString problem = RecipeDatabaseProblem(db); !problem.isEmpty()) {
        db.close();
        return failOpen(failure, OpenFailure::Unusable, describe(source), problem, source.onServer());
    }
    prepareConnection(db);
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
        db.setConnectOptions(source.sslMode.isEmpty() ? QString() : QStringLiteral("sslmode=") + source.sslMode);
    } else {
        db.setUserName(QStringLiteral("admin"));
        db.setPassword(QStringLiteral("marjoram"));
    }
}

QString RecipeDatabaseProblem(const QString &file)
{
    if (!QFileInfo(file).isFile())
        return QStringLiteral("the file does not exist");
    const QString name = QStringLiteral("check-") + QUuid::createUuid().toString();
    QString problem;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        problem = db.open() ? RecipeDatabaseProblem(db) : db.lastError().text();
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return problem;
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
    const bool commaBefore = i == 1 ? before == u','
                                    : i > 1 && ((sql[i - 2] == u',' && before == u' ') ||
                                                (sql[i - 2] == u' ' && before == u','));
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

Recordset ExecuteSQL(QString &sql)
{
    const QString prepared = PrepareSQL(sql);
    QSqlDatabase db = gConn();
    StatementError error;
    const SqlEngine engine = onServer(db) ? SqlEngine::Postgres : SqlEngine::Sqlite;
    Recordset result = RunStatement(db, TranslateJetSql(prepared, engine), &error, g_batchDepth > 0);
    if (!error.failed)
        return result;
    if (!error.commandText) {
        // The statement as detail, cut short: a box must stay readable whatever was typed.
        constexpr qsizetype kShown = 600;
        const QString detail = prepared.size() > kShown ? prepared.left(kShown) + QStringLiteral("...") : prepared;
        MsgBox(error.number + QStringLiteral(": ") + error.description + QStringLiteral("\n\n") + detail,
               Msg::Critical, QStringLiteral("Database Error"));
    }
    return Recordset::failure();
}

Recordset ExecuteSQL(const QString &sql)
{
    QString copy = sql;
    return ExecuteSQL(copy);
}

void RecordMaxRecipeID()
{
    gMaxRecipeID = ToInt16(Val(GetIniValue(IniPath(), QStringLiteral("Misc"),
                                           QStringLiteral("MaxRecipeID"))));
    if (gMaxRecipeID != 0 || gNotConnected)
        return;
    gSQL = QStringLiteral("SELECT MAX(id) FROM RECIPE");
    const Recordset rs = ExecuteSQL(gSQL);
    // An empty table still answers one row, holding NULL: nothing to record then.
    if (!rs || rs.eof() || rs.value(0).isNull())
        return;
    const qint16 highest = ToInt16(rs.value(0).toDouble());
    WriteIniValue(IniPath(), QStringLiteral("Misc"),
                  QStringLiteral("MaxRecipeID=") + QString::number(highest));
    gMaxRecipeID = highest;
}

qint32 NextId(const QString &table)
{
    const Recordset rs = ExecuteSQL(QStringLiteral("SELECT MAX(id) FROM ") + table);
    if (!rs || rs.eof() || rs.value(0).isNull())
        return 1;
    return rs.value(0).toInt() + 1;
}

QString PrepareSearchText(QString &text)
{
    text = Trim(text);
    QString prepared = text;
    prepared.replace(u'\'', QStringLiteral("''"));
    return prepared.toUpper();
}

bool ReportNotConnected()
{
    if (!gNotConnected)
        return false;
    MsgBox(QStringLiteral("Because you were not able to connect to the database, this function "
                          "has been disabled."),
           Msg::Ok, QStringLiteral("Message"));
    return true;
}

StatementBatch::StatementBatch()
{
    if (gNotConnected)
        return;
    if (g_batchDepth == 0) {
        // Writers take turns: a batch that numbers a new recipe (the largest id plus one) and
        // then stores it cannot meet another writer's recipe under the same number. The file
        // database is claimed for writing at the start (waiting while another program writes),
        // a server's collection through a lock of its own; the turn ends with the batch.
        if (onServer(gConn())) {
            m_active = gConn().transaction();
            if (m_active)
                QSqlQuery(gConn()).exec(QStringLiteral("SELECT pg_advisory_xact_lock(%1)").arg(kWriterLock));
        } else {
            QSqlDatabase db = gConn();
            m_active = RunControlStatement(db, QStringLiteral("BEGIN IMMEDIATE"));
        }
    } else {
        // Inside another batch: a savepoint, so that this one can fail alone.
        m_savepoint = QStringLiteral("batch") + QString::number(g_batchDepth);
        QSqlDatabase db = gConn();
        m_active = RunControlStatement(db, QStringLiteral("SAVEPOINT ") + m_savepoint);
    }
    if (m_active)
        ++g_batchDepth;
}

StatementBatch::~StatementBatch()
{
    if (!m_active)
        return;
    --g_batchDepth;
    if (!m_savepoint.isEmpty()) {
        QSqlDatabase db = gConn();
        if (m_failed)
            RunControlStatement(db, QStringLiteral("ROLLBACK TO ") + m_savepoint);
        RunControlStatement(db, QStringLiteral("RELEASE ") + m_savepoint);
    } else if (m_failed) {
        gConn().rollback();
    } else {
        gConn().commit();
    }
}
