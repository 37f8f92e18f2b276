// The fuzz targets run long (30 s each, MIREPAN_FUZZ_SECONDS sets another time): executions
// per second, and the first failure of any on standard error.

#include "benchdata.h"
#include "support/fuzztargets.h"
#include "support/testhome.h"

#include <QApplication>
#include "core/db/database.h"

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const double seconds = qEnvironmentVariableIsSet("MIREPAN_FUZZ_SECONDS")
                             ? qEnvironmentVariable("MIREPAN_FUZZ_SECONDS").toDouble()
                             : 30;
    int failed = 0;
    for (const QString &target : FuzzTargets()) {
        TestHome home;
        home.createAndOpenDatabase();
        RecordingVoice voice;
        const FuzzRun run =
            RunFuzzTarget(target, 1, 1'000'000'000, seconds, QStringLiteral(MIREPAN_SOURCE_DIR "/tests/data/fuzz"));
        PrintFigure(qPrintable(QStringLiteral("fuzz.%1.execs_per_s").arg(target)),
                    run.executions / std::max(run.seconds, 0.001), "/s");
        for (const QString &failure : run.failures) {
            std::fprintf(stderr, "fuzz %s: %s\n", qPrintable(target), qPrintable(failure));
            ++failed;
        }
        CloseDatabase();
    }
    return failed == 0 ? 0 : 1;
}
