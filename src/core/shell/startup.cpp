#include "startup.h"

#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "core/db/datasources.h"
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
#include "core/db/schema.h"
#include "core/platform/atomicfile.h"
#include "core/platform/platform.h"
#include "recipes/searchindexes.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
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

// Whether this household has used a recipe database here before: connected once (the first
// start records it) or with recipes recorded.
bool hasRunBefore()
{
    return GetIniValue(IniPath(), QStringLiteral("FIRSTRUN"), QStringLiteral("CONDB")) == u"YES" ||
           Val(GetIniValue(IniPath(), QStringLiteral("Misc"), QStringLiteral("MaxRecipeID"))) > 0;
}

// The program's own database is gone although the household has used it: never replaced by an
// empty one without asking. True when the user chose to start a new, empty collection.
bool askAboutMissingDatabase(const QString &file)
{
    const QString backup = JoinPath(DirectoryOf(file), QStringLiteral("PANTRIO.BAK"));
    const bool hasBackup = QFileInfo(backup).isFile();
    enum Choice { Locate, Restore, StartNew, RunWithout };
    QList<Choice> offered {Locate};
    QStringList captions {QStringLiteral("&Locate...")};
    if (hasBackup) {
        offered << Restore;
        captions << QStringLiteral("&Restore the Backup");
    }
    offered << StartNew << RunWithout;
    captions << QStringLiteral("Start &New") << QStringLiteral("Run &Without");
    QString prompt = QStringLiteral("The recipe database ") + file +
                     QStringLiteral(" is missing.\n\nMirepan has kept your recipes there before, so it does not put "
                                    "an empty database in its place without asking. Locate the file if it was moved");
    if (hasBackup)
        prompt += QStringLiteral(", restore the backup ") + backup + QStringLiteral(" (") +
                  QLocale().toString(QFileInfo(backup).lastModified(), QLocale::ShortFormat) + u')';
    prompt += QStringLiteral(", or start a new, empty collection. Run Without leaves everything as it is; Mirepan "
                             "then runs without its database.");
    const Choice choice = offered.value(
        ChooseAction(prompt, QStringLiteral("Database not found"), captions, int(offered.size()) - 1), RunWithout);
    switch (choice) {
    case Locate: {
        const QString found =
            AskFileName(QStringLiteral("Locate the Recipe Database"), DirectoryOf(file),
                        QStringLiteral("Recipe database (*.MDB *.mdb);;All files (*)"), FileUse::Open);
        if (found.isEmpty())
            return false;
        if (const QString problem = RecipeDatabaseProblem(found); !problem.isEmpty()) {
            MsgBox(QStringLiteral("The file ") + found + QStringLiteral(" cannot be used: ") + problem +
                       QStringLiteral(".\n\nMirepan runs without its database."),
                   Msg::Critical, QStringLiteral("Error"));
            return false;
        }
        DataSource source = FindDataSource(kDataSourceName);
        source.database = found;
        RegisterDataSource(source);
        OpenDatabase();
        return false;
    }
    case Restore:
        Guarded([&] {
            CopyFileOver(backup, file);
            OpenDatabase();
            MsgBox(QStringLiteral("Database restored from: ") + backup, Msg::Information,
                   QStringLiteral("Confirmation"));
        });
        return false;
    case StartNew:
        return true;
    case RunWithout:
        break;
    }
    return false;
}

} // namespace

void CheckDatabaseAtStartup()
{
    if (DatabaseIsReadOnly()) {
        MsgBox(
            QStringLiteral("The recipe database ") + gConn().databaseName() +
                QStringLiteral(" is read-only: the file or its folder may not be written to.\n\nMirepan shows your "
                               "recipes, but nothing you change can be saved until the file may be written to again."),
            Msg::Critical, QStringLiteral("Database read-only"));
    }
    // A file as this program left it at its last end needs no reading through: only a file
    // something else changed since (another program, a disk fault, a copy) is checked.
    const QString stamp = DatabaseFileStamp();
    const bool unchanged = !stamp.isEmpty() && stamp == CheckedFileStamp(kDataSourceName);
    const QString damage = unchanged ? QString() : CheckDatabaseIntegrity();
    SetKnownDamage(damage);
    if (damage.isEmpty()) {
        // Once for a collection from before: the database keeps what the cabinet can make.
        if (!SearchIndexesAreKept()) {
            StatusGuard status(QStringLiteral("Preparing the searches..."));
            KeepSearchIndexes();
        }
        return;
    }
    MsgBox(QStringLiteral("The recipe database ") + gConn().databaseName() + QStringLiteral(" is damaged (") + damage +
               QStringLiteral(").\n\nMirepan shows the recipes it can still read but saves nothing into the damaged "
                              "file, so that the damage does not spread. Restore your last backup (Tools, Database, "
                              "Restore), or copy the file elsewhere and repair it with a database tool."),
           Msg::Critical, QStringLiteral("Database damaged"));
}

void RecordCheckedDatabase()
{
    if (const QString stamp = DatabaseFileStamp(); !stamp.isEmpty() && KnownDamage().isEmpty())
        RecordCheckedFileStamp(kDataSourceName, stamp);
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
    if (failure.kind == OpenFailure::Missing && hasRunBefore() && !askAboutMissingDatabase(failure.file))
        return;

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
    setDesktopFileName(QStringLiteral("org.mirepan.mirepan"));
    // Every window's title bar and the task switcher show the drawing (drawn at any size by
    // Qt's SVG icon engine).
    setWindowIcon(ProgramIcon());
}

QIcon ProgramIcon()
{
    return QIcon(QStringLiteral(":/mirepan/desktop/org.mirepan.mirepan.svg"));
}

bool MirepanApplication::notify(QObject *receiver, QEvent *event)
{
    bool handled = false;
    Guarded([&] { handled = QApplication::notify(receiver, event); });
    return handled;
}
