#include "dbupkeep.h"

#include "core/db/dbcompact.h"

#include "core/platform/appstate.h"
#include "core/platform/atomicfile.h"
#include "core/db/database.h"
#include "core/db/datasources.h"
#include "core/ui/frmstatus.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"
#include "core/platform/programdir.h"
#include "core/ui/voicewindows.h"
#include "core/db/integrity.h"
#include "core/db/schema.h"

#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

namespace {

const QString kNotSet = QStringLiteral("You have not set the filename for the database yet!");
const QString kLive = QStringLiteral("PANTRIO.MDB");
const QString kBackup = QStringLiteral("PANTRIO.BAK");
const QString kOld = QStringLiteral("PANTRIO.OLD");

// The directory of the configured database, up to and including its last separator; ""
// (after the not-set message) when there is none.
QString databaseDirectory()
{
    const QString dir = DirectoryOf(gSettings.Database);
    if (Trim(dir).isEmpty()) {
        MsgBox(kNotSet, Msg::Critical, QStringLiteral("Error"));
        return {};
    }
    return dir;
}

// The connection is closed around the file work and opened again however that work ends.
class Disconnected
{
public:
    Disconnected() { CloseDatabase(); }
    ~Disconnected() { OpenDatabase(); }
    Disconnected(const Disconnected &) = delete;
    Disconnected &operator=(const Disconnected &) = delete;
};

// Copies the database page by page through the engine into a file beside the target, then
// renames it into place: the copy is consistent even while another program writes the
// database, and a killed copy leaves the earlier backup as it was.
void copyDatabase(const QString &from, const QString &to)
{
    const QString temp = CopyBeside(to);
    QFile::remove(temp);
    sqlite3 *source = nullptr;
    sqlite3 *target = nullptr;
    bool copied =
        sqlite3_open_v2(QFile::encodeName(from).constData(), &source, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK &&
        sqlite3_open_v2(QFile::encodeName(temp).constData(), &target, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) == SQLITE_OK;
    QString why;
    if (copied) {
        sqlite3_backup *backup = sqlite3_backup_init(target, "main", source, "main");
        int result = backup ? sqlite3_backup_step(backup, -1) : sqlite3_errcode(target);
        for (int tries = 0; (result == SQLITE_BUSY || result == SQLITE_LOCKED) && tries < 50; ++tries) {
            sqlite3_sleep(100); // another program is writing: wait for it to finish
            result = sqlite3_backup_step(backup, -1);
        }
        if (backup)
            sqlite3_backup_finish(backup);
        copied = result == SQLITE_DONE && sqlite3_errcode(target) == SQLITE_OK;
        if (!copied)
            why = QString::fromUtf8(sqlite3_errstr(result));
    }
    sqlite3_close(source);
    sqlite3_close(target);
    if (!copied) {
        QFile::remove(temp);
        throw PlatformError(PlatformError::FileAccess, why.isEmpty() ? to : to + QStringLiteral(": ") + why);
    }
    RenameOver(temp, to);
}

// Backup and restore copy the database file. A collection on a server has no file here: the
// server's own tools keep its copies, which this names. True when it was said.
bool pointedToServerTools(const QString &what)
{
    const DataSource source = FindDataSource(kDataSourceName);
    if (!source.onServer())
        return false;
    const ServerBackupCommands commands = BackupCommandsFor(source);
    MsgBox(QStringLiteral("%1 applies to a database file, and your recipes are kept on the PostgreSQL server %2, "
                          "in the database %3.\n\nUse the server's own tools instead (the password comes from "
                          "~/.pgpass):\n    %4\nmakes a backup, and\n    %5\nrestores it.")
               .arg(what, source.serverName(), source.database, commands.dump, commands.restore),
           Msg::Information, what);
    return true;
}

void reportFailure(const QString &what, const PlatformError &error)
{
    MsgBox(what + QStringLiteral("\n\n") + error.description() +
               QStringLiteral("\n\nThe database was not changed, and Mirepan is connected to it again."),
           Msg::Critical, QStringLiteral("Error"));
}

} // namespace

ServerBackupCommands BackupCommandsFor(const DataSource &source)
{
    QString connection = QStringLiteral("-h ") + source.serverName();
    if (source.port >= 0)
        connection += QStringLiteral(" -p %1").arg(source.port);
    if (!source.user.isEmpty())
        connection += QStringLiteral(" -U ") + source.user;
    // The recipe tables alone: the text type they use (citext) belongs to the server's
    // administrator and stays in place, so a restore has nothing to drop that it may not.
    const QString tables = QStringLiteral("-t recipe -t ingredients -t directions -t cabinet -t menu");
    return {QStringLiteral("pg_dump %1 -Fc %2 -f pantrio.dump %3").arg(connection, tables, source.database),
            QStringLiteral("pg_restore %1 --clean --if-exists --no-owner -d %2 pantrio.dump")
                .arg(connection, source.database)};
}

void BackupDatabase()
{
    if (pointedToServerTools(QStringLiteral("Backup")))
        return;
    const QString d = databaseDirectory();
    if (d.isEmpty())
        return;
    if (!FileExists(d + kLive)) {
        MsgBox(QStringLiteral("There was a problem locating ") + d +
                   QStringLiteral(" PANTRIO.MDB!\nPlease check the DB Path in your settings."),
               Msg::Critical, QStringLiteral("Database not found"));
        return;
    }
    if (MsgBox(QStringLiteral("This will make a backup copy of ") + d + kLive + QStringLiteral(" as ") + d + kBackup +
                   QStringLiteral(".\nAre you sure you want to backup the current database?"),
               Msg::Question, QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    // A damaged database never replaces a backup: that backup may be the last good copy.
    if (const QString damage = CheckDatabaseIntegrity(); !damage.isEmpty() && FileExists(d + kBackup)) {
        SetKnownDamage(damage);
        MsgBox(QStringLiteral("The recipe database ") + d + kLive + QStringLiteral(" is damaged (") + damage +
                   QStringLiteral(").\n\nThe backup ") + d + kBackup +
                   QStringLiteral(" was kept as it is: it may be your last good copy. Restore it (Tools, Database, "
                                  "Restore), or copy it elsewhere before you make a new backup."),
               Msg::Critical, QStringLiteral("Database damaged"));
        return;
    }
    // The old backup is replaced in one step by the new one, not deleted first.
    if (FileExists(d + kBackup) && MsgBox(QStringLiteral("There is already a backup DB.  Do you want to overwrite it?"),
                                          Msg::QuestionDefaultNo) != MsgResult::Yes)
        return;
    try {
        StatusGuard status(
            QStringLiteral("Please wait while the database is disconnected, copied, and reconnected..."));
        Disconnected closed;
        Wait(1);
        copyDatabase(d + kLive, d + kBackup);
        Wait(1);
    } catch (const PlatformError &error) {
        reportFailure(QStringLiteral("The backup could not be made as ") + d + kBackup + u'.', error);
        return;
    }
    // With a copy safe beside it, the live file is put in order when years of saving have
    // scattered it.
    CompactDatabaseIfScattered();
    MsgBox(QStringLiteral("Backup created as: ") + d + kBackup, Msg::Information);
}

void RestoreDatabase()
{
    if (pointedToServerTools(QStringLiteral("Restore")))
        return;
    const QString d = databaseDirectory();
    if (d.isEmpty())
        return;
    if (!FileExists(d + kBackup)) {
        MsgBox(QStringLiteral(
                   "You do not have a backup database yet!\n\nYou must backup your database before you can recover!"),
               Msg::Critical, QStringLiteral("Error"));
        return;
    }
    if (MsgBox(
            QStringLiteral("This will replace ") + d + kLive +
                QStringLiteral(" with the archived copy (PANTRIO.BAK) made when you last backed up your database.  It "
                               "will also copy your current database to ") +
                d + kOld + QStringLiteral(".\nAre you sure you want to recover from the backup database?"),
            Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    // A backup that is no recipe database would leave the household with nothing to open.
    if (const QString problem = RecipeDatabaseProblem(d + kBackup); !problem.isEmpty()) {
        MsgBox(QStringLiteral("The backup ") + d + kBackup + QStringLiteral(" cannot be restored: ") + problem +
                   QStringLiteral(".\n\nThe database was not changed."),
               Msg::Critical, QStringLiteral("Error"));
        return;
    }
    try {
        StatusGuard status(
            QStringLiteral("Please wait while the current database is disconnected and the backup databse "
                           "is restored and reconnected..."));
        Disconnected closed;
        Wait(1);
        // The live database stays in place until the backup replaces it in one step: a
        // program killed on the way leaves the old database or the restored one.
        if (FileExists(d + kLive)) {
            // Every database replaced before is kept until the household removes it: the last
            // PANTRIO.OLD moves to the next free PANTRIO.<n>.OLD.
            if (FileExists(d + kOld)) {
                int n = 1;
                while (FileExists(d + QStringLiteral("PANTRIO.%1.OLD").arg(n)))
                    ++n;
                if (!QFile::rename(d + kOld, d + QStringLiteral("PANTRIO.%1.OLD").arg(n)))
                    throw PlatformError(PlatformError::FileAccess);
            }
            CopyFileOver(d + kLive, d + kOld);
        }
        Wait(1);
        CopyFileOver(d + kBackup, d + kLive);
        Wait(1);
    } catch (const PlatformError &error) {
        reportFailure(QStringLiteral("The backup could not be restored."), error);
        return;
    }
    MsgBox(QStringLiteral("Database restored from: ") + d + kBackup + QStringLiteral(" and copied to ") + d + kOld,
           Msg::Information, QStringLiteral("Confirmation"));
}

void ResetRatings()
{
    if (MsgBox(QStringLiteral(
                   "This will reset all recipe ratings to the default setting of 'Not Rated', which is denoted by "
                   "having no rank.\nWould you like to proceed?"),
               Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    if (ReportNotConnected())
        return;
    gSQL = QStringLiteral("UPDATE RECIPE SET rating = ''");
    if (ExecuteSQL(gSQL).failed())
        return; // said why; nothing is reported done that was not
    MsgBox(QStringLiteral("All recipe ratings have been reset."), Msg::Information, QStringLiteral("Message"));
}
