#include "startup.h"

#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "core/ui/voicewindows.h"
#include "core/shell/frmmain.h"
#include "core/ui/frmstatus.h"
#include "core/ui/guard.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "core/platform/programdir.h"
#include "core/ui/shell.h"
#include "core/db/firststart.h"
#include "core/db/integrity.h"

#include <QCoreApplication>
#include <QIcon>

namespace {

// A database that is registered but not usable is named to the user and left alone; setting
// up a new data source would hide the household's recipes behind an empty database.
void reportOpenFailure(const OpenFailure &failure)
{
    if (failure.kind == OpenFailure::Missing) {
        MsgBox(QStringLiteral("The recipe database ") + failure.file +
                   QStringLiteral(" was not found.\n\nIf it is on a drive that is not connected, connect the drive "
                                  "and start Mirepan again. Until then Mirepan runs without its database."),
               Msg::Critical, QStringLiteral("Database not found"));
    } else {
        const QString after = failure.onServer
                                ? QStringLiteral(".\n\nCheck that the server is running and can be reached from this "
                                                 "computer, then start Mirepan again. Until then Mirepan runs without "
                                                 "its database.")
                                : QStringLiteral(".\n\nThe file was left as it is. Mirepan runs without its database.");
        MsgBox(QStringLiteral("The recipe database ") + failure.file + QStringLiteral(" cannot be used: ") +
                   failure.reason + after,
               Msg::Critical, QStringLiteral("Error"));
    }
}

} // namespace

void CheckDatabaseAtStartup()
{
    const QString damage = CheckDatabaseIntegrity();
    SetKnownDamage(damage);
    if (damage.isEmpty())
        return;
    MsgBox(QStringLiteral("The recipe database ") + gConn().databaseName() + QStringLiteral(" is damaged (") + damage +
               QStringLiteral(").\n\nMirepan shows the recipes it can still read but saves nothing into the damaged "
                              "file, so that the damage does not spread. Restore your last backup (Tools, Database, "
                              "Restore), or copy the file elsewhere and repair it with a database tool."),
           Msg::Critical, QStringLiteral("Database damaged"));
}

void ConnectAtStartup()
{
    OpenFailure failure;
    if (OpenDatabase(&failure))
        return;
    // Only a first start (nothing registered, or the program's own database not made yet)
    // sets up the data source.
    if (failure.kind == OpenFailure::Unusable ||
        (failure.kind == OpenFailure::Missing && !SameFile(failure.file, DefaultDatabasePath()))) {
        reportOpenFailure(failure);
        return;
    }

    StartProgramMinimised(JoinPath(QCoreApplication::applicationDirPath(), QStringLiteral("reg_vesk")),
                          {QStringLiteral("/s")});
    {
        StatusGuard status(QStringLiteral("Creating DSN for ") + DefaultDatabasePath());
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
    CheckDatabaseAtStartup();
    gRecipeType = QStringLiteral("Food");
    auto main = std::make_unique<frmMain>();
    main->show();
    Guarded([] { RecordMaxRecipeID(); });
    return main;
}

MirepanApplication::MirepanApplication(int &argc, char **argv) : QApplication(argc, argv)
{
    setApplicationName(QStringLiteral("Mirepan"));
    setOrganizationName(QStringLiteral("Mirepan"));
    setApplicationVersion(QStringLiteral(MIREPAN_VERSION));
    InstallWindowVoice();
    // Ties the windows to the menu entry and its icon on the desktop.
    setDesktopFileName(QStringLiteral("org.mirepan.Mirepan"));
    // Every window's title bar and the task switcher show the drawing (drawn at any size by
    // Qt's SVG icon engine).
    setWindowIcon(ProgramIcon());
}

QIcon ProgramIcon()
{
    return QIcon(QStringLiteral(":/mirepan/desktop/org.mirepan.Mirepan.svg"));
}

bool MirepanApplication::notify(QObject *receiver, QEvent *event)
{
    bool handled = false;
    Guarded([&] { handled = QApplication::notify(receiver, event); });
    return handled;
}
