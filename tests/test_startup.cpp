// Start-up: the first-run road, the main window and its exit guard.

#include "core/ui/voicewindows.h"
#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "core/db/datasources.h"
#include "core/db/schema.h"
#include "core/shell/frmmain.h"
#include "core/ui/frmhelp.h"
#include "core/ui/periphery.h"
#include "core/ui/frmstatus.h"
#include "core/platform/modini.h"
#include "core/shell/singleinstance.h"
#include "core/shell/startup.h"
#include "recipes/frmadd2.h"
#include "settings/frmmaint.h"
#include "settings/frmsettings.h"
#include "support/testsupport.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QTextBlock>
#include <QTextBrowser>
#include <QElapsedTimer>
#include <QTcpServer>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QStandardPaths>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

namespace {

template<typename Window>
int visibleWindows()
{
    int shown = 0;
    for (QWidget *widget : QApplication::topLevelWidgets())
        shown += qobject_cast<Window *>(widget) && widget->isVisible() ? 1 : 0;
    return shown;
}

} // namespace

class TestStartup : public SessionTest
{
    Q_OBJECT
public:
    TestStartup() : SessionTest(false) { }

private:
    std::unique_ptr<FakeShell> m_shell;

private Q_SLOTS:
    void init()
    {
        SessionTest::init();
        m_shell = std::make_unique<FakeShell>();
    }
    void cleanup()
    {
        m_shell.reset();
        SessionTest::cleanup();
    }

    void firstRunSetsUpTheDataSourceAndConnects()
    {
        m_shell->regVesk = RegVeskPath();
        ConnectAtStartup();
        QCOMPARE(m_shell->started.size(), 1);
        QVERIFY(m_shell->started[0].endsWith(QStringLiteral("reg_vesk /s")));
        QCOMPARE(m_boxes->waited(), 8.0);
        QCOMPARE(m_boxes->statusAtWait.size(), 8);
        QCOMPARE(m_boxes->statusAtWait[0],
                 QStringLiteral("Creating DSN for ") + m_home->dir() + QStringLiteral("/PANTRIO.MDB"));
        QVERIFY(m_boxes->boxes.isEmpty()); // no reconnect message on the very first run
        QCOMPARE(GetIniValue(m_home->iniPath(), "FIRSTRUN", "CONDB"), QStringLiteral("YES"));
        QVERIFY(!gNotConnected);
        QVERIFY(QFile::exists(m_home->databasePath()));

        // The next start finds the data source at once.
        CloseDatabase();
        m_shell->started.clear();
        ConnectAtStartup();
        QVERIFY(m_shell->started.isEmpty());
        QVERIFY(!gNotConnected);
    }

    // The program's own database gone after the household has used it: asked about, never
    // replaced by an empty one unless the user says so.
    void missingDatabaseWhereOneWasIsAskedAbout_data()
    {
        QTest::addColumn<int>("choice");
        QTest::addColumn<int>("recipes"); // afterwards, -1 when not connected
        QTest::addColumn<bool>("setUpAgain");
        QTest::newRow("locate") << 0 << 1 << false;
        QTest::newRow("restore the backup") << 1 << 1 << false;
        QTest::newRow("start new") << 2 << 0 << true;
        QTest::newRow("run without") << 3 << -1 << false;
    }
    void missingDatabaseWhereOneWasIsAskedAbout()
    {
        SKIP_ON_SERVER();
        QFETCH(int, choice);
        QFETCH(int, recipes);
        QFETCH(bool, setUpAgain);
        m_shell->regVesk = RegVeskPath();
        ConnectAtStartup(); // the first run
        StoreTestRecipe(TestRecipe(QStringLiteral("Soup")));
        CloseDatabase();
        const QString moved = m_home->path("moved.mdb");
        QVERIFY(QFile::copy(m_home->databasePath(), m_home->path("PANTRIO.BAK")));
        QVERIFY(QFile::rename(m_home->databasePath(), moved));
        m_shell->started.clear();
        m_boxes->clear();

        m_boxes->answerChoice(choice);
        if (choice == 0)
            m_boxes->answerFile(moved);
        ConnectAtStartup();
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Database not found"));
        QVERIFY(m_boxes->boxes[0].prompt.startsWith(QStringLiteral("The recipe database ") + m_home->databasePath() +
                                                    QStringLiteral(" is missing.")));
        QVERIFY(m_boxes->boxes[0].prompt.endsWith(
            QStringLiteral("[&Locate...] [&Restore the Backup] [Start &New] [Run &Without]")));
        QCOMPARE(m_shell->started.size(), setUpAgain ? 1 : 0);
        QCOMPARE(gNotConnected, recipes < 0);
        if (recipes >= 0)
            QCOMPARE(QueryNumber(QStringLiteral("SELECT count(*) FROM RECIPE")), recipes);
        QCOMPARE(QFile::exists(m_home->databasePath()), choice == 1 || choice == 2);
    }

