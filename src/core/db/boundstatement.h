#pragma once
// A statement of the file database prepared once and run for many rows with their values
// bound: the bulk path of a large import, where building and parsing a statement text for
// every row would cost more than storing it.

#include <QByteArrayView>
#include <QString>

struct sqlite3;
struct sqlite3_stmt;

class BoundStatement
{
public:
    enum class Step { Row, Done, Failed };

    // Prepares the statement (in the engine's own dialect) on the open file database; not
    // usable() on a server, a closed connection, or a statement the engine cannot read.
    explicit BoundStatement(const char *sql);
    ~BoundStatement();
    BoundStatement(const BoundStatement &) = delete;
    BoundStatement &operator=(const BoundStatement &) = delete;

    bool usable() const { return m_statement != nullptr; }
    // Values by position, from 1. A text is UTF-8, the encoding the file keeps texts in, so the
    // engine stores its bytes as they are; it must stay unchanged until the statement has run.
    // An empty text is stored empty, never as NULL.
    void bind(int position, qint64 value);
    void bind(int position, QByteArrayView utf8);
    // Runs the statement: a row to read, the end, or a failure, told as ExecuteSQL tells its
    // own (inside a batch, a full disk fails the batch).
    Step step();
    // Makes it ready for the next values.
    void reset();
    qint64 integer(int column) const;
    // A text column as the file holds it, valid until the next step.
    QByteArrayView bytes(int column) const;

private:
    sqlite3 *m_connection = nullptr;
    sqlite3_stmt *m_statement = nullptr;
    QString m_sql;
};
