#include "startup.h"

#include "appstate.h"
#include "database.h"
#include "frmmain.h"
#include "frmstatus.h"
#include "guard.h"
#include "modini.h"
#include "msgbox.h"
#include "programdir.h"
#include "shell.h"

#include <QCoreApplication>

void ConnectAtStartup()
{
    if (OpenDatabase())
        return;

    StartProgramMinimised(JoinPath(QCoreApplication::applicationDirPath(), QStringLiteral("reg_vesk")),
                          {QStringLiteral("/s")});
    {
        StatusGuard status(QStringLiteral("Creating DSN for ") +
                           JoinPath(ProgramDir(), QStringLiteral("PANTRIO.MDB")));
        SetStatusMaximum(7);
        for (int step = 0; step <= 7; ++step) {
            SetStatusProgress(step);
            Wait(1);
        }
    }
    if (GetIniValue(IniPath(), QStringLiteral("FIRSTRUN"), QStringLiteral("CONDB")) == u"YES")
        MsgBox(QStringLiteral("Vesk is now going to attempt to reconnect to the database..."));
    Guarded([] { WriteIniValue(IniPath(), QStringLiteral("FIRSTRUN"), QStringLiteral("CONDB=YES")); });

    if (!gConn().isOpen())
        OpenDatabase();
}

std::unique_ptr<frmMain> Startup()
{
    ConnectAtStartup();
    gRecipeType = QStringLiteral("Food");
    auto main = std::make_unique<frmMain>();
    main->show();
    Guarded([] { RecordMaxRecipeID(); });
    return main;
}

MirepanApplication::MirepanApplication(int &argc, char **argv)
    : QApplication(argc, argv)
{
    setApplicationName(QStringLiteral("Mirepan"));
    setOrganizationName(QStringLiteral("Mirepan"));
    setApplicationVersion(QStringLiteral(MIREPAN_VERSION));
}

bool MirepanApplication::notify(QObject *receiver, QEvent *event)
{
    bool handled = false;
    Guarded([&] { handled = QApplication::notify(receiver, event); });
    return handled;
}
