// Database upkeep: backup, restore and the rating reset, on a real database file.

#include "core/db/schema.h"
#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "core/db/datasources.h"
#include "core/db/dbcompact.h"
#include "core/shell/dbupkeep.h"
#include "core/shell/frmmain.h"
#include "recipes/reciperepository.h"
#include "support/testsupport.h"

#include <QDir>
#include <QProcess>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

namespace {

struct BackupRun {
    int exitCode = -1;
    QString output;
};

// Runs a command line as the household would type it, in the test's directory.
BackupRun runShell(const QString &command)
{
    QProcess shell;
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start(QStringLiteral("sh"), {QStringLiteral("-c"), command});
    shell.waitForFinished(60000);
    return {shell.exitStatus() == QProcess::NormalExit ? shell.exitCode() : -1,
            command + u'\n' + QString::fromLocal8Bit(shell.readAll())};
}

} // namespace

class TestUpkeep : public SessionTest
{
    Q_OBJECT

    QString file(const char *name) const { return m_home->path(QLatin1String(name)); }
    QString dir() const { return m_home->dir() + u'/'; }
    void addRecipe(int id, const char *rating = "")
    {
        ExecuteSQL(QStringLiteral("INSERT INTO RECIPE VALUES (%1, '', 'F', '', 'Soup %1', '00:00', '00:00', '', '%2')")
                       .arg(id)
                       .arg(QLatin1String(rating)));
    }

private Q_SLOTS:
    void init()
    {
        SessionTest::init();
        gSettings.Database = m_home->databasePath();
    }

    void backupAndRestore()
    {
        SKIP_ON_SERVER();
        addRecipe(1);
        m_boxes->answer(MsgResult::Yes);
        BackupDatabase();
        QCOMPARE(m_boxes->prompts(),
                 (QStringList {QStringLiteral("This will make a backup copy of %1PANTRIO.MDB as %1PANTRIO.BAK.\nAre "
                                              "you sure you want to backup the current database?")
                                   .arg(dir()),
                               QStringLiteral("Backup created as: %1PANTRIO.BAK").arg(dir())}));
        QCOMPARE(m_boxes->boxes.last().style.icon, MsgIcon::Information);
        QCOMPARE(m_boxes->statusAtWait,
                 (QStringList(
                     2, QStringLiteral("Please wait while the database is disconnected, copied, and reconnected..."))));
        QVERIFY(!gNotConnected);
        QCOMPARE(RecipeDatabaseProblem(file("PANTRIO.BAK")), QString());

        // An existing backup is kept when the user says No.
        addRecipe(2);
        const QByteArray backup = ReadBytes(file("PANTRIO.BAK"));
        m_boxes->clear();
        m_boxes->answer(MsgResult::Yes);
        m_boxes->answer(MsgResult::No);
        BackupDatabase();
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("There is already a backup DB.  Do you want to overwrite it?"));
        QCOMPARE(ReadBytes(file("PANTRIO.BAK")), backup);
        QVERIFY(!gNotConnected);

