// Mirepan: a recipe manager for the household.

#include "core/database.h"
#include "core/frmmain.h"
#include "core/msgbox.h"
#include "core/programdir.h"
#include "core/singleinstance.h"
#include "core/startup.h"
#include "registerwindows.h"

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
    RegisterWindows();
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
