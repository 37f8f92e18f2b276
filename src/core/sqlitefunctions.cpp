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

} // namespace

void InstallTextFunctions(QSqlDatabase &db)
{
    if (db.driverName() != u"QSQLITE")
        return;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return;
    sqlite3 *connection = *static_cast<sqlite3 *const *>(handle.data());
    if (connection)
        sqlite3_create_function(connection, "upper", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                &upper, nullptr, nullptr);
}
