#include "sqlitefunctions.h"

#include "core/platform/platform.h"
#include "core/db/schema.h"

#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlDriver>
#include <QVariant>
#include <QString>

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace {

void upper(sqlite3_context *context, int argc, sqlite3_value **argv)
{
    if (argc != 1 || sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(argv[0]));
    const int bytes = sqlite3_value_bytes(argv[0]);
    // Most texts are plain ASCII: fold them in place without a detour through QString.
    thread_local std::string folded;
    folded.assign(text, size_t(bytes));
    bool ascii = true;
    for (char &c : folded) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            ascii = false;
            break;
        }
        if (c >= 'a' && c <= 'z')
            c = char(c - 'a' + 'A');
    }
    if (!ascii) {
        const QByteArray utf8 = FromStoredUtf8(text, bytes).toUpper().toUtf8();
        sqlite3_result_text(context, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
        return;
    }
    sqlite3_result_text(context, folded.data(), int(folded.size()), SQLITE_TRANSIENT);
}

// A LIKE pattern made ready once per statement: in upper case and cut at its "%" runs into
// pieces, "_" standing for any one character. Matching finds the pieces from left to right,
// each at its first place (the first and last piece held to the ends where no "%" frees them),
// so a row costs about its own length, however long the pattern.
template<typename Char>
class LikePattern
{
public:
    using Text = std::basic_string<Char>;

    explicit LikePattern(const Text &folded)
    {
        m_free[0] = !folded.empty() && folded.front() == Char(u'%');
        m_free[1] = !folded.empty() && folded.back() == Char(u'%');
        Text piece;
        for (const Char c : folded) {
            if (c != Char(u'%')) {
                piece += c;
            } else if (!piece.empty()) {
                m_pieces.push_back(std::move(piece));
                piece.clear();
            }
        }
        if (!piece.empty())
            m_pieces.push_back(std::move(piece));
        // The searchers point into the pieces, which stay where they are from here on.
        for (const Text &p : m_pieces) {
            if (p.find(Char(u'_')) == Text::npos)
                m_searchers.emplace_back(std::in_place, p.begin(), p.end());
            else
                m_searchers.emplace_back();
        }
    }

    bool matches(const Char *s, const Char *se) const
    {
        if (m_pieces.empty())
            return m_free[0] || s == se;
        qsizetype first = 0;
        qsizetype last = qsizetype(m_pieces.size()) - 1;
        if (!m_free[0]) {
            if (!equalAt(s, se, m_pieces[0]))
                return false;
            if (last == 0 && !m_free[1])
                return qsizetype(se - s) == qsizetype(m_pieces[0].size());
            s += m_pieces[0].size();
            first = 1;
        }
        if (!m_free[1] && last >= first) {
            const Text &tail = m_pieces[size_t(last)];
            if (qsizetype(se - s) < qsizetype(tail.size()) || !equalAt(se - tail.size(), se, tail))
                return false;
            se -= tail.size();
            --last;
        }
        for (qsizetype i = first; i <= last; ++i) {
            const Char *found = find(s, se, size_t(i));
            if (!found)
                return false;
            s = found + m_pieces[size_t(i)].size();
        }
        return true;
    }

private:
    static bool same(Char p, Char c) { return p == Char(u'_') || p == c; }

    static bool equalAt(const Char *s, const Char *se, const Text &piece)
    {
        return qsizetype(se - s) >= qsizetype(piece.size()) && std::equal(piece.begin(), piece.end(), s, &same);
    }

    const Char *find(const Char *s, const Char *se, size_t i) const
    {
        const Text &piece = m_pieces[i];
        const Char *found;
        if (m_searchers[i])
            found = std::search(s, se, *m_searchers[i]);
        else
            found = std::search(s, se, piece.begin(), piece.end(), [](Char c, Char p) { return same(p, c); });
        return found == se && !piece.empty() ? nullptr : found;
    }

    using Searcher = std::boyer_moore_searcher<typename Text::const_iterator>;
    std::vector<Text> m_pieces;
    std::vector<std::optional<Searcher>> m_searchers;
    bool m_free[2] = {false, false}; // a "%" at the start, at the end
};

int upperAscii(unsigned char c)
{
    return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : int(c);
}

bool isAscii(const unsigned char *text, int bytes)
{
    for (int i = 0; i < bytes; ++i) {
        if (text[i] >= 0x80)
            return false;
    }
    return true;
}