    void missingDatabaseElsewhereIsNamedNotReplaced()
    {
        // On a drive that is not plugged in: no set-up, no new database, the registration kept.
        const QString usb = m_home->path("usb/PANTRIO.MDB");
        m_home->registerDatabase(usb);
        m_shell->regVesk = RegVeskPath();
        ConnectAtStartup();
        QVERIFY(m_shell->started.isEmpty());
        QCOMPARE(m_boxes->waited(), 0.0);
        QCOMPARE(m_boxes->prompts(),
                 QStringList {
                     QStringLiteral("The recipe database ") + usb +
                     QStringLiteral(" was not found.\n\nIf it is on a drive that is not connected, connect the drive "
                                    "and start Mirepan again. Until then Mirepan runs without its database.")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Database not found"));
        QCOMPARE(m_boxes->boxes[0].style.icon, MsgIcon::Critical);
        QVERIFY(gNotConnected);
        // The set-up utility, run by hand, leaves it alone too.
        QCOMPARE(QProcess::execute(RegVeskPath(), {QStringLiteral("/s")}), 0);
        QCOMPARE(FindDataSource(kDataSourceName).database, usb);
        QVERIFY(!QFile::exists(m_home->databasePath()));
        // When the drive is back, the household's database opens.
        QDir().mkpath(m_home->path("usb"));
        QVERIFY(CreateDatabaseFromSchema(usb, nullptr));
        ConnectAtStartup();
        QVERIFY(!gNotConnected);
        QCOMPARE(m_boxes->boxes.size(), 1);
    }

    void damagedDatabaseIsNamedAndLeftAlone()
    {
        WriteFile(m_home->databasePath(), QByteArray(5000, '\x5a'));
        m_home->registerDatabase(m_home->databasePath());
        m_shell->regVesk = RegVeskPath();
        ConnectAtStartup();
        QVERIFY(m_shell->started.isEmpty()); // no "Creating DSN" road
        QCOMPARE(m_boxes->waited(), 0.0);
        QCOMPARE(m_boxes->prompts(),
                 QStringList {
                     QStringLiteral("The recipe database ") + m_home->databasePath() +
                     QStringLiteral(" cannot be used: it is not a database, or it is damaged (file is not a database)."
                                    "\n\nThe file was left as it is. Mirepan runs without its database.")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Error"));
        QCOMPARE(ReadBytes(m_home->databasePath()), QByteArray(5000, '\x5a'));
        QVERIFY(gNotConnected);
    }

    void anUnreachableServerIsNamedAndNothingIsSetUp()
    {
        DataSource server;
        server.name = kDataSourceName;
        server.driver = QStringLiteral("QPSQL");
        server.host = QStringLiteral("127.0.0.1");
        server.port = 1; // nothing listens there
        server.database = QStringLiteral("recipes");
        server.password = QStringLiteral("never-shown");
        RegisterDataSource(server);
        m_shell->regVesk = RegVeskPath();
        ConnectAtStartup();
        QVERIFY(m_shell->started.isEmpty());
        QCOMPARE(m_boxes->boxes.size(), 1);
        const QString prompt = m_boxes->prompts().first();
        QVERIFY2(prompt.startsWith(QStringLiteral("The recipe database recipes on 127.0.0.1 cannot be used: nothing "
                                                  "answers on 127.0.0.1 at port 1; the server may not be running.")),
                 qPrintable(prompt));
        QVERIFY2(prompt.endsWith(
                     QStringLiteral("Check that the server is running and can be reached from this computer, then "
                                    "start Mirepan again. Until then Mirepan runs without its database.")),
                 qPrintable(prompt));
        QVERIFY(!prompt.contains(QStringLiteral("never-shown")));
        QCOMPARE(FindDataSource(kDataSourceName).password, QStringLiteral("never-shown")); // the entry stays
        QVERIFY(gNotConnected);
    }

    // A server that takes the connection and never answers: given up after the entry's time,
    // named like any unreachable server. The entry that holds a password is the user's alone.
    void aSilentServerIsGivenUp()
    {
        QTcpServer silent; // never served: the system accepts the connection, nothing answers
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        DataSource server;
        server.name = kDataSourceName;
        server.driver = QStringLiteral("QPSQL");
        server.host = QStringLiteral("127.0.0.1");
        server.port = silent.serverPort();
        server.database = QStringLiteral("recipes");
        server.password = QStringLiteral("secret");
        server.connectTimeout = 2;
        RegisterDataSource(server);
        const QFile::Permissions mode = QFile::permissions(DataSourcesPath());
        QVERIFY(mode.testFlags(QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(int(mode & 0x0077), 0); // nothing for the group or others
        QCOMPARE(FindDataSource(kDataSourceName).connectTimeout, 2);
        QElapsedTimer clock;
        clock.start();
        OpenFailure failure;
        QVERIFY(!OpenDatabase(&failure));
        QVERIFY2(clock.elapsed() < 15000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(failure.kind, OpenFailure::Unusable);
        QVERIFY(failure.onServer);
        QCOMPARE(failure.reason, QStringLiteral("the server 127.0.0.1 did not answer within 2 seconds"));
        // A server that answers, asked for a database it does not have.
        if (TestServerDir().isEmpty())
            return;
        RegisterDataSource(TestServerSource(QStringLiteral("no_such_collection")));
        QVERIFY(!OpenDatabase(&failure));
        QCOMPARE(failure.reason, QStringLiteral("the server 127.0.0.1 has no database named no_such_collection"));
    }

    // The set-up utility's way onto a server: the tables made in an empty database, a
    // collection already there kept, anything else refused, and the entry written only then.
    void setUpRegistersAServerCollection()
    {
        const auto regVesk = [](const QStringList &arguments) {
            QProcess process;
            process.start(RegVeskPath(), QStringList {QStringLiteral("/server")} + arguments);
            process.waitForFinished();
            return std::pair(process.exitCode(),
                             QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError()));
        };
        QCOMPARE(regVesk({QStringLiteral("host=x"), QStringLiteral("colour=red")}).first, 2);
        QCOMPARE(regVesk({QStringLiteral("host=x")}).first, 2); // no database named
        QVERIFY(FindDataSource(kDataSourceName).name.isEmpty());
        if (TestServerDir().isEmpty())
            QSKIP("the rest needs the test server");
        const DataSource empty = EmptyServerDatabase(QStringLiteral("setup"));
        const QStringList arguments {QStringLiteral("host=") + empty.host, QStringLiteral("port=%1").arg(empty.port),
                                     QStringLiteral("dbname=") + empty.database, QStringLiteral("user=") + empty.user};
        auto [status, said] = regVesk(arguments);
        QVERIFY2(status == 0, qPrintable(said));
        QVERIFY(said.contains(QStringLiteral("created the recipe tables")));
        const DataSource registered = FindDataSource(kDataSourceName);
        QCOMPARE(registered.driver, QStringLiteral("QPSQL"));
        QCOMPARE(registered.database, empty.database);
        QCOMPARE(registered.port, empty.port);
        QVERIFY(OpenDatabase());
        StoreTestRecipe(TestRecipe(QStringLiteral("Soup"), {"1|cup|Water"}));
        CloseDatabase();
        // Once more: the collection is kept as it is.
        std::tie(status, said) = regVesk(arguments);
        QVERIFY2(status == 0, qPrintable(said));
        QVERIFY(OpenDatabase());
        QCOMPARE(QueryNumber("SELECT count(*) FROM RECIPE"), 1);
        CloseDatabase();
        // A database holding other tables is refused and the registration stays as it was.
        const DataSource other = EmptyServerDatabase(QStringLiteral("other"));
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("other"));
            ConfigureConnection(db, other);
            QVERIFY(db.open());
            QVERIFY(QSqlQuery(db).exec(QStringLiteral("CREATE TABLE accounts (id integer)")));
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
        std::tie(status, said) =
            regVesk({arguments[0], arguments[1], QStringLiteral("dbname=") + other.database, arguments[3]});
        QCOMPARE(status, 1);
        QVERIFY2(said.contains(QStringLiteral("already holds tables")), qPrintable(said));
        QCOMPARE(FindDataSource(kDataSourceName).database, empty.database);
    }

    void secondFailureLeavesTheProgramRunningUnconnected()
    {
        WriteIniValue(m_home->iniPath(), "FIRSTRUN", "CONDB=YES");
        std::unique_ptr<frmMain> main = Startup(); // the set-up utility does nothing here
        QCOMPARE(m_boxes->prompts(),
                 QStringList {QStringLiteral("Vesk is now going to attempt to reconnect to the database...")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Mirepan"));
        QCOMPARE(m_boxes->boxes[0].style.buttons, MsgButtons::Ok);
        QVERIFY(gNotConnected);
        QVERIFY(main->isVisible());
        QCOMPARE(gMaxRecipeID, qint32(0));
        QVERIFY(ReportNotConnected());
        QCOMPARE(
            m_boxes->boxes.last().prompt,
            QStringLiteral("Because you were not able to connect to the database, this function has been disabled."));
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Message"));
    }

    void theIconIsDrawnAtEverySize()
    {
        for (int size : {16, 48, 256}) {
            const QImage image = ProgramIcon().pixmap(size).toImage();
            QCOMPARE(image.width(), size);
            // Drawn, not blank: the middle of the picture holds colour.
            QVERIFY(qAlpha(image.pixel(size / 2, size / 2)) > 0);
        }
    }

    void startupReadsTheSettingsAndRecordsTheHighestRecipe()
    {
        m_home->createAndOpenDatabase();
        ExecuteSQL("INSERT INTO RECIPE VALUES (12, '', 'F', '', 'Bread', '00:00', '00:00', '', '')");
        CloseDatabase();
        WriteIniValue(m_home->iniPath(), "Misc", "StandardAdd=True");
        gSettings.StandardAdd = false;
        std::unique_ptr<frmMain> main = Startup();
        QVERIFY(m_shell->started.isEmpty());
        QVERIFY(gSettings.StandardAdd);
        QCOMPARE(gMaxRecipeID, qint32(12));
        QCOMPARE(GetIniValue(m_home->iniPath(), "Misc", "MaxRecipeID"), QStringLiteral("12"));
        QCOMPARE(main->cboRecipeType->count(), 3);
        QCOMPARE(main->cboRecipeType->currentText(), QStringLiteral("Food"));
    }

    void statusWindowShowsABarOnlyForProgress()
    {
        {
            StatusGuard notice(QStringLiteral("Soup has been saved!"));
            QVERIFY(StatusWindow()->lblMessage->isVisible());
            QVERIFY(StatusWindow()->pgbStatus->isHidden());
            QVERIFY(StatusWindow()->lblPct->isHidden());
        }
        StatusGuard work(QStringLiteral("Working"));
        SetStatusMaximum(7);
        SetStatusProgress(0);
        QVERIFY(StatusWindow()->pgbStatus->isVisible());
        SetStatusProgress(7);
        QCOMPARE(StatusWindow()->lblPct->text(), QStringLiteral("100%"));
        SaveScreenshot(StatusWindow(), QStringLiteral("frmStatus"));
    }

    void aSecondStartBringsTheFirstForward()
    {
        const QString key = SingleInstance::keyFor(m_home->dir());
        QCOMPARE(key, SingleInstance::keyFor(m_home->dir() + QStringLiteral("/."))); // however it is spelled
        QVERIFY(key != SingleInstance::keyFor(m_home->path("other")));
        int activations = 0;
        {
            SingleInstance running(key);
            running.onActivation = [&] { ++activations; };
            QVERIFY(running.claim());
            SingleInstance second(key);
            QVERIFY(!second.claim());
            QTRY_COMPARE(activations, 1);
        }
        // Once the first has ended, the next start runs.
        SingleInstance next(key);
        QVERIFY(next.claim());
    }

    void exitIsRefusedWhileWorkingWindowsAreOpen()
    {
        frmMain main;
        main.show();
        gSubWindows = 1;
        QVERIFY(!main.cmdExit_Click());
        QCOMPARE(m_boxes->prompts(),
                 QStringList {QStringLiteral("You cannot exit the Mirepan while Sub-Windows are open.")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Error"));
        QVERIFY(main.isVisible());
        gSubWindows = 0;
        QVERIFY(main.cmdExit_Click());
        QVERIFY(!main.isVisible());
        QCOMPARE(m_boxes->boxes.size(), 1);
    }

    void mainWindowCommandsAndType()
    {
        frmMain main;
        main.show();
        QStringList menus;
        for (QAction *a : main.menuBar()->actions())
            menus << a->text();
        QCOMPARE(menus, (QStringList {"&File", "&Tools", "&Help"}));
        // Add opens a new editor each time, from the menu and from the button.
        main.mnuAdd->trigger();
        QTest::mouseClick(main.cmdAddRecipe, Qt::LeftButton);
        QCOMPARE(visibleWindows<frmAdd2>(), 2);
        QApplication::closeAllWindows();
        QCOMPARE(gSubWindows, qint16(0));
        main.show();

        main.cboRecipeType->setCurrentIndex(1);
        main.cboRecipeType_Click();
        QCOMPARE(gRecipeType, QStringLiteral("Drink"));
        gRecipeType = QStringLiteral("Other"); // changed by another window
        main.Form_Activate();
        QCOMPARE(main.cboRecipeType->currentText(), QStringLiteral("Other"));
        SaveScreenshot(&main, QStringLiteral("frmMain"));
    }

    // Help shows the manual of this version in a window of its own, its chapters beside the
    // text and a search through it; the printable copy goes to the desktop's word processor.
    void helpShowsTheManual()
    {
        frmMain main;
        main.mnuUM->trigger();
        frmHelp *help = nullptr;
        for (QWidget *window : QApplication::topLevelWidgets())
            if (auto *found = qobject_cast<frmHelp *>(window); found && found->isVisible())
                help = found;
        QVERIFY(help);
        QVERIFY(help->lstContents->count() >= 12);
        QCOMPARE(help->lstContents->item(0)->text(), QStringLiteral("Starting Mirepan"));
        help->lstContents->setCurrentRow(5);
        QCOMPARE(help->txtManual->textCursor().block().text(), help->lstContents->item(5)->text());
        help->txtFind->setText(QStringLiteral("PANTRIO.BAK"));
        QVERIFY(help->findNext());
        const int first = help->txtManual->textCursor().position();
        QVERIFY(help->findNext());
        QVERIFY(help->txtManual->textCursor().position() != first);
        help->txtFind->setText(QStringLiteral("no such words anywhere"));
        QVERIFY(!help->findNext());
        SaveScreenshot(help, QStringLiteral("frmHelp"));

        QFile::copy(QStringLiteral(MIREPAN_MANUAL_RTF), m_home->path("vesk_um.rtf"));
        help->cmdOpenRtf->click();
        QCOMPARE(m_shell->opened, QStringList {m_home->path("vesk_um.rtf")});
        QVERIFY(ReadFile(m_home->path("vesk_um.rtf")).contains(QStringLiteral("Planning menus")));
        QVERIFY(m_boxes->boxes.isEmpty());
        help->close();
        main.mnuWebPage->trigger(); // not shipped into the test directory: a clear message
        QCOMPARE(m_boxes->boxes.size(), 1);
        QVERIFY(m_boxes->boxes[0].prompt.startsWith(QStringLiteral("The web page could not be opened")));
    }

    void manualWithNoProgramToOpenItIsNamed()
    {
        // The desktop's opener finds no program for the manual and says so only by its exit.
        m_shell.reset();
        QFile::copy(QStringLiteral(MIREPAN_MANUAL_RTF), m_home->path("vesk_um.rtf"));
        for (const char *opener : {"true", "false"}) {
            qputenv("MIREPAN_OPENER", QStandardPaths::findExecutable(QLatin1String(opener)).toUtf8());
            OpenUserManual();
            QTest::qWait(300);
        }
        qunsetenv("MIREPAN_OPENER");
        QTRY_COMPARE(m_boxes->prompts(), QStringList {QStringLiteral("The user manual could not be opened:\n") +
                                                      m_home->path("vesk_um.rtf")});
        QCOMPARE(m_boxes->boxes[0].style.icon, MsgIcon::Critical);
    }

    void listMaintenanceWarnsFirst()
    {
        frmMain main;
        main.mnuList->trigger();
        QCOMPARE(visibleWindows<frmMaint>(), 1);
        QCOMPARE(m_boxes->prompts(),
                 QStringList {QStringLiteral("Be careful when making changes to the values in the combo boxes!\nYour "
                                             "changes will immediately affect the lists available in the software.")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Warning"));
        QCOMPARE(m_boxes->boxes[0].style.icon, MsgIcon::Critical);
    }
};

QTEST_MAIN(TestStartup)
#include "test_startup.moc"
