// Recipe exchange: the transfer file written by export, read by import, shown and reset.

#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "core/platform/modini.h"
#include "core/platform/programdir.h"
#include "core/ui/frmstatus.h"
#include "recipes/reciperepository.h"
#include "reports/recipeprinter.h"
#include "search/frmsearch.h"
#include "support/testsupport.h"
#include "support/transferrecipes.h"
#include "transfer/ctransfer.h"
#include "transfer/transfercommands.h"

#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

class TestTransfer : public SessionTest
{
    Q_OBJECT

    QString m_file;
    QList<RecipePrinter> m_printed;

    cTransfer transfer() const
    {
        cTransfer t;
        t.FileName = m_file;
        return t;
    }
    void exportRecipes(const QStringList &ids) { transfer().Export(ids); }
    // Imports the file, answering the confirmation (and the again-question when given).
    void importFile(std::optional<MsgResult> again = std::nullopt)
    {
        m_boxes->answer(MsgResult::Yes);
        if (again)
            m_boxes->answer(*again);
        transfer().Import();
    }

private Q_SLOTS:
    void init()
    {
        SessionTest::init();
        m_file = m_home->path(QStringLiteral("transfer.txt"));
        gSettings.Transfer = m_file;
        SetPrintPreviewSink([this](const RecipePrinter &p) { m_printed.append(p); });
    }
    void cleanup()
    {
        SetPrintPreviewSink(nullptr);
        m_printed.clear();
        SessionTest::cleanup();
    }

    void fileNameComesFromTheSettings()
    {
        // As shipped, a name without a folder: the household's program directory.
        QCOMPARE(cTransfer().FileName, m_home->path(QStringLiteral("transfer.txt")));
        WriteIniValue(IniPath(), QStringLiteral("Files"), QStringLiteral("Transfer=/elsewhere/t.txt"));
        QCOMPARE(cTransfer().FileName, QStringLiteral("/elsewhere/t.txt"));
        WriteIniValue(IniPath(), QStringLiteral("Files"), QStringLiteral("Transfer="));
        QCOMPARE(cTransfer().FileName, QString());
    }

    void exportCommandChoosesInTheSearchWindow()
    {
        store(TransferRecipe(QStringLiteral("One")));
        store(TransferRecipe(QStringLiteral("Two")));
        WriteFile(m_file, "[Imported]\nFlag=True\n");
        m_boxes->onModal([](QDialog *dialog) {
            auto *search = static_cast<frmSearch *>(dialog);
            search->cmdSearch_Click();
            search->lvwRecipes->selectAll();
            search->cmdClose_Click();
        });
        ExportTransfer();
        QCOMPARE(m_boxes->prompts().first(),
                 QStringLiteral("Some or all of these recipes have already been imported.  It is recommended to reset "
                                "this file before proceeding!"));
        QCOMPARE(GetIniValue(m_file, QStringLiteral("ID"), QStringLiteral("Max")), QStringLiteral("2"));
        QCOMPARE(GetIniValue(m_file, QStringLiteral("2"), QStringLiteral("Title")), QStringLiteral("Two"));
    }

    void importAddsEveryRecipeUnderNewIdsAndAsksTheSecondTime()
    {
        const QStringList ids {store(TransferRecipe(QStringLiteral("One"))),
                               store(TransferRecipe(QStringLiteral("Two"), 3, 2))};
        exportRecipes(ids);
        m_boxes->clear();
        ExecuteSQL(QStringLiteral("DELETE * FROM CABINET")); // the import puts the names back
        importFile();
        QCOMPARE(
            QueryNumber(QStringLiteral("SELECT count(*) FROM CABINET")),
            QueryNumber(QStringLiteral("SELECT count(*) FROM (SELECT DISTINCT cabinet FROM INGREDIENTS) AS names")));
        QVERIFY(QueryNumber(QStringLiteral("SELECT count(*) FROM CABINET")) > 0);
        QCOMPARE(m_boxes->boxes.first().prompt, QStringLiteral("This will import recipes from ") + m_file +
                                                    QStringLiteral(".  \n\nWould you like to continue?"));
        QCOMPARE(m_boxes->boxes.last().prompt,
                 QStringLiteral("All Recipes selected have been imported from ") + m_file);
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Export Completed!"));
        QCOMPARE(describe(3), describe(1));
        QCOMPARE(describe(4), describe(2));
        QCOMPARE(GetIniValue(m_file, QStringLiteral("Imported"), QStringLiteral("Flag")), QStringLiteral("True"));

        importFile(MsgResult::Yes);
        QCOMPARE(m_boxes->boxes[m_boxes->boxes.size() - 2].prompt,
                 m_file +
                     QStringLiteral(" has already been imported at least once.  Would you like to import it again?"));
        QCOMPARE(titlesFrom(1), (QStringList {"One", "Two", "One", "Two", "One", "Two"}));

        importFile(MsgResult::No);
        m_boxes->answer(MsgResult::No);
        transfer().Import();
        QCOMPARE(QueryNumber(QStringLiteral("SELECT COUNT(*) FROM RECIPE")), 6);
    }