std::u16string foldUnicode(const unsigned char *text, int bytes)
{
    const QString upper = FromStoredUtf8(reinterpret_cast<const char *>(text), bytes).toUpper();
    return std::u16string(reinterpret_cast<const char16_t *>(upper.constData()), size_t(upper.size()));
}

// The pattern's two forms: for texts of plain ASCII (the most) and for any other text; the
// second is made when first needed.
struct PreparedPattern {
    std::optional<LikePattern<unsigned char>> ascii;
    std::optional<LikePattern<char16_t>> unicode;
};

void like(sqlite3_context *context, int argc, sqlite3_value **argv)
{
    if (argc != 2 || sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    // X LIKE Y arrives as like(Y, X): the pattern first.
    const auto *pattern = sqlite3_value_text(argv[0]);
    const int patternBytes = sqlite3_value_bytes(argv[0]);
    auto *prepared = static_cast<PreparedPattern *>(sqlite3_get_auxdata(context, 0));
    if (!prepared) {
        // The engine's own limit on patterns, and its own answer.
        if (patternBytes > sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1)) {
            sqlite3_result_error(context, "LIKE or GLOB pattern too complex", -1);
            return;
        }
        prepared = new PreparedPattern;
        if (isAscii(pattern, patternBytes)) {
            std::basic_string<unsigned char> folded(pattern, size_t(patternBytes));
            for (unsigned char &c : folded)
                c = static_cast<unsigned char>(upperAscii(c));
            prepared->ascii.emplace(folded);
        }
        // Kept by the engine for the rows to come while the pattern stays the same.
        sqlite3_set_auxdata(context, 0, prepared, [](void *p) { delete static_cast<PreparedPattern *>(p); });
        prepared = static_cast<PreparedPattern *>(sqlite3_get_auxdata(context, 0));
        if (!prepared) { // the engine had no memory to keep it
            sqlite3_result_error_nomem(context);
            return;
        }
    }
    const auto *text = sqlite3_value_text(argv[1]);
    const int textBytes = sqlite3_value_bytes(argv[1]);
    bool matched = false;
    bool ascii = false;
    if (prepared->ascii) {
        // Folded and looked over for other letters in one pass.
        thread_local std::basic_string<unsigned char> folded;
        folded.resize(size_t(textBytes));
        unsigned char seen = 0;
        for (int i = 0; i < textBytes; ++i) {
            seen |= text[i];
            folded[size_t(i)] = static_cast<unsigned char>(upperAscii(text[i]));
        }
        ascii = seen < 0x80;
        if (ascii)
            matched = prepared->ascii->matches(folded.data(), folded.data() + folded.size());
    }
    if (!ascii) {
        if (!prepared->unicode)
            prepared->unicode.emplace(foldUnicode(pattern, patternBytes));
        const std::u16string folded = foldUnicode(text, textBytes);
        matched = prepared->unicode->matches(folded.data(), folded.data() + folded.size());
    }
    sqlite3_result_int(context, matched ? 1 : 0);
}

// The connection's rule: every letter once the file's indexes follow it.
struct Folding {
    bool everyLetter = false;
};

int compareBytes(const QByteArray &x, const QByteArray &y)
{
    const int common = int(std::min(x.size(), y.size()));
    if (const int c = std::memcmp(x.constData(), y.constData(), size_t(common)); c != 0)
        return c;
    return int(x.size()) - int(y.size());
}