        // Restoring keeps the replaced database as PANTRIO.OLD, and the one replaced before it.
        QByteArray before;
        for (int round = 0; round < 2; ++round) {
            const QByteArray live = ReadBytes(file("PANTRIO.MDB"));
            m_boxes->clear();
            m_boxes->answer(MsgResult::Yes);
            RestoreDatabase();
            QCOMPARE(m_boxes->prompts().last(),
                     QStringLiteral("Database restored from: %1PANTRIO.BAK and copied to %1PANTRIO.OLD").arg(dir()));
            QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Confirmation"));
            QCOMPARE(ReadBytes(file("PANTRIO.MDB")), backup);
            QCOMPARE(ReadBytes(file("PANTRIO.OLD")), live);
            if (round == 1)
                QCOMPARE(ReadBytes(file("PANTRIO.1.OLD")), before);
            before = live;
            QVERIFY(!gNotConnected);
            QCOMPARE(QueryNumber("SELECT count(*) FROM RECIPE"), 1);
        }
        QCOMPARE(QDir(m_home->dir()).entryList({QStringLiteral("*.new")}), QStringList());
    }

    void killedRestoresLeaveAWholeDatabase()
    {
        SKIP_ON_SERVER();
        // A restore puts the backup in place as the copy loop does: killed at any moment, the
        // live file is whole, the old one or the new one, never missing or cut short.
        const QByteArray first(2 << 20, 'a');
        const QByteArray second(2 << 20, 'b');
        WriteFile(file("first.BAK"), first);
        WriteFile(file("second.BAK"), second);
        WriteFile(file("live.MDB"), first);
        QRandomGenerator random(1123);
        for (int kill = 0, rounds = KillRounds(60); kill < rounds; ++kill) {
            QVERIFY(KillWhileWriting(
                {QStringLiteral("copy"), file(kill % 2 ? "first.BAK" : "second.BAK"), file("live.MDB")}, random,
                15000));
            const QByteArray live = ReadBytes(file("live.MDB"));
            QVERIFY2(live == first || live == second,
                     qPrintable(QStringLiteral("kill %1: %2 bytes").arg(kill).arg(live.size())));
        }
    }

    // Saved a recipe at a time, the file's pages interleave; a backup, and the program's end,
    // put the live file in order, every recipe kept. A small or compact file is left as it is.
    void aScatteredDatabaseIsPutInOrder_data()
    {
        QTest::addColumn<bool>("byBackup");
        QTest::newRow("backup") << true;
        QTest::newRow("end of the program") << false;
    }
    void aScatteredDatabaseIsPutInOrder()
    {
        SKIP_ON_SERVER();
        QFETCH(bool, byBackup);
        QCOMPARE(CompactDatabaseIfScattered(), false); // empty
        {
            StatementBatch batch;
            for (int id = 1; id <= 1500; ++id)
                StoreTestRecipe(TestRecipe(QStringLiteral("Stew %1").arg(id),
                                           {"1|cup|Beans, soaked|beans", "2|lb|Beef|beef"},
                                           {QString(300, u's'), QString(300, u't')}),
                                id);
            QVERIFY(batch.commit());
        }
        const QString before = Describe(LoadRecipe(777));
        QVERIFY2(DatabaseScatter() > 0.3, qPrintable(QString::number(DatabaseScatter())));
        if (byBackup) {
            m_boxes->answer(MsgResult::Yes);
            BackupDatabase();
            QCOMPARE(m_boxes->prompts().last(),
                     QStringLiteral("Backup created as: ") + dir() + QStringLiteral("PANTRIO.BAK"));
        } else {
            EndProgram();
        }
        QVERIFY2(DatabaseScatter() < 0.15, qPrintable(QString::number(DatabaseScatter())));
        QCOMPARE(QueryNumber("SELECT count(*) FROM INGREDIENTS"), 3000);
        QCOMPARE(Describe(LoadRecipe(777)), before);
        QCOMPARE(CompactDatabaseIfScattered(), false); // in order now
    }

    void refusalsTouchNothing()
    {
        SKIP_ON_SERVER();
        addRecipe(1);
        const QByteArray live = ReadBytes(file("PANTRIO.MDB"));
        // No backup yet: refused before anything is asked.
        RestoreDatabase();
        QCOMPARE(
            m_boxes->prompts(),
            QStringList {QStringLiteral(
                "You do not have a backup database yet!\n\nYou must backup your database before you can recover!")});
        // A backup that is no database.
        WriteFile(file("PANTRIO.BAK"), "not a database at all");
        m_boxes->answer(MsgResult::Yes);
        RestoreDatabase();
        QVERIFY(m_boxes->prompts().last().startsWith(
            QStringLiteral("The backup %1PANTRIO.BAK cannot be restored: it is not a database").arg(dir())));
        // A backup that cannot be written (the copy's place is taken).
        QDir().mkpath(file("PANTRIO.BAK.new/x"));
        m_boxes->answer(MsgResult::Yes);
        m_boxes->answer(MsgResult::Yes);
        BackupDatabase();
        QVERIFY(m_boxes->prompts().last().startsWith(
            QStringLiteral("The backup could not be made as %1PANTRIO.BAK.").arg(dir())));
        QCOMPARE(ReadBytes(file("PANTRIO.BAK")), QByteArray("not a database at all"));
        QCOMPARE(ReadBytes(file("PANTRIO.MDB")), live);
        QVERIFY(!QFile::exists(file("PANTRIO.OLD")));
        QVERIFY(!gNotConnected);
        QCOMPARE(QueryNumber("SELECT count(*) FROM RECIPE"), 1);
    }

    void pathsThatNameNoDatabase()
    {
        SKIP_ON_SERVER();
        gSettings.Database = QStringLiteral("PANTRIO.MDB"); // no directory
        BackupDatabase();
        RestoreDatabase();
        QCOMPARE(m_boxes->prompts(),
                 QStringList(2, QStringLiteral("You have not set the filename for the database yet!")));
        gSettings.Database = m_home->path("away/PANTRIO.MDB");
        BackupDatabase();
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral(
                     "There was a problem locating %1away/ PANTRIO.MDB!\nPlease check the DB Path in your settings.")
                     .arg(dir()));
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Database not found"));
    }

    void aCollectionOnAServerPointsToItsTools()
    {
        if (TestServerDir().isEmpty()) {
            DataSource server;
            server.name = kDataSourceName;
            server.driver = QStringLiteral("QPSQL");
            server.host = QStringLiteral("kitchen.local");
            server.port = 5433;
            server.database = QStringLiteral("recipes");
            RegisterDataSource(server);
        }
        const DataSource source = FindDataSource(kDataSourceName);
        const QStringList before = QDir(m_home->dir()).entryList(QDir::Files);
        BackupDatabase();
        RestoreDatabase();
        QCOMPARE(m_boxes->boxes.size(), 2);
        for (const char *what : {"Backup", "Restore"}) {
            const RecordedBox &box = m_boxes->boxes[what[0] == 'B' ? 0 : 1];
            QCOMPARE(box.title, QLatin1String(what));
            QCOMPARE(box.style.icon, MsgIcon::Information);
            QVERIFY2(box.prompt.startsWith(QLatin1String(what) + QStringLiteral(" applies to a database file")),
                     qPrintable(box.prompt));
            const ServerBackupCommands commands = BackupCommandsFor(source);
            QVERIFY(box.prompt.contains(commands.dump));
            QVERIFY(box.prompt.contains(commands.restore));
        }
        QCOMPARE(QDir(m_home->dir()).entryList(QDir::Files), before); // no file made
        if (TestServerDir().isEmpty())
            return;
        // The commands as written run clean on the test server's collection (citext included),
        // and the restore brings the recipes back.
        StoreTestRecipe(TestRecipe(QStringLiteral("Kept soup"), {"1|cup|Peas|peas"}, {"Simmer."}), 1);
        const BackupRun dump = runShell(BackupCommandsFor(source).dump);
        QVERIFY2(dump.exitCode == 0, qPrintable(dump.output));
        ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE WHERE ID = 1"));
        QCOMPARE(QueryNumber(QStringLiteral("SELECT count(*) FROM RECIPE")), 0);
        CloseDatabase(); // the restore replaces the tables under the connection
        const BackupRun restore = runShell(BackupCommandsFor(source).restore);
        QVERIFY2(restore.exitCode == 0, qPrintable(restore.output));
        QVERIFY(OpenDatabase());
        QCOMPARE(Describe(LoadRecipe(1)),
                 Describe(TestRecipe(QStringLiteral("Kept soup"), {"1|cup|Peas|peas"}, {"Simmer."})));
        m_boxes->clear();
    }

    void ratingsAreReset()
    {
        addRecipe(1, "***");
        addRecipe(2, "*");
        m_boxes->answer(MsgResult::No);
        ResetRatings();
        QCOMPARE(QueryNumber("SELECT count(*) FROM RECIPE WHERE rating = ''"), 0);
        QVERIFY(m_boxes->boxes.last().style.defaultNo); // one Enter wipes nothing
        m_boxes->answer(MsgResult::Yes);
        ResetRatings();
        QCOMPARE(QueryNumber("SELECT count(*) FROM RECIPE WHERE rating = ''"), 2);
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("All recipe ratings have been reset."));
        CloseDatabase();
        m_boxes->answer(MsgResult::Yes);
        ResetRatings();
        QCOMPARE(
            m_boxes->prompts().last(),
            QStringLiteral("Because you were not able to connect to the database, this function has been disabled."));
    }
};

QTEST_MAIN(TestUpkeep)
#include "test_upkeep.moc"
