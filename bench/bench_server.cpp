// A collection on a PostgreSQL server (a private one, started for the run): two computers
// saving 1,000 recipes each at the same time, the searches on 30,000 recipes on the server
// beside the same searches on the database file, and on the server again with 150,000.

#include "benchdata.h"

#include "recipes/searchindexes.h"

#include "core/db/database.h"
#include "core/db/datasources.h"
#include "core/db/schema.h"
#include "search/frmsearch.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <cstdio>

namespace {

struct Figures {
    double ms = 0;
    int hits = 0;
};

// The search window's searches, each the median of seven presses.
QList<std::pair<const char *, Figures>> searches()
{
    frmSearch search;
    search.show();
    QList<std::pair<const char *, Figures>> figures;
    const auto measure = [&](const char *name, auto setCriteria) {
        search.cmdClear_Click();
        search.chkCabinet->setChecked(false);
        setCriteria();
        QList<double> samples;
        for (int i = 0; i < 7; ++i)
            samples.append(TimedMs([&] { search.cmdSearch_Click(); }));
        figures.append({name, {Median(samples), search.lvwRecipes->topLevelItemCount()}});
    };
    measure("search.all", [] {});
    measure("search.title", [&] { search.txtTitle->setText(QStringLiteral("Pie 2")); });
    measure("search.ingredient", [&] { search.txtIngredient->setText(QStringLiteral("saffron")); });
    measure("search.cabinet", [&] { search.chkCabinet->setChecked(true); });
    search.close();
    return figures;
}

bool run(QSqlDatabase &db, const QString &sql)
{
    QSqlQuery query(db);
    if (query.exec(sql))
        return true;
    std::fprintf(stderr, "bench_server: %s\n", qPrintable(query.lastError().text()));
    return false;
}

// Copies every row of the recipe database file into the server's tables, a few hundred rows
// a statement.
bool copyRows(const QString &file, QSqlDatabase &server)
{
    const QString name = QStringLiteral("bench-source");
    bool ok = true;
    {
        QSqlDatabase source = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        source.setDatabaseName(file);
        source.open();
        server.transaction();
        for (const char *table : {"RECIPE", "INGREDIENTS", "DIRECTIONS", "CABINET", "MENU"}) {
            QSqlQuery rows(source);
            rows.setForwardOnly(true);
            rows.exec(QStringLiteral("SELECT * FROM ") + QLatin1String(table));
            QStringList values;
            const auto flush = [&] {
                if (!values.isEmpty())
                    ok = ok &&
                         run(server,
                             QStringLiteral("INSERT INTO %1 VALUES %2").arg(QLatin1String(table), values.join(u',')));
                values.clear();
            };
            while (ok && rows.next()) {
                const QSqlRecord record = rows.record();
                QStringList fields;
                for (int i = 0; i < record.count(); ++i)
                    fields << server.driver()->formatValue(record.field(i));
                values << u'(' + fields.join(u',') + u')';
                if (values.size() == 500)
                    flush();
            }
            flush();
        }
        ok = server.commit() && ok;
        source.close();
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    if (QDir(QStringLiteral("/usr/lib/postgresql")).isEmpty() ||
        !QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL"))) {
        std::printf("server: PostgreSQL or its Qt driver is not installed; no figures\n");
        return 0;
    }
    BenchHome home;
    const QList<std::pair<const char *, Figures>> onFile = searches();

    QTemporaryDir serverDir;
    const QString script = QStringLiteral(MIREPAN_SOURCE_DIR "/scripts/pgserver.sh");
    if (QProcess::execute(script, {QStringLiteral("start"), serverDir.path()}) != 0)
        qFatal("cannot start the server");
    const auto serverFile = [&](const char *name) {
        QFile file(serverDir.filePath(QLatin1String(name)));
        file.open(QIODevice::ReadOnly);
        return QString::fromUtf8(file.readAll()).trimmed();
    };
    DataSource source;
    source.name = kDataSourceName;
    source.driver = QStringLiteral("QPSQL");
    source.host = QStringLiteral("127.0.0.1");
    source.port = serverFile("port").toInt();
    source.user = serverFile("user");
    source.database = QStringLiteral("postgres");
    int status = 0;
    {
        QSqlDatabase admin = QSqlDatabase::addDatabase(source.driver, QStringLiteral("bench-admin"));
        ConfigureConnection(admin, source);
        if (!admin.open() || !run(admin, QStringLiteral("CREATE DATABASE recipes")))
            qFatal("cannot create the database");
        admin.close();
        source.database = QStringLiteral("recipes");
        ConfigureConnection(admin, source);
        QString error;
        if (!admin.open() || !CreateServerSchema(admin, &error))
            qFatal("cannot create the tables: %s", qPrintable(error));
        RegisterDataSource(source);

        // Two computers saving at the same time, as the editor saves.
        QElapsedTimer timer;
        timer.start();
        QList<QProcess *> writers;
        for (const char *label : {"Kitchen", "Study"}) {
            auto *writer = new QProcess(&app);
            writer->start(QStringLiteral(MIREPAN_SAVE_LOOP), {QStringLiteral("1000"), QLatin1String(label)});
            writers.append(writer);
        }
        bool allSaved = true;
        for (QProcess *writer : writers)
            allSaved = writer->waitForFinished(600000) && writer->exitCode() == 0 && allSaved;
        const double ms = timer.nsecsElapsed() / 1e6;
        QSqlQuery count(admin);
        count.exec(QStringLiteral("SELECT count(*), count(DISTINCT id), count(DISTINCT title) FROM RECIPE"));
        count.next();
        PrintFigure("server.two_writers.ms", ms, "ms");
        std::printf("server.two_writers.recipes: %d recipes, %d ids, %d titles (goal: 2000 of each)\n",
                    count.value(0).toInt(), count.value(1).toInt(), count.value(2).toInt());
        if (!allSaved || count.value(0).toInt() != 2000 || count.value(1).toInt() != 2000)
            status = 1;

        // The 30,000 recipes of the file, now on the server.
        run(admin, QStringLiteral("DELETE FROM RECIPE"));
        timer.restart();
        if (!copyRows(home.path(QStringLiteral("PANTRIO.MDB")), admin))
            qFatal("cannot copy the recipes to the server");
        run(admin, QStringLiteral("VACUUM ANALYZE"));
        PrintFigure("server.load_30000.ms", timer.nsecsElapsed() / 1e6, "ms");
        admin.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("bench-admin"));
    if (!OpenDatabase() || !KeepSearchIndexes()) // as the program's start does
        qFatal("cannot open the collection on the server");
    const QList<std::pair<const char *, Figures>> onServer = searches();
    for (qsizetype i = 0; i < onServer.size(); ++i) {
        const auto &[name, server] = onServer[i];
        const Figures &file = onFile[i].second;
        std::printf("server.%s.ms: %.1f ms (file: %.1f ms; %d hits, file %d)\n", name, server.ms, file.ms, server.hits,
                    file.hits);
        if (server.hits != file.hits)
            status = 1;
    }

    // The same searches on 150,000 recipes (the scale benchmark's collection), the server's
    // indexes and kept availability in step as the rows come.
    const QString large = QCoreApplication::applicationDirPath() + QStringLiteral("/scale-150000.mdb");
    if (!QFile::exists(large))
        GenerateRecipeDatabase(large, 150000);
    {
        QSqlDatabase db = gConn();
        for (const char *table : {"RECIPE", "CABINET", "MENU"})
            run(db, QStringLiteral("DELETE FROM ") + QLatin1String(table));
        QElapsedTimer timer;
        timer.start();
        if (!copyRows(large, db) || !run(db, QStringLiteral("VACUUM ANALYZE")))
            qFatal("cannot copy the 150,000 recipes to the server");
        PrintFigure("server.load_150000.ms", timer.nsecsElapsed() / 1e6, "ms");
    }
    const char *const goals[] = {nullptr, "< 30 ms", "< 150 ms", "< 500 ms"};
    const QList<std::pair<const char *, Figures>> onLarge = searches();
    for (qsizetype i = 0; i < onLarge.size(); ++i) {
        const auto &[name, server] = onLarge[i];
        PrintFigure((QByteArray("server.150000.") + name + ".ms").constData(), server.ms, "ms", goals[i]);
        std::printf("server.150000.%s.hits: %d recipes\n", name, server.hits);
    }
    CloseDatabase();
    QProcess::execute(script, {QStringLiteral("stop"), serverDir.path()});
    return status;
}
