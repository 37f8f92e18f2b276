#include "statementrunner.h"

#include "core/platform/platform.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <sqlite3.h>

#include <QHash>
#include <QVarLengthArray>

#include <cctype>

namespace {

// SQLite's code for a statement it cannot parse or prepare (syntax, unknown table or column).
constexpr int kCommandTextError = SQLITE_ERROR;
const QString kTextAfterTheEnd = QStringLiteral("Characters found after end of SQL statement.");

// Statements kept for reuse, by shape: the text with its literal values taken out, so that the
// same statement with other values is not parsed again. An import stores hundreds of thousands
// of lines and reads each recipe back: parsing each statement anew costs more than running it.
// A statement whose rows are still being read is out of the cache meanwhile; a second user of
// the same shape gets one of its own.
class StatementCache
{
public:
    void clear()
    {
        for (sqlite3_stmt *statement : std::as_const(m_idle))
            sqlite3_finalize(statement);
        m_idle.clear();
        m_connection = nullptr;
        ++m_generation;
    }

    // The statement of the shape, prepared and without bindings; nullptr when the engine will
    // not prepare it (the full text then runs as it stands and says why).
    sqlite3_stmt *take(sqlite3 *connection, const QByteArray &shape)
    {
        if (connection != m_connection) {
            clear();
            m_connection = connection;
        }
        if (const auto kept = m_idle.find(shape); kept != m_idle.end()) {
            sqlite3_stmt *statement = kept.value();
            m_idle.erase(kept);
            return statement;
        }
        sqlite3_stmt *statement = nullptr;
        const char *tail = nullptr;
        if (sqlite3_prepare_v3(connection, shape.constData(), int(shape.size()), SQLITE_PREPARE_PERSISTENT, &statement,
                               &tail) != SQLITE_OK ||
            !statement || (tail && *tail)) {
            sqlite3_finalize(statement);
            return nullptr;
        }
        return statement;
    }

    // A statement back from its use. One taken before the cache was cleared (its connection
    // closing) is let go, as is a second one of a shape already kept.
    void giveBack(const QByteArray &shape, sqlite3_stmt *statement, quint64 generation)
    {
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
        if (generation != m_generation || m_idle.size() >= kMostKept || m_idle.contains(shape)) {
            sqlite3_finalize(statement);
            return;
        }
        m_idle.insert(shape, statement);
    }

    quint64 generation() const { return m_generation; }

private:
    // The program's statements come in a few dozen shapes.
    static constexpr qsizetype kMostKept = 64;
    sqlite3 *m_connection = nullptr;
    quint64 m_generation = 0;
    QHash<QByteArray, sqlite3_stmt *> m_idle;
};

// Never destroyed: a result still open as the program ends gives its statement back to it.
StatementCache &statementCache()
{
    static auto *cache = new StatementCache;
    return *cache;
}

// Rows read straight from the embedded engine, each field converted only when it is read.
class SqliteSource : public RecordSource
{
public:
    // A statement from the cache goes back there under its shape when its rows are done with;
    // any other (no shape) is finalized.
    SqliteSource(sqlite3_stmt *statement, QByteArray shape)
        : m_statement(statement), m_shape(std::move(shape)), m_generation(statementCache().generation())
    {
        const int columns = sqlite3_column_count(statement);
        m_names.reserve(columns);
        for (int i = 0; i < columns; ++i)
            m_names.append(QString::fromUtf8(sqlite3_column_name(statement, i)));
    }
    ~SqliteSource() override
    {
        if (m_shape.isEmpty())
            sqlite3_finalize(m_statement);
        else
            statementCache().giveBack(m_shape, m_statement, m_generation);
    }

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
            return FromStoredUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_statement, index)),
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
        return FromStoredUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_statement, index)),
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
    QByteArray m_shape;
    quint64 m_generation;
    QStringList m_names;
    int m_pending = -1;
    bool m_done = false;
};

class QuerySource : public RecordSource
{
public:
    explicit QuerySource(QSqlQuery query) : m_query(std::move(query)), m_record(m_query.record()) { }
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
StatementError::Cause sqliteCause(int code)
{
    switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StatementError::Busy;
    case SQLITE_FULL:
        return StatementError::Full;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_CANTOPEN:
        return StatementError::ReadOnly;
    case SQLITE_IOERR:
        return StatementError::Disk;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return StatementError::Damaged;
    default:
        return StatementError::Other;
    }
}

