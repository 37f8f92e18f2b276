#include "statementrunner.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <sqlite3.h>

#include <QHash>

#include <cctype>

namespace {

// SQLite's code for a statement it cannot parse or prepare (syntax, unknown table or column).
constexpr int kCommandTextError = SQLITE_ERROR;
const QString kTextAfterTheEnd = QStringLiteral("Characters found after end of SQL statement.");

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
    // Text read straight from the row, without a variant between (numbers keep their variant's
    // spelling).
    QString text(int index) const override
    {
        if (sqlite3_column_type(m_statement, index) != SQLITE_TEXT)
            return RecordSource::text(index);
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_statement, index)),
                                 sqlite3_column_bytes(m_statement, index));
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

// An INSERT of literal values ("INSERT INTO T VALUES (1, 'a', NULL)") runs as a statement of
// the same shape with the values bound, prepared once per shape and kept: an import stores
// hundreds of thousands of lines, and parsing each statement anew costs more than storing it.
// The values bound are the values the literals stand for, so what is stored is the same.
class InsertCache
{
public:
    ~InsertCache() { clear(); }

    void clear()
    {
        for (sqlite3_stmt *statement : std::as_const(m_statements))
            sqlite3_finalize(statement);
        m_statements.clear();
        m_connection = nullptr;
    }

    // The statement of the shape, prepared; nullptr when the engine will not prepare it
    // (the full text then runs as it stands and says why).
    sqlite3_stmt *statement(sqlite3 *connection, const QByteArray &shape)
    {
        if (connection != m_connection) {
            clear();
            m_connection = connection;
        }
        if (sqlite3_stmt *found = m_statements.value(shape))
            return found;
        sqlite3_stmt *statement = nullptr;
        const char *tail = nullptr;
        if (sqlite3_prepare_v3(connection, shape.constData(), int(shape.size()), SQLITE_PREPARE_PERSISTENT,
                               &statement, &tail) != SQLITE_OK ||
            !statement || (tail && *tail)) {
            sqlite3_finalize(statement);
            return nullptr;
        }
        m_statements.insert(shape, statement);
        return statement;
    }

private:
    sqlite3 *m_connection = nullptr;
    QHash<QByteArray, sqlite3_stmt *> m_statements;
};

InsertCache &insertCache()
{
    static InsertCache cache;
    return cache;
}

struct Literal {
    enum Kind { Text, Integer, Real, Null } kind;
    QByteArray text;
};

// The shape and literal values of "INSERT INTO name VALUES (v, ...)" with nothing after it but
// blanks; false for any other statement.
bool splitInsert(const QByteArray &sql, QByteArray &shape, QList<Literal> &values)
{
    static const QByteArray head = QByteArrayLiteral("INSERT INTO ");
    if (!sql.startsWith(head))
        return false;
    qsizetype i = head.size();
    const qsizetype n = sql.size();
    while (i < n && (std::isalnum(static_cast<unsigned char>(sql[i])) || sql[i] == '_'))
        ++i;
    static const QByteArray values_ = QByteArrayLiteral(" VALUES (");
    if (i == head.size() || sql.mid(i, values_.size()) != values_)
        return false;
    i += values_.size();
    shape = sql.left(i);
    const auto blanks = [&] {
        while (i < n && sql[i] == ' ')
            ++i;
    };
    for (;;) {
        blanks();
        if (i >= n)
            return false;
        Literal value{Literal::Text, {}};
        if (sql[i] == '\'') {
            for (++i;; ++i) {
                if (i >= n)
                    return false;
                if (sql[i] == '\'') {
                    if (i + 1 < n && sql[i + 1] == '\'') {
                        value.text += '\'';
                        ++i;
                        continue;
                    }
                    ++i;
                    break;
                }
                value.text += sql[i];
            }
        } else {
            const qsizetype from = i;
            if (sql[i] == '-' || sql[i] == '+')
                ++i;
            qsizetype digits = 0;
            while (i < n && std::isdigit(static_cast<unsigned char>(sql[i])))
                ++i, ++digits;
            value.kind = Literal::Integer;
            if (i < n && sql[i] == '.') {
                value.kind = Literal::Real;
                for (++i; i < n && std::isdigit(static_cast<unsigned char>(sql[i]));)
                    ++i, ++digits;
            }
            value.text = sql.mid(from, i - from);
            if (digits == 0) {
                if (sql.mid(from, 4).toUpper() != "NULL")
                    return false;
                i = from + 4;
                value.kind = Literal::Null;
            } else if (value.kind == Literal::Integer && digits > 18) {
                return false; // beyond 64 bits: left to the engine
            }
        }
        values.append(value);
        shape += values.size() == 1 ? "?" : ", ?";
        blanks();
        if (i < n && sql[i] == ',') {
            ++i;
            continue;
        }
        if (i < n && sql[i] == ')') {
            ++i;
            break;
        }
        return false;
    }
    shape += ')';
    return onlyBlanks(sql.constData() + i, sql.constData() + n);
}

