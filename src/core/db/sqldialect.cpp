#include "sqldialect.h"

#include <QHash>
#include <QRegularExpression>

#include <functional>
#include <optional>

namespace {

// Each match of the expression in text has its capture group replaced with what make gives
// for it; a match it gives nothing for stays as it is.
void replaceEach(QString &text, const QRegularExpression &expression, int group,
                 const std::function<std::optional<QString>(const QRegularExpressionMatch &)> &make)
{
    QString out;
    qsizetype last = 0;
    for (auto it = expression.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const std::optional<QString> replacement = make(m);
        if (!replacement)
            continue;
        out += QStringView(text).mid(last, m.capturedStart(group) - last);
        out += *replacement;
        last = m.capturedEnd(group);
    }
    if (last == 0)
        return;
    out += QStringView(text).mid(last);
    text = out;
}

// The stored flags (a cabinet item's "available") are the numbers 0 and 1, as the original
// engine's TRUE and FALSE compare with numbers. A server keeps TRUE and FALSE apart from
// numbers: there a TRUE or FALSE compared with or given to a column becomes 1 or 0, while a
// condition of its own ("WHERE TRUE") stays.
void numberFlags(QString &code)
{
    if (!code.contains(QLatin1String("TRUE"), Qt::CaseInsensitive) &&
        !code.contains(QLatin1String("FALSE"), Qt::CaseInsensitive))
        return;
    static const QRegularExpression flag(QStringLiteral("(=|<>)(\\s*)\\b(TRUE|FALSE)\\b"),
                                         QRegularExpression::CaseInsensitiveOption);
    replaceEach(code, flag, 3, [](const QRegularExpressionMatch &m) {
        return QString(m.captured(3).compare(QLatin1String("TRUE"), Qt::CaseInsensitive) == 0 ? u'1' : u'0');
    });
}

// The original engine's LIKE ignores case; so does SQLite's (with our functions, for every
// letter), and a server's ILIKE. Folding a column before LIKE is then work for nothing.
void likeWithoutCase(QString &code, SqlEngine engine)
{
    if (!code.contains(QLatin1String("LIKE"), Qt::CaseInsensitive))
        return;
    static const QRegularExpression ucaseLike(
        QStringLiteral("\\bUCASE\\s*\\(\\s*([A-Za-z_][A-Za-z0-9_.]*)\\s*\\)(\\s+LIKE\\b)"),
        QRegularExpression::CaseInsensitiveOption);
    code.replace(ucaseLike, QStringLiteral("\\1\\2"));
    if (engine == SqlEngine::Postgres) {
        static const QRegularExpression like(QStringLiteral("\\bLIKE\\b"), QRegularExpression::CaseInsensitiveOption);
        code.replace(like, QStringLiteral("ILIKE"));
        // Titles and ingredients are searched as plain text, the way the server's trigram
        // indexes of them are made.
        static const QRegularExpression indexed(QStringLiteral("\\b([A-Za-z_]+\\.(title|ingredient))(\\s+ILIKE\\b)"),
                                                QRegularExpression::CaseInsensitiveOption);
        code.replace(indexed, QStringLiteral("\\1::text\\3"));
    }
}

QString translateCode(QString code, SqlEngine engine)
{
    if (engine == SqlEngine::Postgres)
        numberFlags(code);
    likeWithoutCase(code, engine);
    // Most of a statement is names, commas and numbers: only look closer where there is work.
    if (!code.contains(u'&') && !code.contains(QLatin1String("UCASE"), Qt::CaseInsensitive) &&
        !code.contains(QLatin1String("DELETE"), Qt::CaseInsensitive))
        return code;
    static const QRegularExpression deleteStar(QStringLiteral("\\bDELETE\\s+\\*\\s*FROM\\b"),
                                               QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression ucase(QStringLiteral("\\bUCASE\\s*\\("), QRegularExpression::CaseInsensitiveOption);
    code.replace(deleteStar, QStringLiteral("DELETE FROM"));
    code.replace(ucase, QStringLiteral("UPPER("));
    code.replace(u'&', QStringLiteral("||"));
    return code;
}

// The order rows come in when a query gives none. The file database hands rows over in the
// order of their table's key (a recipe's lines by number, cabinet items by name) and a
// DISTINCT list in the order of its columns; lists, exports and questions follow that order.
// A server gives rows in no order of its own, so the same order is asked of it. code is the
// statement with its quoted texts left out.
QString keyOrder(const QString &code)
{
    static const QRegularExpression excluded(QStringLiteral("\\b(ORDER|GROUP|LIMIT|UNION|HAVING)\\b"),
                                             QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression query(
        QStringLiteral(
            "^\\s*SELECT\\s+(DISTINCT\\s+)?(.*?)\\s+FROM\\s+([A-Za-z_]+)(\\s+[A-Za-z_]+)?\\s*(,|\\bWHERE\\b|;|$)"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch m = query.match(code);
    if (!m.hasMatch() || code.contains(excluded))
        return {};
    const QString columns = m.captured(2);
    if (columns.contains(u'(') || m.captured(4).trimmed().compare(QLatin1String("WHERE"), Qt::CaseInsensitive) == 0)
        return {};
    if (!m.captured(1).isEmpty()) {
        if (columns.trimmed() == u"*")
            return {};
        QStringList positions;
        for (qsizetype k = 1; k <= columns.count(u',') + 1; ++k)
            positions << QString::number(k);
        return QStringLiteral(" ORDER BY ") + positions.join(QStringLiteral(", "));
    }
    if (m.captured(5) == u",")
        return {}; // rows of several tables: no single key
    static const QHash<QString, QString> keys {
        {QStringLiteral("RECIPE"), QStringLiteral("id")},
        {QStringLiteral("INGREDIENTS"), QStringLiteral("recipe_id, ingred_id")},
        {QStringLiteral("DIRECTIONS"), QStringLiteral("recipe_id, step")},
        {QStringLiteral("CABINET"), QStringLiteral("item, type")},
    };
    const QString key = keys.value(m.captured(3).toUpper());
    return key.isEmpty() ? QString() : QStringLiteral(" ORDER BY ") + key;
}

// "X ILIKE '%'" (outside any quoted text) holds for every text and for no NULL, so it is
// written "X IS NOT NULL": a server's planner takes an ILIKE for a rare match, and on that
// guess plans a search (the search window's "rating LIKE '%'" when no rating is asked for) as
// a walk through the lines of every recipe.
void anyTextAsNotNull(QString &sql)
{
    static const QRegularExpression any(QStringLiteral("\\b([A-Za-z_][A-Za-z0-9_.]*)\\s+ILIKE\\s+'%'(?!')"),
                                        QRegularExpression::CaseInsensitiveOption);
    replaceEach(sql, any, 0, [&sql](const QRegularExpressionMatch &m) -> std::optional<QString> {
        if (QStringView(sql).first(m.capturedStart()).count(u'\'') % 2 != 0)
            return std::nullopt; // inside a quoted text
        return m.captured(1) + QStringLiteral(" IS NOT NULL");
    });
}

// The search window's list in title order. A server compares case-blind titles (citext) by
// folding both at every comparison, which for ten thousand titles is most of a search; sorted
// by each title folded once, in the same collation, then by number as the distinct rows were,
// the order is the same.
void sortedByFoldedTitle(QString &sql)
{
    static const QString search = QStringLiteral("SELECT DISTINCT id, title FROM RECIPE A");
    static const QString order = QStringLiteral(" ORDER BY A.title");
    if (sql.startsWith(search) && sql.size() > search.size() &&
        (sql[search.size()] == u' ' || sql[search.size()] == u',') && sql.endsWith(order))
        sql = QStringLiteral("SELECT id, title FROM (") + sql.chopped(order.size()) +
              QStringLiteral(") AS S ORDER BY lower(S.title::text), S.id");
}

// The statement in the engine's dialect: the code between the quoted texts translated, the
// texts as they are.
QString translate(const QString &sql, SqlEngine engine, QString *codeOnly)
{
    QString result;
    result.reserve(sql.size() + 8);
    qsizetype start = 0;
    bool inLiteral = false;
    // The code as it stands, with each quoted text shown as ''.
    const auto code = [&](const QString &part, bool textFollows) {
        if (codeOnly)
            *codeOnly += textFollows ? part + QStringLiteral("''") : part;
        return translateCode(part, engine);
    };
    for (qsizetype i = 0; i < sql.size(); ++i) {
        if (sql[i] != u'\'')
            continue;
        if (!inLiteral) {
            result += code(sql.mid(start, i - start), true);
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
        result += code(sql.mid(start), false);
    return result;
}

// Whether the statement has anything the file database's dialect writes otherwise: "&", or the
// words LIKE, UCASE or DELETE in any case (inside quoted texts too, which only costs a closer
// look).
bool mayNeedTranslation(const QString &sql)
{
    static const char *const words[] = {"like", "ucase", "delete"};
    const qsizetype n = sql.size();
    const QChar *text = sql.constData();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = text[i].unicode();
        if (c == u'&')
            return true;
        const char16_t lower = c | 0x20;
        if (lower != u'l' && lower != u'u' && lower != u'd')
            continue;
        for (const char *word : words) {
            qsizetype k = 0;
            while (word[k] && i + k < n && (text[i + k].unicode() | 0x20) == char16_t(word[k]))
                ++k;
            if (!word[k])
                return true;
        }
    }
    return false;
}

// "X.ingredient LIKE '%text%'" (translated, outside any quoted text) with a text of three or
// more letters and no wildcard of its own narrowed to the lines that hold every trigram of the
// text, which the index finds at once; the LIKE itself still decides each line,
// so the rows are those of the statement as written. The index holds the lines in upper case
// as the engine's LIKE compares them, and the trigrams compare their letters one for one.
QString narrowByIngredientIndex(const QString &sql)
{
    static const QRegularExpression search(QStringLiteral("\\b([A-Za-z_][A-Za-z0-9_]*)\\.ingredient\\s+LIKE\\s+'%"),
                                           QRegularExpression::CaseInsensitiveOption);
    for (auto it = search.globalMatch(sql); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        if (sql.left(m.capturedStart()).count(u'\'') % 2 != 0)
            continue; // inside a quoted text
        QString text;
        qsizetype end = m.capturedEnd();
        for (; end < sql.size(); ++end) {
            if (sql[end] == u'\'' && end + 1 < sql.size() && sql[end + 1] == u'\'')
                text += sql[++end];
            else if (sql[end] == u'\'')
                break;
            else
                text += sql[end];
        }
        if (end == sql.size() || !text.endsWith(u'%'))
            continue;
        text.chop(1);
        if (text.contains(u'%') || text.contains(u'_'))
            continue;
        const QList<uint> letters = text.toUpper().toUcs4();
        QStringList trigrams;
        for (qsizetype k = 0; k + 3 <= letters.size(); ++k) {
            QString trigram = QString::fromUcs4(reinterpret_cast<const char32_t *>(letters.constData() + k), 3);
            trigram.replace(u'"', QStringLiteral("\"\""));
            trigram = u'"' + trigram + u'"';
            if (!trigrams.contains(trigram))
                trigrams << trigram;
        }
        if (trigrams.isEmpty())
            continue;
        QString match = trigrams.join(QStringLiteral(" AND "));
        match.replace(u'\'', QStringLiteral("''"));
        const QString line = m.captured(1);
        return sql.left(end + 1) + QStringLiteral(" AND (") + line + QStringLiteral(".recipe_id, ") + line +
               QStringLiteral(".ingred_id) IN (SELECT rowid >> 10, rowid & 1023 FROM ") + kIngredientIndex +
               QStringLiteral(" WHERE ") + kIngredientIndex + QStringLiteral(" MATCH '") + match +
               QStringLiteral("')") + sql.mid(end + 1);
    }
    return sql;
}

} // namespace

QString NarrowRecipeSearch(const QString &sql, const QString &condition)
{
    // The order stands at the statement's end; a text searched for is in capitals, so no quoted
    // text reads the same.
    static const QString order = QStringLiteral(" ORDER BY A.title");
    static const QString search = QStringLiteral("SELECT DISTINCT id, title FROM RECIPE A");
    if (!sql.startsWith(search) || sql.size() == search.size() ||
        (sql[search.size()] != u' ' && sql[search.size()] != u','))
        return sql;
    const qsizetype at = sql.lastIndexOf(order);
    if (at < 0)
        return sql;
    return sql.left(at) + QStringLiteral(" AND (") + condition + u')' + sql.mid(at);
}

bool SearchesIngredientText(const QString &sql)
{
    // Only a query searches; the statements that store lines are the most, and go by at once.
    if (!sql.startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive))
        return false;
    return sql.contains(QLatin1String(".ingredient) LIKE '%"), Qt::CaseInsensitive) ||
           sql.contains(QLatin1String(".ingredient LIKE '%"), Qt::CaseInsensitive);
}

QString TranslateJetSql(const QString &sql, SqlEngine engine)
{
    if (engine != SqlEngine::Postgres) {
        // The stored lines of a recipe have nothing to translate for the file database: one
        // look for what could need it is quicker than cutting the statement at its quoted texts.
        if (!mayNeedTranslation(sql))
            return sql;
        const QString translated = translate(sql, engine, nullptr);
        return engine == SqlEngine::SqliteIndexed ? narrowByIngredientIndex(translated) : translated;
    }
    QString codeOnly;
    QString result = translate(sql, engine, &codeOnly);
    anyTextAsNotNull(result);
    sortedByFoldedTitle(result);
    if (const QString order = keyOrder(codeOnly); !order.isEmpty()) {
        while (result.endsWith(u';') || (!result.isEmpty() && result.back().isSpace()))
            result.chop(1);
        result += order;
    }
    return result;
}
