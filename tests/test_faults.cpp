// Saves meet a full disk, a failing disk and another program's lock at every point where the
// disk can fail: what is reported saved is in the file, what is not reported saved left the
// file as it was, and the next save works.

#include "core/db/database.h"
#include "core/platform/voice.h"
#include "cabinet/frmcabinet.h"
#include "core/db/dbcompact.h"
#include "core/db/integrity.h"
#include "core/db/datasources.h"
#include "core/db/schema.h"
#include "core/platform/appstate.h"
#include "core/platform/modini.h"
#include "core/shell/dbupkeep.h"
#include "core/shell/startup.h"
#include "core/ui/frmstatus.h"
#include "core/ui/voicewindows.h"
#include "menus/menutree.h"
#include "recipes/frmadd2.h"
#include "recipes/reciperepository.h"
#include "support/faultvfs.h"
#include "support/testsupport.h"
#include "transfer/ctransfer.h"
#include "transfer/mealmastercommands.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QPointer>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <QPushButton>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QTreeWidget>

#include <sqlite3.h>

#include <functional>
#include <optional>

namespace {

// Every stored row of every table, for comparing the file before and after.
QString snapshot()
{
    QString all;
    for (const char *table : {"RECIPE", "INGREDIENTS", "DIRECTIONS", "CABINET", "MENU"}) {
        for (Recordset rs = ExecuteSQL(QStringLiteral("SELECT * FROM ") + QLatin1String(table)); rs && !rs.eof();
             rs.MoveNext()) {
            all += QLatin1String(table);
            for (int i = 0; i < 9; ++i) // no table has more columns; past the last a field reads ""
                all += u'|' + rs.text(i);
            all += u'\n';
        }
    }
    return all;
}

const QString kMealMaster = QStringLiteral("MMMMM----- Recipe via Meal-Master (tm) v8.05\n"
                                           "\n"
                                           "      Title: Barley soup\n"
                                           " Categories: Soups\n"
                                           "      Yield: 4 servings\n"
                                           "\n"
                                           "      1 c  Barley\n"
                                           "      2 qt Water\n"
                                           "\n"
                                           "  Simmer for an hour.\n"
                                           "\n"
                                           "MMMMM\n");

// A voice that records the waits and does what the test says at each.
class WaitingVoice : public Voice
{
public:
    void report(const QString &text, const QString &) override { reports << text; }
    bool waiting(const QString &text, int, int) override
    {
        waitTexts << text;
        return onWait ? onWait(int(waitTexts.size())) : true;
    }
    void waitEnded() override { ++ended; }

    QStringList reports;
    QStringList waitTexts;
    int ended = 0;
    std::function<bool(int)> onWait;
};

} // namespace

class TestFaults : public SessionTest
{
    Q_OBJECT

    QString m_pristine;

    // The seeded database as it was before the writer ran.
    void restore()
    {
        CloseDatabase();
        QFile::remove(m_home->databasePath());
        QFile::remove(m_home->databasePath() + QStringLiteral("-journal"));
        QVERIFY(QFile::copy(m_pristine, m_home->databasePath()));
        QVERIFY(OpenDatabase());
    }

