#include "boundstatement.h"

#include "database.h"
#include "statementrunner.h"

#include <QSqlDatabase>

#include <sqlite3.h>

BoundStatement::BoundStatement(const char *sql) : m_sql(QString::fromUtf8(sql))
{
    QSqlDatabase db = gConn();
    m_connection = SqliteConnection(db);
    if (m_connection && sqlite3_prepare_v2(m_connection, sql, -1, &m_statement, nullptr) != SQLITE_OK) {
        sqlite3_finalize(m_statement);
        m_statement = nullptr;
    }
}

BoundStatement::~BoundStatement()
{
    sqlite3_finalize(m_statement);
}

void BoundStatement::bind(int position, qint64 value)
{
    sqlite3_bind_int64(m_statement, position, value);
}

void BoundStatement::bind(int position, QByteArrayView utf8)
{
    // A null pointer would bind NULL: an empty text is bound from an empty literal.
    sqlite3_bind_text(m_statement, position, utf8.isEmpty() ? "" : utf8.data(), int(utf8.size()), SQLITE_STATIC);
}

BoundStatement::Step BoundStatement::step()
{
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW)
        return Step::Row;
    if (result == SQLITE_DONE)
        return Step::Done;
    const StatementError error = SqliteFailure(m_connection, sqlite3_extended_errcode(m_connection));
    sqlite3_reset(m_statement);
    ReportFailedStatement(m_sql, error);
    return Step::Failed;
}

void BoundStatement::reset()
{
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

qint64 BoundStatement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

QByteArrayView BoundStatement::bytes(int column) const
{
    const auto *data = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    return {data, sqlite3_column_bytes(m_statement, column)};
}
