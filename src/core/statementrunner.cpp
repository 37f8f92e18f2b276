#include "statementrunner.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <sqlite3.h>

namespace {

// SQLite's code for a statement it cannot parse or prepare (syntax, unknown table or column).
constexpr int kCommandTextError = SQLITE_ERROR;

// Rows read straight from the embedded engine, each field converted only when it is read.
class SqliteSource : public RecordSource
{
public:
    explicit SqliteSource(sqlite3_stmt *statement)
        : m_statement(statement)
    {
        const int columns = sqlite3_column_count(statement);
        m_names.reserve(columns);
        for (int i = 0; i < columns; ++i)
            m_names.append(QString::fromUtf8(sqlite3_column_name(statement, i)));
    }
    ~SqliteSource() override { sqlite3_finalize(m_statement); }

    // The first step has been taken by the runner.
    void setFirstStep(int result) { m_pending = result; }

    bool next() override
    {
        int result = m_pending;
        m_pending = -1;
        if (result < 0)
            result = m_done ? SQLITE_DONE : sqlite3_step(m_statement);
        m_done = result != SQLITE_ROW;
        return !m_done;
    }
    QVariant value(int index) const override
    {
        switch (sqlite3_column_type(m_statement, index)) {
        case SQLITE_INTEGER:
            return QVariant(qlonglong(sqlite3_column_int64(m_statement, index)));
        case SQLITE_FLOAT:
            return QVariant(sqlite3_column_double(m_statement, index));
        case SQLITE_NULL:
            return QVariant();
        case SQLITE_BLOB:
            return QByteArray(static_cast<const char *>(sqlite3_column_blob(m_statement, index)),
                              sqlite3_column_bytes(m_statement, index));
        default:
            return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_statement, index)),
                                     sqlite3_column_bytes(m_statement, index));
        }
    }
    qint64 integer(int index) const override
    {
        return index < int(m_names.size()) ? sqlite3_column_int64(m_statement, index) : 0;
    }
    int indexOf(const QString &column) const override
    {
        for (qsizetype i = 0; i < m_names.size(); ++i) {
            if (m_names[i].compare(column, Qt::CaseInsensitive) == 0)
                return int(i);
        }
        return -1;
    }
    int count() const override { return int(m_names.size()); }

private:
    sqlite3_stmt *m_statement;
    QStringList m_names;
    int m_pending = -1;
    bool m_done = false;
};

class QuerySource : public RecordSource
{
public:
    explicit QuerySource(QSqlQuery query)
        : m_query(std::move(query))
        , m_record(m_query.record())
    {
    }
    bool next() override { return m_query.next(); }
    QVariant value(int index) const override { return m_query.value(index); }
    int indexOf(const QString &column) const override { return m_record.indexOf(column); }
    int count() const override { return m_record.count(); }

private:
    QSqlQuery m_query;
    QSqlRecord m_record;
};

sqlite3 *sqliteHandle(QSqlDatabase &db)
{
    if (db.driverName() != u"QSQLITE" || !db.isOpen())
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.data());
}

// A statement the engine could not prepare is an error in the command text; one that fails
// while it runs (a constraint, a full disk, a LIKE pattern too long) is reported.
Recordset fail(StatementError *error, sqlite3 *connection, int code, bool preparing)
{
    error->failed = true;
    error->commandText = preparing && (code & 0xff) == kCommandTextError;
    error->number = QString::number(code);
    error->description = QString::fromUtf8(sqlite3_errmsg(connection));
    return {};
}

// The engine reads one statement and ignores what follows it. Text after the end is an
// error, as it is for the statements' own dialect: otherwise a value whose apostrophe was
// taken for the end of the text would be stored cut short without a word.
bool onlyBlanks(const char *text, const char *end)
{
    for (; text < end; ++text) {
        if (*text != ' ' && *text != '\t' && *text != '\r' && *text != '\n' && *text != ';')
            return false;
    }
    return true;
}

Recordset runOnSqlite(sqlite3 *connection, const QString &sql, StatementError *error)
{
    const QByteArray utf8 = sql.toUtf8();
    sqlite3_stmt *statement = nullptr;
    const char *tail = nullptr;
    int result = sqlite3_prepare_v2(connection, utf8.constData(), int(utf8.size()), &statement, &tail);
    if (result != SQLITE_OK) {
        sqlite3_finalize(statement);
        return fail(error, connection, sqlite3_extended_errcode(connection), true);
    }
    if (!statement) // nothing but blanks or a comment
        return {};
    if (tail && !onlyBlanks(tail, utf8.constData() + utf8.size())) {
        sqlite3_finalize(statement);
        error->failed = true;
        error->commandText = true;
        error->number = QString::number(kCommandTextError);
        error->description = QStringLiteral("Characters found after end of SQL statement.");
        return {};
    }
    result = sqlite3_step(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        const int code = sqlite3_extended_errcode(connection);
        Recordset failed = fail(error, connection, code, false);
        sqlite3_finalize(statement);
        return failed;
    }
    if (sqlite3_column_count(statement) == 0) {
        sqlite3_finalize(statement);
        return {};
    }
    auto source = std::make_shared<SqliteSource>(statement);
    source->setFirstStep(result);
    return Recordset(source);
}

Recordset runOnQt(QSqlDatabase &db, const QString &sql, StatementError *error)
{
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(sql)) {
        const QSqlError e = query.lastError();
        error->failed = true;
        error->number = e.nativeErrorCode().isEmpty() ? QStringLiteral("-1") : e.nativeErrorCode();
        error->commandText = e.type() == QSqlError::StatementError && error->number == u"1";
        error->description = e.databaseText().isEmpty() ? e.text() : e.databaseText();
        return {};
    }
    if (!query.isSelect())
        return {};
    return Recordset(std::make_shared<QuerySource>(std::move(query)));
}

} // namespace

Recordset RunStatement(QSqlDatabase &db, const QString &sql, StatementError *error)
{
    if (sqlite3 *connection = sqliteHandle(db))
        return runOnSqlite(connection, sql, error);
    return runOnQt(db, sql, error);
}
