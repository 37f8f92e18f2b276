#include "dbcompact.h"

#include "core/db/database.h"
#include "core/platform/voice.h"
#include "core/db/statementrunner.h"

#include <QSqlQuery>

namespace {

// Below this many leaf pages (1 MB) a first search is quick however the pages lie.
constexpr int kPagesThatMatter = 256;
constexpr double kScattered = 0.3;

bool onSqlite()
{
    return !gNotConnected && gConn().driverName() == u"QSQLITE";
}

// The recipe tables' leaf pages in all, and those that do not follow the one before them.
std::pair<qint64, qint64> leafPages()
{
    QSqlQuery query(gConn());
    if (!query.exec(
            QStringLiteral("SELECT count(*), count(*) FILTER (WHERE prev IS NOT NULL AND pageno != prev + 1) FROM "
                           "(SELECT pageno, lag(pageno) OVER (PARTITION BY name ORDER BY path) AS prev FROM dbstat "
                           "WHERE pagetype = 'leaf' AND name IN ('RECIPE', 'INGREDIENTS', 'DIRECTIONS'))")) ||
        !query.next())
        return {0, 0};
    return {query.value(0).toLongLong(), query.value(1).toLongLong()};
}

} // namespace

double DatabaseScatter()
{
    if (!onSqlite())
        return 0;
    const auto [pages, jumps] = leafPages();
    return pages > 0 ? double(jumps) / double(pages) : 0;
}

bool CompactDatabaseIfScattered()
{
    if (!onSqlite())
        return false;
    const auto [pages, jumps] = leafPages();
    if (pages < kPagesThatMatter || double(jumps) / double(pages) < kScattered)
        return false;
    return CompactDatabase();
}

bool CompactDatabase()
{
    if (!onSqlite())
        return false;
    WorkingNotice status(QStringLiteral("Putting the recipe database in order for faster searches..."));
    gRS = Recordset();
    ReleaseCachedStatements();
    // The rewrite goes through a temporary copy of the whole file: on disk, not in memory.
    const LowMemoryWork onDisk;
    return QSqlQuery(gConn()).exec(QStringLiteral("VACUUM"));
}