    // Runs the writer at every write and sync it makes, each failing as a full disk and as a
    // failing disk from that call on: the writer reports saved exactly when the file holds all
    // it wrote, the file is otherwise as it was, and a save right after works.
    // A writer that leaves the database as it is (a backup) only has to say truly whether it did
    // its work: the database is the same either way.
    void driveThroughFaults(const std::function<bool()> &writer, bool changesData = true)
    {
        restore();
        const QString before = snapshot();
        ResetFaultCounts();
        QVERIFY(writer());
        const int calls[2] = {FaultCalls(FaultOp::Write), FaultCalls(FaultOp::Sync)};
        const QString after = snapshot();
        QVERIFY(changesData ? after != before : after == before);
        QVERIFY(calls[0] > 0 && calls[1] > 0);
        m_boxes->clear();
        for (const FaultOp op : {FaultOp::Write, FaultOp::Sync}) {
            for (int nth = 1; nth <= calls[int(op)]; ++nth) {
                for (const int code : {SQLITE_FULL, SQLITE_IOERR_WRITE}) {
                    restore();
                    ArmFault(op, nth, code);
                    const bool saved = writer();
                    DisarmFault();
                    const QString now = snapshot();
                    const QString where = QStringLiteral("%1 %2 of %3, code %4")
                                              .arg(op == FaultOp::Write ? "write" : "sync")
                                              .arg(nth)
                                              .arg(calls[int(op)])
                                              .arg(code);
                    QVERIFY2(now == (saved ? after : before), qPrintable(where));
                    if (!saved && changesData) {
                        QVERIFY2(!m_boxes->prompts().join(u'\n').contains(QStringLiteral("INSERT")), qPrintable(where));
                        QVERIFY2(m_boxes->prompts().join(u'\n').contains(QStringLiteral("Nothing of this change was "
                                                                                        "stored.")),
                                 qPrintable(where + u'\n' + m_boxes->prompts().join(u'\n')));
                    }
                    m_boxes->clear();
                    QVERIFY2(StoreRecipe(TestRecipe(QStringLiteral("Next")), 0, false), qPrintable(where));
                }
            }
        }
    }

private Q_SLOTS:
    void initTestCase() { InstallFaultVfs(); }

    void init()
    {
        SKIP_ON_SERVER();
        SessionTest::init();
        RecipeData seed = TestRecipe(QStringLiteral("Old soup"), {"1|cup|Lentils|lentils"}, {"Cook."});
        seed.rating = QStringLiteral("***");
        StoreTestRecipe(seed, 1); // with its cabinet item
        ExecuteSQL(QStringLiteral("INSERT INTO MENU VALUES (0, '', 'Root', 'Menus')"));
        m_pristine = m_home->path(QStringLiteral("pristine.mdb"));
        CloseDatabase();
        QVERIFY(QFile::copy(m_home->databasePath(), m_pristine));
        QVERIFY(OpenDatabase());
    }

    void recipeSave()
    {
        driveThroughFaults([this] {
            QString problem;
            const bool saved = StoreRecipe(TestRecipe(QStringLiteral("New bread"), {"2|cup|Flour|flour"}, {"Knead."}),
                                           0, false, &problem);
            if (!saved)
                MsgBox(problem);
            return saved;
        });
    }

    void menuSave()
    {
        driveThroughFaults([] {
            QTreeWidget view;
            MenuTree tree(&view);
            LoadMenu(tree);
            tree.add(QStringLiteral("Root"), QStringLiteral("Title:1"), QStringLiteral("Sunday lunch"));
            const MenuSaveResult result = SaveMenu(tree);
            if (!result.saved())
                MsgBox(result.failure);
            return result.saved();
        });
    }

    void cabinetSave()
    {
        driveThroughFaults([this] {
            frmCabinet window;
            window.show();
            window.cmdAll_Click();
            const qsizetype shown = m_boxes->boxes.size();
            window.cmdSave_Click();
            const bool saved = m_boxes->boxes.size() == shown;
            if (!saved) // unsaved ticks are asked about on close
                m_boxes->answer(MsgResult::Yes);
            window.close();
            return saved;
        });
    }

    void ratingReset()
    {
        driveThroughFaults([this] {
            m_boxes->answer(MsgResult::Yes);
            ResetRatings();
            return m_boxes->prompts().contains(QStringLiteral("All recipe ratings have been reset."));
        });
    }

    // A backup said to be made is a whole recipe database; one that failed says so, and the
    // database it copied is untouched either way.
    void backup()
    {
        gSettings.Database = m_home->databasePath();
        const QString copy = m_home->path(QStringLiteral("PANTRIO.BAK"));
        QStringList notWhole;
        driveThroughFaults(
            [&] {
                QFile::remove(copy);
                m_boxes->answer(MsgResult::Yes);
                BackupDatabase();
                const bool made = m_boxes->prompts().join(u'\n').contains(QStringLiteral("Backup created as: "));
                if (made && !RecipeDatabaseProblem(copy).isEmpty())
                    notWhole << RecipeDatabaseProblem(copy);
                return made;
            },
            false);
        QVERIFY2(notWhole.isEmpty(), qPrintable(notWhole.join(u'\n')));
    }

