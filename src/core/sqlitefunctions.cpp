#include "sqlitefunctions.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QVariant>
#include <QString>

#include <sqlite3.h>
#include <string>

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
        const QByteArray utf8 = QString::fromUtf8(text, bytes).toUpper().toUtf8();
        sqlite3_result_text(context, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
        return;
    }
    sqlite3_result_text(context, folded.data(), int(folded.size()), SQLITE_TRANSIENT);
}

// LIKE without regard to case for every letter: "%" any run of characters, "_" one.
template<typename Char, typename Fold>
bool wildcardMatch(const Char *p, const Char *pe, const Char *s, const Char *se, Fold fold)
{
    const Char *starP = nullptr;
    const Char *starS = nullptr;
    while (s < se) {
        if (p < pe && *p == Char(u'%')) {
            starP = ++p;
            starS = s;
        } else if (p < pe && (*p == Char(u'_') || fold(*p) == fold(*s))) {
            ++p;
            ++s;
        } else if (starP) {
            p = starP;
            s = ++starS;
        } else {
            return false;
        }
    }
    while (p < pe && *p == Char(u'%'))
        ++p;
    return p == pe;
}

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

void like(sqlite3_context *context, int argc, sqlite3_value **argv)
{
    if (argc != 2 || sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    // X LIKE Y arrives as like(Y, X): the pattern first.
    const auto *pattern = sqlite3_value_text(argv[0]);
    const int patternBytes = sqlite3_value_bytes(argv[0]);
    const auto *text = sqlite3_value_text(argv[1]);
    const int textBytes = sqlite3_value_bytes(argv[1]);
    bool matched;
    if (isAscii(pattern, patternBytes) && isAscii(text, textBytes)) {
        matched = wildcardMatch(pattern, pattern + patternBytes, text, text + textBytes, &upperAscii);
    } else {
        const QString p = QString::fromUtf8(reinterpret_cast<const char *>(pattern), patternBytes).toUpper();
        const QString t = QString::fromUtf8(reinterpret_cast<const char *>(text), textBytes).toUpper();
        auto same = [](QChar c) { return c.unicode(); };
        matched = wildcardMatch(p.constData(), p.constData() + p.size(), t.constData(), t.constData() + t.size(), same);
    }
    sqlite3_result_int(context, matched ? 1 : 0);
}

} // namespace

void InstallTextFunctions(QSqlDatabase &db)
{
    if (db.driverName() != u"QSQLITE")
        return;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return;
    sqlite3 *connection = *static_cast<sqlite3 *const *>(handle.data());
    if (!connection)
        return;
    sqlite3_create_function(connection, "upper", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, &upper,
                            nullptr, nullptr);
    sqlite3_create_function(connection, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, &like,
                            nullptr, nullptr);
}
