#include "recordset.h"

Recordset::Recordset(QSqlQuery query)
    : m_query(std::make_shared<QSqlQuery>(std::move(query)))
{
    m_record = m_query->record();
    m_onRow = m_query->next();
}

Recordset Recordset::failure()
{
    Recordset rs;
    rs.m_failed = true;
    return rs;
}

void Recordset::MoveNext()
{
    if (m_onRow)
        m_onRow = m_query->next();
}

QVariant Recordset::value(int index) const
{
    if (!m_onRow || index < 0 || index >= m_record.count())
        return {};
    return m_query->value(index);
}

QVariant Recordset::value(const QString &column) const
{
    return value(m_record.indexOf(column));
}

QString Recordset::text(const QString &column) const
{
    return value(column).toString();
}

QString Recordset::text(int index) const
{
    return value(index).toString();
}