    // Putting the file in order rewrites all of it: a rewrite that fails on the way leaves
    // every recipe as it was.
    void compaction()
    {
        driveThroughFaults([] { return CompactDatabase(); }, false);
    }

    void transferImport()
    {
        const QString file = m_home->path(QStringLiteral("transfer.txt"));
        driveThroughFaults([&] {
            WriteFile(file, "[1]\nServings=4\nType=F\nCategory=Soups\nTitle=Pea soup\nPrep=00:10\nCook=00:40\n"
                            "Notes=\nRating=\nIng1=1 | cup | Peas | peas\nDir1=1 | Simmer.\n[2]\n");
            cTransfer transfer;
            transfer.FileName = file;
            m_boxes->answer(MsgResult::Yes);
            transfer.Import();
            const bool marked = ReadFile(file).contains(QStringLiteral("Flag=True"));
            // Marked imported exactly when the recipes came in.
            return marked;
        });
    }

    void mealMasterImport()
    {
        const QString file = m_home->path(QStringLiteral("soup.mmf"));
        WriteFile(file, kMealMaster.toUtf8());
        driveThroughFaults([&] {
            const MealMasterImportResult result = ImportMealMasterFiles({file});
            if (!result.notStored.isEmpty())
                MsgBox(MealMasterImportSummary(result));
            return result.imported == 1;
        });
    }

    // The editor keeps the recipe as typed and says why it was not saved.
    void editorKeepsTheFormWhenTheCommitFails()
    {
        frmAdd2 editor;
        editor.TabbedView = false;
        editor.show();
        editor.txtTitle->setText(QStringLiteral("Rye bread"));
        ArmFault(FaultOp::Sync, 1, SQLITE_FULL);
        editor.cmdSave_Click();
        DisarmFault();
        QCOMPARE(m_boxes->boxes.size(), 1);
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Error"));
        QCOMPARE(m_boxes->boxes[0].prompt,
                 QStringLiteral("There were errors adding the recipe!\n\nThe disk holding the recipe database is full. "
                                "Nothing of this change was stored. Make room on the disk and try again."));
        QCOMPARE(editor.txtTitle->text(), QStringLiteral("Rye bread"));
        QCOMPARE(QueryNumber(QStringLiteral("SELECT count(*) FROM RECIPE")), 1);
        m_boxes->clear();
        editor.cmdSave_Click();
        QCOMPARE(QueryNumber(QStringLiteral("SELECT count(*) FROM RECIPE WHERE title = 'Rye bread'")), 1);
    }

    // 8 kB overwritten in the middle of the file: named at start, nothing saved into it, the good
    // backup never replaced by it, and a restore brings the household back to saving.
    void damageIsNamedAndGuardsTheBackup()
    {
        for (int n = 0; n < 300; ++n)
            StoreTestRecipe(TestRecipe(QStringLiteral("Stew %1").arg(n), {"1|cup|Beans|beans", "2|lb|Beef|beef"},
                                       {QString(400, u's'), QString(400, u't')}));
        const QString live = m_home->databasePath();
        const QString backup = m_home->path(QStringLiteral("PANTRIO.BAK"));
        CloseDatabase();
        QVERIFY(QFile::copy(live, backup));
        {
            QFile file(live);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.seek(file.size() / 2));
            file.write(QByteArray(8192, '\xab'));
        }
        const QByteArray goodBackup = ReadBytes(backup);
        QVERIFY(OpenDatabase());
        CheckDatabaseAtStartup();
        QCOMPARE(m_boxes->boxes.size(), 1);
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Database damaged"));
        QVERIFY(m_boxes->boxes[0].prompt.startsWith(QStringLiteral("The recipe database ") + live +
                                                    QStringLiteral(" is damaged (")));
        QString problem;
        QVERIFY(!StoreRecipe(TestRecipe(QStringLiteral("Lost soup")), 0, false, &problem));
        QVERIFY2(problem.startsWith(QStringLiteral("The recipe database is damaged.")), qPrintable(problem));

