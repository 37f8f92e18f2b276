// Mirepan: a recipe manager for the household.

#include "core/database.h"
#include "core/frmmain.h"
#include "core/startup.h"
#include "registerwindows.h"

#include <QDateTime>
#include <QTimer>
#include <cstdio>

int main(int argc, char *argv[])
{
    MirepanApplication app(argc, argv);
    RegisterWindows();
    std::unique_ptr<frmMain> main = Startup();

    // The start-up benchmark asks for the moment the main window stands on screen.
    if (qEnvironmentVariableIsSet("MIREPAN_REPORT_SHOWN")) {
        QTimer::singleShot(0, &app, [] {
            std::printf("shown-at-ms: %lld\n", QDateTime::currentMSecsSinceEpoch());
            std::fflush(stdout);
            QCoreApplication::quit();
        });
    }
    const int result = app.exec();
    main.reset();
    CloseDatabase();
    return result;
}
