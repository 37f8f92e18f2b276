#pragma once
// A forward-only result set: the rows of one query, read from the first to the last.

#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <memory>

class Recordset
{
public:
    Recordset() = default; // no result: a statement that returns none
    explicit Recordset(QSqlQuery query);
    // The answer to a statement that failed.
    static Recordset failure();
    bool failed() const { return m_failed; }

    bool isOpen() const { return m_query != nullptr; }
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
    int fieldCount() const { return m_record.count(); }
    // The position of a column (without regard to case), -1 when absent; for reading many rows.
    int columnIndex(const QString &column) const { return m_record.indexOf(column); }

private:
    std::shared_ptr<QSqlQuery> m_query;
    QSqlRecord m_record;
    bool m_onRow = false;
    bool m_failed = false;
};
