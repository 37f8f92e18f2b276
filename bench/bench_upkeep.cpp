// Backup and restore of the 30,000-recipe database (the waits for the engine left out).

#include "benchdata.h"

#include "core/platform/appstate.h"
#include "core/db/integrity.h"
#include "core/shell/dbupkeep.h"

#include <QApplication>
#include <QElapsedTimer>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    BenchHome home;
    gSettings.Database = home.path(QStringLiteral("PANTRIO.MDB"));
    QList<double> backup;
    QList<double> restore;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer timer;
        timer.start();
        BackupDatabase();
        backup.append(timer.nsecsElapsed() / 1e6);
        timer.restart();
        RestoreDatabase();
        restore.append(timer.nsecsElapsed() / 1e6);
    }
    // The check at every start (and before a backup) of the whole file.
    QList<double> check;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer timer;
        timer.start();
        if (!CheckDatabaseIntegrity().isEmpty())
            qFatal("the benchmark database is damaged");
        check.append(timer.nsecsElapsed() / 1e6);
    }
    PrintFigure("upkeep.backup.ms", Median(backup), "ms", "< 1000 ms");
    PrintFigure("startup.integrity_check.ms", Median(check), "ms", "< 150 ms");
    PrintFigure("upkeep.restore.ms", Median(restore), "ms", "< 1000 ms");
    return 0;
}
