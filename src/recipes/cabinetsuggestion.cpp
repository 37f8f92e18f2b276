#include "cabinetsuggestion.h"

namespace {

QString singular(const QString &word)
{
    if (word.endsWith(QStringLiteral("ies")))
        return word.left(word.size() - 3) + u'y';
    if (word.endsWith(QStringLiteral("es")))
        return word.left(word.size() - 2);
    if (word.endsWith(u's'))
        return word.left(word.size() - 1);
    return word;
}

bool isWordEdge(QChar c)
{
    return !c.isLetterOrNumber();
}

} // namespace

QStringList CabinetSearchForms(const QString &itemText)
{
    QString text = itemText;
    text.remove(u'\'');
    QStringList forms;
    for (QString word : text.split(u' ', Qt::SkipEmptyParts)) {
        // "Onions," is the word "Onions": a household writes commas after ingredients.
        while (!word.isEmpty() && isWordEdge(word.front()))
            word.remove(0, 1);
        while (!word.isEmpty() && isWordEdge(word.back()))
            word.chop(1);
        if (word.size() < 3)
            continue;
        forms.append(word);
        const QString one = singular(word);
        if (one != word && !one.isEmpty())
            forms.append(one);
    }
    return forms;
}

QString CabinetSuggestionSql(const QStringList &forms, const QString &typeCode)
{
    if (forms.isEmpty())
        return {};
    QString sql = QStringLiteral("SELECT DISTINCT item, type FROM CABINET WHERE ('%' & item & '%' LIKE '%") +
                  forms.first() + QStringLiteral("%'");
    for (qsizetype i = 1; i < forms.size(); ++i)
        sql += QStringLiteral(" OR '%' & item & '%' LIKE '%") + forms[i] + QStringLiteral("%'");
    sql += QStringLiteral(") AND type = '") + typeCode + u'\'';
    return sql;
}
