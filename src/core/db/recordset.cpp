#include "recordset.h"

Recordset::Recordset(std::shared_ptr<RecordSource> source) : m_source(std::move(source))
{
    m_onRow = m_source->next();
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
        m_onRow = m_source->next();
}

QVariant Recordset::value(int index) const
{
    if (!m_onRow || index < 0 || index >= m_source->count())
        return {};
    return m_source->value(index);
}

QVariant Recordset::value(const QString &column) const
{
    return m_source ? value(m_source->indexOf(column)) : QVariant();
}

QString Recordset::text(const QString &column) const
{
    return value(column).toString();
}

QString Recordset::text(int index) const
{
    if (!m_onRow || index < 0 || index >= m_source->count())
        return {};
    return m_source->text(index);
}