// Runs the INSERT through the cache; false when it is none or its shape will not prepare (it
// then runs as it stands).
bool runCachedInsert(sqlite3 *connection, const QByteArray &sql, StatementError *error)
{
    QByteArray shape;
    QList<Literal> values;
    if (!splitInsert(sql, shape, values))
        return false;
    sqlite3_stmt *statement = insertCache().statement(connection, shape);
    if (!statement)
        return false;
    for (int k = 0; k < int(values.size()); ++k) {
        const Literal &value = values[k];
        switch (value.kind) {
        case Literal::Text:
            sqlite3_bind_text(statement, k + 1, value.text.constData(), int(value.text.size()), SQLITE_TRANSIENT);
            break;
        case Literal::Integer:
            sqlite3_bind_int64(statement, k + 1, value.text.toLongLong());
            break;
        case Literal::Real:
            sqlite3_bind_double(statement, k + 1, value.text.toDouble());
            break;
        case Literal::Null:
            sqlite3_bind_null(statement, k + 1);
            break;
        }
    }
    const int result = sqlite3_step(statement);
    if (result != SQLITE_DONE && result != SQLITE_ROW)
        fail(error, connection, sqlite3_extended_errcode(connection), false);
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    return true;
}

Recordset runOnSqlite(sqlite3 *connection, const QString &sql, StatementError *error)
{
    const QByteArray utf8 = sql.toUtf8();
    if (runCachedInsert(connection, utf8, error))
        return {};
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
        error->description = kTextAfterTheEnd;
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

Recordset failQuery(StatementError *error, const QSqlError &e, bool commandText)
{
    error->failed = true;
    error->number = e.nativeErrorCode().isEmpty() ? QStringLiteral("-1") : e.nativeErrorCode();
    error->commandText = commandText;
    error->description = e.databaseText().isEmpty() ? e.text() : e.databaseText();
    return {};
}

// Whether the text is one plain statement for a server: outside its quoted texts no ";" with
// more after it, and none of the server's other quotings or comments ($$, "", E'', --, /*),
// which a value cut short by a stray apostrophe could otherwise open.
bool plainStatement(const QString &sql)
{
    bool inText = false;
    for (qsizetype i = 0; i < sql.size(); ++i) {
        const QChar c = sql[i];
        if (inText) {
            if (c == u'\'')
                inText = false; // a doubled apostrophe closes and opens again
            continue;
        }
        const QChar next = i + 1 < sql.size() ? sql[i + 1] : QChar();
        if (c == u'\'') {
            const QChar before = i > 0 ? sql[i - 1] : QChar();
            if ((before == u'E' || before == u'e') && (i < 2 || !(sql[i - 2].isLetterOrNumber() || sql[i - 2] == u'_')))
                return false;
            inText = true;
        } else if (c == u'$' || c == u'"' || (c == u'-' && next == u'-') || (c == u'/' && next == u'*')) {
            return false;
        } else if (c == u';') {
            for (qsizetype k = i + 1; k < sql.size(); ++k) {
                if (!sql[k].isSpace() && sql[k] != u';')
                    return false;
            }
            return true;
        }
    }
    return true;
}

// A server runs every statement sent in one text, so the text must be one plain statement:
// anything after its end is an error in the command text, as on the file database. The server's
// class 42 (syntax error, unknown table, column or function) is such an error; a refused
// permission, in the same class, is reported. Inside a batch each statement has a savepoint of
// its own, so that one failing statement does not spoil the batch, as on the file database.
Recordset runOnServer(QSqlDatabase &db, const QString &sql, bool insideBatch, StatementError *error)
{
    // The rows come over whole: read one by one, they would be lost when another statement
    // runs while they are read, as the program's loops do.
    QSqlQuery query(db);
    query.setForwardOnly(false);
    if (!plainStatement(sql)) {
        error->failed = true;
        error->commandText = true;
        error->number = QStringLiteral("42601");
        error->description = kTextAfterTheEnd;
        return {};
    }
    // A failing query inside a batch would spoil the batch on a server, so each change has a
    // savepoint to go back to. A query only reads.
    const bool savepoint = insideBatch && !sql.startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive);
    if (savepoint)
        query.exec(QStringLiteral("SAVEPOINT statement"));
    const bool ok = query.exec(sql);
    if (!ok) {
        const QSqlError e = query.lastError();
        const QString state = e.nativeErrorCode();
        if (savepoint)
            QSqlQuery(db).exec(QStringLiteral("ROLLBACK TO SAVEPOINT statement"));
        return failQuery(error, e, state.startsWith(QLatin1String("42")) && state != u"42501");
    }
    if (savepoint)
        QSqlQuery(db).exec(QStringLiteral("RELEASE SAVEPOINT statement"));
    if (!query.isSelect())
        return {};
    return Recordset(std::make_shared<QuerySource>(std::move(query)));
}

Recordset runOnQt(QSqlDatabase &db, const QString &sql, StatementError *error)
{
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(sql)) {
        const QSqlError e = query.lastError();
        return failQuery(error, e, e.type() == QSqlError::StatementError && e.nativeErrorCode() == u"1");
    }
    if (!query.isSelect())
        return {};
    return Recordset(std::make_shared<QuerySource>(std::move(query)));
}

} // namespace

void ReleaseCachedStatements()
{
    insertCache().clear();
}

Recordset RunStatement(QSqlDatabase &db, const QString &sql, StatementError *error, bool insideBatch)
{
    if (sqlite3 *connection = sqliteHandle(db))
        return runOnSqlite(connection, sql, error);
    if (db.driverName() == u"QPSQL")
        return runOnServer(db, sql, insideBatch, error);
    return runOnQt(db, sql, error);
}
