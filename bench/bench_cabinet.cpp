// The cabinet tools over 30,000 recipes (about 300,000 ingredient lines): refreshing an
// emptied cabinet, refreshing a full one, and cleaning. Every question is answered Yes.

#include "benchdata.h"

#include "cabinet/cabinettools.h"
#include "core/db/database.h"

#include <QApplication>
#include <QElapsedTimer>

namespace {

double timeMs(void (*tool)())
{
    QElapsedTimer timer;
    timer.start();
    tool();
    return timer.nsecsElapsed() / 1e6;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    BenchHome home;
    QList<double> empty;
    QList<double> full;
    QList<double> clean;
    for (int run = 0; run < 5; ++run) {
        ExecuteSQL(QStringLiteral("DELETE * FROM CABINET"));
        empty.append(timeMs(&RefreshCabinet));
        full.append(timeMs(&RefreshCabinet));
        clean.append(timeMs(&CleanCabinet));
    }
    PrintFigure("cabinet.refresh_empty.ms", Median(empty), "ms", "< 1000 ms");
    PrintFigure("cabinet.refresh_full.ms", Median(full), "ms", "< 1000 ms");
    PrintFigure("cabinet.clean.ms", Median(clean), "ms", "< 1000 ms");
    return 0;
}