    void importWithoutAFile()
    {
        cTransfer t;
        t.FileName.clear();
        t.Import();
        t.FileName = m_home->path(QStringLiteral("absent.txt"));
        t.Import();
        QCOMPARE(m_boxes->prompts(), (QStringList {"Please set the Transfer file name in the pantrio.ini file!",
                                                   t.FileName + " does not exist!"}));
    }

    // What the file could not give is named once, after the recipes it gave; a file that gave
    // nothing is not marked imported.
    void importNamesWhatWasLeftOut()
    {
        const QByteArray fields = "Servings=\nType=F\nCategory=\nTitle=%1\nPrepTime=\nCookTime=\nNotes=\nRating=\n";
        WriteFile(m_file, "[1]\n" + QByteArray(fields).replace("%1", "Mom', s") + "[ID]\nMax=1\n");
        importFile();
        QCOMPARE(m_boxes->boxes.last().prompt,
                 "No recipes were imported from " + m_file +
                     ":\n\nRecipe 1 (Mom', s): the apostrophe in \"Mom', s\" would end the text early");
        QCOMPARE(GetIniValue(m_file, QStringLiteral("Imported"), QStringLiteral("Flag")), QString());
        WriteFile(m_file, "[1]\n" + QByteArray(fields).replace("%1", "Mom', s") + "[2]\n" +
                              QByteArray(fields).replace("%1", "Soup") + "[ID]\nMax=2\n");
        importFile();
        QCOMPARE(
            m_boxes->boxes.last().prompt,
            "These recipes and lines of " + m_file +
                " were not imported:\n\nRecipe 1 (Mom', s): the apostrophe in \"Mom', s\" would end the text early");
        QCOMPARE(GetIniValue(m_file, QStringLiteral("Imported"), QStringLiteral("Flag")), QStringLiteral("True"));
    }

    void cancelledExportWritesNothing()
    {
        const QStringList ids {store(TransferRecipe(QStringLiteral("One"))),
                               store(TransferRecipe(QStringLiteral("Two")))};
        WriteFile(m_file, "[ID]\nMax=0\n");
        QTimer::singleShot(0, [] { QTest::mouseClick(StatusWindow()->cmdCancel, Qt::LeftButton); });
        exportRecipes(ids);
        QCOMPARE(ReadFile(m_file), QStringLiteral("[ID]\nMax=0\n"));
        QCOMPARE(m_boxes->prompts(), QStringList {"The export was cancelled: nothing was written to " + m_file + "."});
        exportRecipes(ids);
        QCOMPARE(GetIniValue(m_file, QStringLiteral("ID"), QStringLiteral("Max")), QStringLiteral("2"));
        QCOMPARE(m_boxes->boxes.last().prompt, QStringLiteral("All Recipes selected have been exported to ") + m_file);
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Export Completed!"));
    }

    void viewShowsEveryLineInAFixedFont()
    {
        WriteFile(m_file, "[1]\r\nTitle=Crème\n\nlast");
        ViewTransferFile();
        QCOMPARE(m_printed.size(), 1);
        const QList<PrintLine> lines = m_printed.first().lines();
        QCOMPARE(m_printed.first().plainText(), QStringLiteral("[1]\nTitle=Crème\n\nlast\n"));
        QCOMPARE(lines.first().runs.first().font, QStringLiteral("Courier New"));
        QCOMPARE(lines.first().runs.first().size, 9.0);

        QFile::remove(m_file);
        ViewTransferFile();
        QCOMPARE(m_boxes->prompts(), QStringList {m_file + " does not exist!"});
    }

    void resetDeletesAfterAsking()
    {
        WriteFile(m_file, "[ID]\nMax=1\n");
        m_boxes->answer(MsgResult::No);
        ResetTransferFile();
        QVERIFY(QFile::exists(m_file));
        m_boxes->answer(MsgResult::Yes);
        ResetTransferFile();
        QVERIFY(!QFile::exists(m_file));
        m_boxes->answer(MsgResult::Yes);
        ResetTransferFile();
        QCOMPARE(m_boxes->boxes.last().prompt,
                 QStringLiteral("There was an error deleting ") + m_file +
                     QStringLiteral("\n\nThis is most often because the file does not exist."));
        QCOMPARE(m_boxes->boxes.last().style.icon, MsgIcon::Critical);
        QCOMPARE(m_boxes->boxes.first().prompt, QStringLiteral("Delete the file: ") + m_file + u'?');
        gSettings.Transfer.clear();
        ResetTransferFile();
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Warning"));
    }
};

QTEST_MAIN(TestTransfer)
#include "test_transfer.moc"
