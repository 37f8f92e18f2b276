// Mirepan: a recipe manager for the household.

#include "core/db/database.h"
#include "core/shell/frmmain.h"
#include "core/ui/msgbox.h"
#include "core/platform/programdir.h"
#include "core/shell/singleinstance.h"
#include "core/shell/startup.h"

#include <QDateTime>
#include <QTimer>
#include <cstdio>

int main(int argc, char *argv[])
{
    MirepanApplication app(argc, argv);
    SingleInstance instance(SingleInstance::keyFor(ProgramDir()));
    if (!instance.claim()) {
        MsgBox(QStringLiteral("Mirepan is already running; its window has been brought forward."), Msg::Information);
        return 0;
    }
    std::unique_ptr<frmMain> main = Startup();
    instance.onActivation = [&main] {
        main->showNormal();
        main->raise();
        main->activateWindow();
    };

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
