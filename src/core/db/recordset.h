#pragma once
// A forward-only result set: the rows of one query, read from the first to the last.

#include <QString>
#include <QVariant>

#include <memory>

// Where the rows come from: the engine's own statement, or a Qt SQL query.
class RecordSource
{
public:
    virtual ~RecordSource() = default;
    virtual bool next() = 0; // moves to the next row; false past the last
    virtual QVariant value(int index) const = 0;
    virtual qint64 integer(int index) const { return value(index).toLongLong(); }
    virtual QString text(int index) const { return value(index).toString(); }
    virtual int indexOf(const QString &column) const = 0; // without regard to case
    virtual int count() const = 0;
};

class Recordset
{
public:
    Recordset() = default; // no result: a statement that returns none
    explicit Recordset(std::shared_ptr<RecordSource> source);
    // The answer to a statement that failed.
    static Recordset failure();
    bool failed() const { return m_failed; }

    bool isOpen() const { return m_source != nullptr; }
    explicit operator bool() const { return isOpen(); }
    // At the end of the rows (also true for no result at all).
    bool eof() const { return !m_onRow; }
    void MoveNext();

    // Fields by column name (without regard to case) or by position.
    QVariant value(const QString &column) const;
    QVariant value(int index) const;
    // The field as text; NULL reads as the empty text.
    QString text(const QString &column) const;
    QString text(int index) const;
    // A whole-number field by position, read without conversions (0 past the end).
    qint64 integer(int index) const { return m_onRow && index >= 0 ? m_source->integer(index) : 0; }
    // The position of a column (without regard to case), -1 when absent; for reading many rows.
    int columnIndex(const QString &column) const { return m_source ? m_source->indexOf(column) : -1; }

private:
    std::shared_ptr<RecordSource> m_source;
    bool m_onRow = false;
    bool m_failed = false;
};
