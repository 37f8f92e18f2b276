#include "sqldialect.h"

#include <QRegularExpression>

namespace {

QString translateCode(QString code, bool likeFoldsCase)
{
    // Most of a statement is names, commas and numbers: only look closer where there is work.
    if (!code.contains(u'&') && !code.contains(QLatin1String("UCASE"), Qt::CaseInsensitive) &&
        !code.contains(QLatin1String("DELETE"), Qt::CaseInsensitive))
        return code;
    static const QRegularExpression ucaseLike(
        QStringLiteral("\\bUCASE\\s*\\(\\s*([A-Za-z_][A-Za-z0-9_.]*)\\s*\\)(\\s+LIKE\\b)"),
        QRegularExpression::CaseInsensitiveOption);
    if (likeFoldsCase)
        code.replace(ucaseLike, QStringLiteral("\\1\\2"));
    static const QRegularExpression deleteStar(
        QStringLiteral("\\bDELETE\\s+\\*\\s*FROM\\b"), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression ucase(QStringLiteral("\\bUCASE\\s*\\("),
                                          QRegularExpression::CaseInsensitiveOption);
    code.replace(deleteStar, QStringLiteral("DELETE FROM"));
    code.replace(ucase, QStringLiteral("UPPER("));
    code.replace(u'&', QStringLiteral("||"));
    return code;
}

} // namespace

QString TranslateJetSql(const QString &sql, bool likeFoldsCase)
{
    QString result;
    result.reserve(sql.size() + 8);
    qsizetype start = 0;
    bool inLiteral = false;
    for (qsizetype i = 0; i < sql.size(); ++i) {
        if (sql[i] != u'\'')
            continue;
        if (!inLiteral) {
            result += translateCode(sql.mid(start, i - start), likeFoldsCase);
            start = i;
            inLiteral = true;
        } else if (i + 1 < sql.size() && sql[i + 1] == u'\'') {
            ++i; // a doubled apostrophe stays inside the text
        } else {
            result += QStringView(sql).mid(start, i - start + 1);
            start = i + 1;
            inLiteral = false;
        }
    }
    if (inLiteral)
        result += QStringView(sql).mid(start);
    else
        result += translateCode(sql.mid(start), likeFoldsCase);
    return result;
}