        m_boxes->clear();
        gSettings.Database = live;
        m_boxes->answer(MsgResult::Yes); // make a backup
        BackupDatabase();
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Database damaged"));
        QCOMPARE(ReadBytes(backup), goodBackup);

        m_boxes->clear();
        m_boxes->answer(MsgResult::Yes); // restore
        RestoreDatabase();
        QVERIFY(!gNotConnected);
        QCOMPARE(CheckDatabaseIntegrity(), QString());
        QVERIFY(StoreRecipe(TestRecipe(QStringLiteral("Saved again")), 0, false));
        QCOMPARE(QueryNumber(QStringLiteral("SELECT count(*) FROM RECIPE")), 302);
    }

    // A file as the program left it at its last end is not read through at the next start;
    // one changed since by anything else is.
    void onlyAFileChangedElsewhereIsCheckedAtStart()
    {
        for (int n = 0; n < 60; ++n)
            StoreTestRecipe(TestRecipe(QStringLiteral("Stew %1").arg(n), {"1|cup|Beans|beans"}, {QString(400, u's')}));
        const QString live = m_home->databasePath();
        RecordCheckedDatabase();
        const QString stamp = DatabaseFileStamp();
        QCOMPARE(CheckedFileStamp(kDataSourceName), stamp);
        CloseDatabase();
        const QDateTime changed = QDateTime::fromMSecsSinceEpoch(stamp.section(u':', 1).toLongLong());
        const auto setChanged = [&](const QDateTime &time) {
            QFile file(live);
            QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime));
        };
        {
            QFile file(live);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.seek(file.size() / 2));
            file.write(QByteArray(8192, '\xab'));
        }
        setChanged(changed); // as if never touched
        QVERIFY(OpenDatabase());
        CheckDatabaseAtStartup();
        QVERIFY(m_boxes->boxes.isEmpty());
        setChanged(changed.addSecs(60));
        CheckDatabaseAtStartup();
        QCOMPARE(m_boxes->boxes.size(), 1);
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Database damaged"));
    }

    // A file that may not be written to is named at start; a save says why it could not be
    // kept, and an import of nothing leaves its file unmarked.
    void aReadOnlyDatabaseIsNamed()
    {
        CloseDatabase();
        SetFaultReadOnly(true);
        QVERIFY(OpenDatabase());
        SetFaultReadOnly(false);
        CheckDatabaseAtStartup();
        QCOMPARE(m_boxes->boxes.size(), 1);
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Database read-only"));
        QString problem;
        QVERIFY(!StoreRecipe(TestRecipe(QStringLiteral("Pea soup")), 0, false, &problem));
        QVERIFY2(problem.startsWith(QStringLiteral("The recipe database is read-only.")), qPrintable(problem));

        m_boxes->clear();
        const QString file = m_home->path(QStringLiteral("transfer.txt"));
        WriteFile(file, "[1]\nServings=4\nType=F\nCategory=Soups\nTitle=Pea soup\nPrep=00:10\nCook=00:40\n"
                        "Notes=\nRating=\n[2]\n");
        cTransfer transfer;
        transfer.FileName = file;
        m_boxes->answer(MsgResult::Yes);
        transfer.Import();
        QCOMPARE(m_boxes->boxes.size(), 2); // the question, then why nothing came in
        QVERIFY(m_boxes->boxes[1].prompt.startsWith(QStringLiteral("No recipes were imported from ")));
        QVERIFY(!ReadFile(file).contains(QStringLiteral("Flag=True")));
    }

    // Another computer saving recipes, or importing a MealMaster file, killed at random
    // moments: the file stays whole and every recipe it holds is whole.
    void killedWritersLeaveWholeRecipes_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("title"); // of the recipes it stores
        QTest::addColumn<int>("lines"); // the ingredient lines and steps each has
        QTest::addColumn<int>("steps");
        QTest::newRow("saves") << QStringLiteral(MIREPAN_SAVE_LOOP) << QStringLiteral("Killed") << 8 << 3;
        QTest::newRow("import") << QStringLiteral(MIREPAN_IMPORT_LOOP) << QStringLiteral("Barley soup") << 2 << 1;
        QTest::newRow("transfer") << QStringLiteral("--transfer") << QStringLiteral("Barley soup") << 2 << 1;
    }
    void killedWritersLeaveWholeRecipes()
    {
        QFETCH(QString, program);
        m_boxes->clear();
        QFETCH(QString, title);
        QFETCH(int, lines);
        QFETCH(int, steps);
        QByteArray collection;
        for (int n = 0; n < 300; ++n)
            collection +=
                QByteArray(kMealMaster.toUtf8()).replace("Barley soup", "Barley soup " + QByteArray::number(n));
        const QString file = m_home->path(QStringLiteral("big.mmf"));
        WriteFile(file, collection);
        QStringList arguments = program == QLatin1String(MIREPAN_SAVE_LOOP)
                                  ? QStringList {QStringLiteral("100000"), title}
                                  : QStringList {file};
        const QString transferFile = m_home->path(QStringLiteral("transfer.txt"));
        if (program == QLatin1String("--transfer")) {
            // The same collection, come as a transfer file: its import also marks the file.
            QVERIFY(ImportMealMasterFiles({file}).imported == 300);
            cTransfer exporter;
            exporter.FileName = transferFile;
            QStringList ids;
            for (qint32 id = 1; id <= 300; ++id)
                ids << SevenDigits(id);
            exporter.Export(ids);
            QVERIFY(!ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE")).failed());
            arguments = QStringList {program, transferFile};
            program = QStringLiteral(MIREPAN_IMPORT_LOOP);
        }
        QRandomGenerator random(30);
        for (int kill = 0, rounds = KillRounds(6); kill < rounds; ++kill) {
            QProcess writer;
            writer.start(program, arguments);
            QVERIFY(writer.waitForStarted(10000));
            QThread::msleep(150 + random.bounded(300));
            writer.kill();
            QVERIFY(writer.waitForFinished(10000));
        }
        CloseDatabase();
        QVERIFY(OpenDatabase());
        QCOMPARE(CheckDatabaseIntegrity(), QString());
        if (arguments.first() == QLatin1String("--transfer")) { // the file is whole too, marked or not
            QCOMPARE(GetIniValue(transferFile, QStringLiteral("ID"), QStringLiteral("Max")), QStringLiteral("300"));
        }
        const QString stored = QStringLiteral("FROM RECIPE A WHERE title LIKE '%1 %'").arg(title);
        QVERIFY(QueryNumber(QStringLiteral("SELECT count(*) ") + stored) > 0);
        QCOMPARE(QueryNumber(QStringLiteral("SELECT count(*) %1 AND ((SELECT count(*) FROM INGREDIENTS B WHERE "
                                            "B.recipe_id = A.id) <> %2 OR (SELECT count(*) FROM DIRECTIONS C WHERE "
                                            "C.recipe_id = A.id) <> %3)")
                                 .arg(stored)
                                 .arg(lines)
                                 .arg(steps)),
                 0);
    }

    // The progress window closes when its work ends in every nesting the commands make: an
    // import (with Cancel) that puts the file in order or waits for a lock at its end, cancelled
    // or not, and a backup that puts it in order on its own. Cancel reaches no guard that is gone.
    void progressWindowsCloseInEveryNesting_data()
    {
        QTest::addColumn<bool>("outerTask");
        QTest::addColumn<bool>("cancelled");
        QTest::addColumn<bool>("lockWait");
        QTest::newRow("import, then put in order") << true << false << false;
        QTest::newRow("import cancelled, then put in order") << true << true << false;
        QTest::newRow("import, a wait for a lock at its end") << true << false << true;
        QTest::newRow("backup, then put in order") << false << false << false;
    }
    void progressWindowsCloseInEveryNesting()
    {
        QFETCH(bool, outerTask);
        QFETCH(bool, cancelled);
        QFETCH(bool, lockWait);
        QPointer<frmStatus> window;
        {
            std::optional<StatusGuard> task;
            std::optional<StatusCancel> cancel;
            if (outerTask) {
                task.emplace(QStringLiteral("Importing recipes..."));
                cancel.emplace();
                window = StatusWindow();
                QVERIFY(window && window->cmdCancel->isVisible());
                if (cancelled)
                    QTest::mouseClick(window->cmdCancel, Qt::LeftButton);
                QCOMPARE(cancel->requested(), cancelled);
            }
            {
                WorkingNotice order(QStringLiteral("Putting the recipe database in order for faster searches..."));
                if (lockWait)
                    TheVoice().waiting(QStringLiteral("Waiting..."), 10, 100);
                QVERIFY(StatusWindow() && StatusWindow()->isVisible());
                if (!window)
                    window = StatusWindow();
                QCOMPARE(StatusWindow(), window.data()); // borrowed, not a second window
                if (lockWait)
                    TheVoice().waitEnded();
            }
            if (outerTask) {
                QCOMPARE(StatusWindow(), window.data()); // given back as it was
                QCOMPARE(window->lblMessage->text(), QStringLiteral("Importing recipes..."));
                QVERIFY(window->isVisible());
            }
        }
        QCOMPARE(StatusWindow(), nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(window.isNull()); // closed and gone, Cancel's handler with it
    }

    // Another program reading the file holds the commit up: the save waits for it with the
    // progress window, and saves once it lets go, or gives up and says who holds it.
    void aLockIsWaitedOnThenReported_data()
    {
        QTest::addColumn<bool>("letGo");
        QTest::newRow("the other program lets go") << true;
        QTest::newRow("the other program holds on") << false;
    }
    void aLockIsWaitedOnThenReported()
    {
        QFETCH(bool, letGo);
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        other.setDatabaseName(m_home->databasePath());
        QVERIFY(other.open());
        {
            QSqlQuery reader(other);
            QVERIFY(reader.exec(QStringLiteral("BEGIN")));
            QVERIFY(reader.exec(QStringLiteral("SELECT * FROM RECIPE")) && reader.next()); // a read lock
            WaitingVoice voice;
            SetVoice(&voice);
            voice.onWait = [&](int wait) {
                if (wait == 2 && letGo) {
                    reader.finish();
                    QSqlQuery(other).exec(QStringLiteral("COMMIT"));
                }
                return letGo || wait < 3;
            };
            QString problem;
            const bool saved = StoreRecipe(TestRecipe(QStringLiteral("Waiting stew")), 0, false, &problem);
            InstallWindowVoice();
            QCOMPARE(saved, letGo);
            QVERIFY(voice.waitTexts.size() >= 2);
            QCOMPARE(voice.waitTexts[0],
                     QStringLiteral("Another program is using the recipe database. Waiting for it to finish..."));
            QCOMPARE(voice.ended, 1);
            if (!letGo)
                QVERIFY2(problem.startsWith(QStringLiteral("Another program is using the recipe database")),
                         qPrintable(problem));
            reader.finish();
            QSqlQuery(other).exec(QStringLiteral("ROLLBACK"));
        }
        other.close();
        other = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
        QCOMPARE(QueryNumber(QStringLiteral("SELECT count(*) FROM RECIPE WHERE title = 'Waiting stew'")),
                 letGo ? 1 : 0);
        QVERIFY(StoreRecipe(TestRecipe(QStringLiteral("After the wait")), 0, false));
    }
};

QTEST_MAIN(TestFaults)
#include "test_faults.moc"