// Texts compared as the engine's NOCASE compares them, A to Z folded; with every letter, texts
// that differ in case alone are equal, and the others are ordered by their letters without
// accents first ("Épices" beside "Eggs", not after "Zwiebel"). For ASCII texts both orders are
// the engine's, so indexes of ASCII texts keep their order.
int compareWithoutCase(void *rule, int aBytes, const void *a, int bBytes, const void *b)
{
    const auto *x = static_cast<const unsigned char *>(a);
    const auto *y = static_cast<const unsigned char *>(b);
    const bool everyLetter = static_cast<const Folding *>(rule)->everyLetter;
    // Byte by byte while the texts are ASCII, as the engine does: no copy for most texts.
    const int common = std::min(aBytes, bBytes);
    int i = 0;
    for (; i < common; ++i) {
        if (everyLetter && (x[i] >= 0x80 || y[i] >= 0x80))
            break;
        const int c = upperAscii(x[i]) - upperAscii(y[i]);
        if (c != 0) // the engine orders by lower case: "_" before letters
            return (x[i] >= 'A' && x[i] <= 'Z' ? x[i] + 32 : x[i]) - (y[i] >= 'A' && y[i] <= 'Z' ? y[i] + 32 : y[i]);
    }
    if (i == common && !(everyLetter && (!isAscii(x + i, aBytes - i) || !isAscii(y + i, bBytes - i))))
        return aBytes - bBytes;
    const QString lx = FromStoredUtf8(reinterpret_cast<const char *>(x), aBytes).toLower();
    const QString ly = FromStoredUtf8(reinterpret_cast<const char *>(y), bBytes).toLower();
    const auto plain = [](const QString &t) {
        QString letters = t.normalized(QString::NormalizationForm_D);
        letters.removeIf([](QChar c) { return c.category() == QChar::Mark_NonSpacing; });
        return letters.toUtf8();
    };
    if (const int c = compareBytes(plain(lx), plain(ly)); c != 0)
        return c;
    return compareBytes(lx.toUtf8(), ly.toUtf8());
}

sqlite3 *handleOf(QSqlDatabase &db)
{
    if (db.driverName() != u"QSQLITE")
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.data());
}

// The file's mark that its indexes follow the folding of every letter.
constexpr int kFoldedEveryLetter = 1;

// Merges the cabinet items that are one when every letter is folded, under the engine's rule
// still (so each row is found by its exact name).
bool mergeCabinetItems(QSqlQuery &q)
{
    if (!q.exec(QStringLiteral("SELECT item, type, available FROM CABINET")))
        return false;
    struct Row {
        QString item, type;
        bool available;
    };
    QHash<QString, QList<Row>> byName;
    while (q.next()) {
        const Row row {q.value(0).toString(), q.value(1).toString(), q.value(2).toInt() != 0};
        byName[row.item.toLower() + u'\n' + row.type.toLower()].append(row);
    }
    for (const QList<Row> &rows : std::as_const(byName)) {
        if (rows.size() < 2)
            continue;
        const bool available = std::any_of(rows.begin(), rows.end(), [](const Row &r) { return r.available; });
        for (qsizetype k = 0; k < rows.size(); ++k) {
            q.prepare(k == 0 ? QStringLiteral("UPDATE CABINET SET available = ? WHERE item = ? AND type = ?")
                             : QStringLiteral("DELETE FROM CABINET WHERE item = ? AND type = ?"));
            if (k == 0)
                q.addBindValue(available ? 1 : 0);
            q.addBindValue(rows[k].item);
            q.addBindValue(rows[k].type);
            if (!q.exec())
                return false;
        }
    }
    return true;
}

} // namespace

bool InstallCaseFolding(QSqlDatabase &db)
{
    sqlite3 *connection = handleOf(db);
    if (!connection)
        return false;
    auto *rule = new Folding;
    if (sqlite3_create_collation_v2(connection, "NOCASE", SQLITE_UTF8, rule, &compareWithoutCase,
                                    [](void *p) { delete static_cast<Folding *>(p); }) != SQLITE_OK)
        return false;
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("PRAGMA user_version")) || !q.next())
        return false;
    rule->everyLetter = q.value(0).toInt() == kFoldedEveryLetter;
    q.finish();
    if (rule->everyLetter)
        return true;
    if (!db.transaction())
        return false;
    // The kept availability counted items by the engine's rule: it is made again at start.
    bool done = mergeCabinetItems(q) && DropSearchIndexes(q);
    rule->everyLetter = done;
    done = done && q.exec(QStringLiteral("REINDEX NOCASE")) &&
           q.exec(QStringLiteral("PRAGMA user_version = %1").arg(kFoldedEveryLetter));
    q.finish();
    if (done && db.commit())
        return true;
    db.rollback();
    rule->everyLetter = false;
    return false;
}

void InstallTextFunctions(QSqlDatabase &db)
{
    sqlite3 *connection = handleOf(db);
    if (!connection)
        return;
    sqlite3_create_function(connection, "upper", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, &upper, nullptr,
                            nullptr);
    sqlite3_create_function(connection, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, &like, nullptr,
                            nullptr);
}