// The server's classes: 08 the connection, 53 resources, 25006 a read-only transaction, 55P03
// and 40 a lock or a conflict with another computer.
StatementError::Cause serverCause(const QSqlError &e)
{
    const QString state = e.nativeErrorCode();
    // A connection the server dropped answers without a state, in the client library's words.
    const QString text = e.databaseText() + e.driverText();
    if (e.type() == QSqlError::ConnectionError || state.startsWith(QLatin1String("08")) ||
        state.startsWith(QLatin1String("57P")) || text.contains(QLatin1String("server closed the connection")) ||
        text.contains(QLatin1String("no connection to the server")) ||
        text.contains(QLatin1String("could not send data to server")))
        return StatementError::Unreachable;
    if (state == u"53100")
        return StatementError::Full;
    if (state == u"25006")
        return StatementError::ReadOnly;
    if (state == u"55P03" || state.startsWith(QLatin1String("40")))
        return StatementError::Busy;
    if (state.startsWith(QLatin1String("58")))
        return StatementError::Disk;
    if (state.startsWith(QLatin1String("XX")))
        return StatementError::Damaged;
    return StatementError::Other;
}

Recordset fail(StatementError *error, sqlite3 *connection, int code, bool preparing)
{
    error->failed = true;
    error->cause = sqliteCause(code);
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

// A literal value of a statement: what the engine reads it as, and its text.
struct Literal {
    enum Kind { Text, Integer, Real, Null } kind = Text;
    QByteArrayView text; // within the statement, apostrophes still doubled in a quoted text
    bool doubled = false; // a quoted text with doubled apostrophes

    QByteArray unquoted() const
    {
        QByteArray value = text.toByteArray();
        return doubled ? value.replace("''", "'") : value;
    }
};

using Literals = QVarLengthArray<Literal, 16>;

bool isNamePart(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// The shape and literal values of "INSERT INTO name VALUES (v, ...)" with nothing after it but
// blanks; false for any other statement. The values bound in the shape are the values the
// literals stand for, so what is stored is the same.
bool splitInsert(const QByteArray &sql, QByteArray &shape, Literals &values)
{
    constexpr QByteArrayView head("INSERT INTO ");
    constexpr QByteArrayView valuesWord(" VALUES (");
    const QByteArrayView text(sql);
    if (!text.startsWith(head))
        return false;
    qsizetype i = head.size();
    const qsizetype n = text.size();
    while (i < n && isNamePart(text[i]))
        ++i;
    if (i == head.size() || !text.sliced(i).startsWith(valuesWord))
        return false;
    i += valuesWord.size();
    shape.reserve(i + 64);
    shape = sql.left(i);
    const auto blanks = [&] {
        while (i < n && text[i] == ' ')
            ++i;
    };
    for (;;) {
        blanks();
        if (i >= n)
            return false;
        Literal value;
        if (text[i] == '\'') {
            const qsizetype from = ++i;
            for (;; ++i) {
                i = text.indexOf('\'', i);
                if (i < 0)
                    return false;
                if (i + 1 < n && text[i + 1] == '\'') {
                    value.doubled = true;
                    ++i;
                    continue;
                }
                break;
            }
            value.text = text.sliced(from, i - from);
            ++i;
        } else {
            const qsizetype from = i;
            if (text[i] == '-' || text[i] == '+')
                ++i;
            qsizetype digits = 0;
            while (i < n && std::isdigit(static_cast<unsigned char>(text[i])))
                ++i, ++digits;
            value.kind = Literal::Integer;
            if (i < n && text[i] == '.') {
                value.kind = Literal::Real;
                for (++i; i < n && std::isdigit(static_cast<unsigned char>(text[i]));)
                    ++i, ++digits;
            }
            value.text = text.sliced(from, i - from);
            if (digits == 0) {
                if (text.sliced(from).first(std::min<qsizetype>(4, n - from)).compare("NULL", Qt::CaseInsensitive) != 0)
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
        if (i < n && text[i] == ',') {
            ++i;
            continue;
        }
        if (i < n && text[i] == ')') {
            ++i;
            break;
        }
        return false;
    }
    shape += ')';
    return onlyBlanks(sql.constData() + i, sql.constData() + n);
}

// The shape of a query with no quoted text and at most one number, which compares a column in
// its WHERE clause with a whole number ("SELECT * FROM RECIPE WHERE ID = 12"): that number is
// taken out as a value. The recipe read back after every save and the next free identifier are
// such queries. false for any other statement, which is not kept.
bool splitQuery(const QByteArray &sql, QByteArray &shape, Literals &values)
{
    const QByteArrayView text(sql);
    if (!text.startsWith("SELECT ") || text.contains('\'') || text.contains('"') || text.contains(';') ||
        text.contains("--") || text.contains("/*"))
        return false;
    qsizetype number = -1;
    qsizetype end = -1;
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        if (!std::isdigit(static_cast<unsigned char>(text[i])) ||
            (i > 0 && (isNamePart(text[i - 1]) || text[i - 1] == '.')))
            continue;
        if (number >= 0)
            return false;
        number = i;
        for (end = i; end < n && std::isdigit(static_cast<unsigned char>(text[end]));)
            ++end;
        i = end;
    }
    if (number < 0) {
        shape = sql;
        return true;
    }
    // The number stands alone after a comparison, in a WHERE clause: the result's column names
    // (which are written before the first FROM) stay as they are.
    const qsizetype from = text.indexOf(" FROM ");
    const qsizetype where = text.indexOf(" WHERE ");
    if (end - number > 18 || number < 2 || text.sliced(number - 2, 2) != "= " || (end < n && text[end] != ' ') ||
        from < 0 || where < from || number < where || text.first(from).contains('('))
        return false;
    values.append({Literal::Integer, text.sliced(number, end - number), false});
    shape = sql.left(number) + '?' + sql.mid(end);
    return true;
}

// The shape and values of a statement that is kept prepared; false for one that is not.
bool splitKept(const QByteArray &sql, QByteArray &shape, Literals &values)
{
    if (splitInsert(sql, shape, values))
        return true;
    values.clear();
    return splitQuery(sql, shape, values);
}

void bind(sqlite3_stmt *statement, const Literals &values)
{
    for (int k = 0; k < int(values.size()); ++k) {
        const Literal &value = values[k];
        switch (value.kind) {
        case Literal::Text:
            if (value.doubled) {
                const QByteArray unquoted = value.unquoted();
                sqlite3_bind_text(statement, k + 1, unquoted.constData(), int(unquoted.size()), SQLITE_TRANSIENT);
            } else {
                sqlite3_bind_text(statement, k + 1, value.text.data(), int(value.text.size()), SQLITE_TRANSIENT);
            }
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
}

// The first step of a prepared statement: its rows, none, or the failure.
Recordset firstStep(sqlite3 *connection, sqlite3_stmt *statement, const QByteArray &shape, StatementError *error)
{
    const auto done = [&] {
        if (shape.isEmpty())
            sqlite3_finalize(statement);
        else
            statementCache().giveBack(shape, statement, statementCache().generation());
    };
    const int result = sqlite3_step(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        Recordset failed = fail(error, connection, sqlite3_extended_errcode(connection), false);
        done();
        return failed;
    }
    if (sqlite3_column_count(statement) == 0) {
        done();
        return {};
    }
    auto source = std::make_shared<SqliteSource>(statement, shape);
    source->setFirstStep(result);
    return Recordset(source);
}

Recordset runOnSqlite(sqlite3 *connection, const QString &sql, StatementError *error)
{
    const QByteArray utf8 = sql.toUtf8();
    QByteArray shape;
    Literals values;
    if (splitKept(utf8, shape, values)) {
        if (sqlite3_stmt *statement = statementCache().take(connection, shape)) {
            bind(statement, values);
            return firstStep(connection, statement, shape, error);
        }
    }
    sqlite3_stmt *statement = nullptr;
    const char *tail = nullptr;
    const int result = sqlite3_prepare_v2(connection, utf8.constData(), int(utf8.size()), &statement, &tail);
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
    return firstStep(connection, statement, {}, error);
}

Recordset failQuery(StatementError *error, const QSqlError &e, bool commandText)
{
    error->failed = true;
    error->cause = serverCause(e);
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
    statementCache().clear();
}

bool RunControlStatement(QSqlDatabase &db, const QString &sql, StatementError *error)
{
    StatementError ignored;
    if (!error)
        error = &ignored;
    sqlite3 *connection = sqliteHandle(db);
    if (!connection) {
        // A server answers COMMIT of a transaction it gave up with a plain ROLLBACK: the
        // driver's commit tells that apart.
        if (sql == u"COMMIT") {
            if (db.commit())
                return true;
            failQuery(error, db.lastError(), false);
            return false;
        }
        QSqlQuery query(db);
        if (query.exec(sql))
            return true;
        failQuery(error, query.lastError(), false);
        return false;
    }
    const QByteArray text = sql.toUtf8();
    sqlite3_stmt *statement = statementCache().take(connection, text);
    if (!statement) {
        fail(error, connection, sqlite3_extended_errcode(connection), true);
        return false;
    }
    const int result = sqlite3_step(statement);
    if (result != SQLITE_DONE)
        fail(error, connection, sqlite3_extended_errcode(connection), false);
    statementCache().giveBack(text, statement, statementCache().generation());
    return result == SQLITE_DONE;
}

void SetLockWait(QSqlDatabase &db, int milliseconds)
{
    if (sqlite3 *connection = sqliteHandle(db))
        sqlite3_busy_timeout(connection, milliseconds);
}

Recordset RunStatement(QSqlDatabase &db, const QString &sql, StatementError *error, bool insideBatch)
{
    if (sqlite3 *connection = sqliteHandle(db))
        return runOnSqlite(connection, sql, error);
    if (db.driverName() == u"QPSQL")
        return runOnServer(db, sql, insideBatch, error);
    return runOnQt(db, sql, error);
}

bool ConnectionIsReadOnly(QSqlDatabase &db)
{
    sqlite3 *connection = sqliteHandle(db);
    return connection && sqlite3_db_readonly(connection, "main") == 1;
}

sqlite3 *SqliteConnection(QSqlDatabase &db)
{
    return sqliteHandle(db);
}

StatementError SqliteFailure(sqlite3 *connection, int code)
{
    StatementError error;
    fail(&error, connection, code, false);
    return error;
}
