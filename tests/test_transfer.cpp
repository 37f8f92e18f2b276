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
#include "transfer/ctransfer.h"
#include "transfer/transfercommands.h"

#include <QRandomGenerator>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

namespace {

RecipeData recipe(const QString &title, int ingredients = 2, int directions = 1)
{
    QStringList lines, steps;
    for (int i = 1; i <= ingredients; ++i)
        lines << QStringLiteral("%1|cups|onions, sliced %1|onion").arg(i);
    for (int i = 1; i <= directions; ++i)
        steps << QStringLiteral("Step %1.").arg(i);
    RecipeData r = TestRecipe(title, lines, steps);
    r.servings = QStringLiteral("4");
    r.category = QStringLiteral("Soup");
    r.prepTime = QStringLiteral("00:15");
    r.cookTime = QStringLiteral("00:40");
    r.rating = QStringLiteral("3");
    return r;
}

// Stores the recipe under the next identifier and answers it in the search window's form.
QString store(const RecipeData &r)
{
    return SevenDigits(StoreTestRecipe(r));
}

QString describe(qint32 id)
{
    return Describe(LoadRecipe(id));
}

QStringList titlesFrom(qint32 firstId)
{
    QStringList titles;
    for (Recordset rs = ExecuteSQL(QStringLiteral("SELECT title FROM RECIPE WHERE id >= %1 ORDER BY id").arg(firstId));
         rs && !rs.eof(); rs.MoveNext())
        titles << rs.text(0);
    return titles;
}

} // namespace

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
    QStringList leftOut() const
    {
        for (const RecordedBox &box : m_boxes->boxes)
            if (box.prompt.contains(QStringLiteral("were not imported")))
                return box.prompt.section(QStringLiteral("\n\n"), 1).split(u'\n');
        return {};
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

    void subItemSplitsAtTheSeparator_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("n");
        QTest::addColumn<QString>("field");
        QTest::newRow("first") << "2 | cups | flour | flour" << 1 << "2";
        QTest::newRow("last") << "2 | cups | flour | flour" << 4 << "flour";
        QTest::newRow("blanks trimmed") << "  2  |  cups | x" << 2 << "cups";
        QTest::newRow("empty field") << " |  | flour | " << 2 << "";
        QTest::newRow("past the end") << "1 | Mix." << 3 << "";
        QTest::newRow("bar without blanks stays") << "1 | a|b" << 2 << "a|b";
        QTest::newRow("separator in the last field cuts it") << "1 | Mix a | b" << 2 << "Mix a";
    }
    void subItemSplitsAtTheSeparator()
    {
        QFETCH(QString, value);
        QFETCH(int, n);
        QFETCH(QString, field);
        QCOMPARE(cTransfer::SubItem(value, n), field);
    }

    void exportAppendsSectionsAfterMax()
    {
        const QString soup = store(recipe(QStringLiteral("Onion soup")));
        const QString bare = store(recipe(QStringLiteral("Bare"), 0, 0));
        const QString third = store(recipe(QStringLiteral("Third"), 1, 0));
        exportRecipes({soup, bare});
        const QString fields = QStringLiteral("Servings=4\nType=F\nCategory=Soup\nTitle=%1\nPrepTime=00:15\n"
                                              "CookTime=00:40\nNotes=\nRating=3\n");
        QString expected = u"[1]\n"_qs + fields.arg(QStringLiteral("Onion soup")) +
                           u"Ing1=1 | cups | onions, sliced 1 | onion\nIng2=2 | cups | onions, sliced 2 | onion\n"
                           u"Dir1=1 | Step 1.\n\n[2]\n"_qs +
                           fields.arg(QStringLiteral("Bare")) + u"\n[ID]\nMax=2\n"_qs;
        QCOMPARE(ReadFile(m_file), expected);
        QCOMPARE(m_boxes->boxes.last().prompt, QStringLiteral("All Recipes selected have been exported to ") + m_file);
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Export Completed!"));

        WriteIniValue(m_file, QStringLiteral("Imported"), QStringLiteral("Flag=True"));
        exportRecipes({third});
        expected.replace(u"Max=2"_qs, u"Max=3"_qs);
        expected += u"\n[Imported]\nFlag=True\n\n[3]\n"_qs + fields.arg(QStringLiteral("Third")) +
                    u"Ing1=1 | cups | onions, sliced 1 | onion\n"_qs;
        QCOMPARE(ReadFile(m_file), expected);

        exportRecipes({}); // nothing chosen: Max is written again as it was
        QCOMPARE(ReadFile(m_file), expected);
        QCOMPARE(m_boxes->boxes.size(), 3);
    }

    void exportCommandChoosesInTheSearchWindow()
    {
        store(recipe(QStringLiteral("One")));
        store(recipe(QStringLiteral("Two")));
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
        const QStringList ids {store(recipe(QStringLiteral("One"))), store(recipe(QStringLiteral("Two"), 3, 2))};
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

    // Two hundred recipes of every kind of text go out and come back equal, except where the
    // format cannot carry a value: a line break, " | " inside a field other than the last, or
    // blanks at a field's ends. (A line's text holding "Ing2=" or "Dir2=" where the next line
    // is looked for is not carried either.)
    // Every recipe comes back exactly, whatever its texts hold: those the file's lines cannot
    // carry as they stand travel escaped in their section.
    void roundTripOfVariedRecipes()
    {
        const QStringList texts {"Mom's pie",
                                 "Crème brûlée",
                                 "寿司 rolls",
                                 "",
                                 "---",
                                 "100% rye",
                                 "O'Brien's 'best'",
                                 "a \"quoted\" word",
                                 "x = y",
                                 "[bracketed]",
                                 QString(300, u'w'),
                                 "Title=looks like a key",
                                 "SELECT * FROM RECIPE",
                                 "two\nlines",
                                 "line\n[2]\nServings=9",
                                 "a | b",
                                 " padded ",
                                 "back\\slash \\n",
                                 "cr\r\nlf",
                                 "|",
                                 "Ing1=x | y"};
        QRandomGenerator random(42);
        auto pick = [&random](const QStringList &from) { return from[random.bounded(int(from.size()))]; };
        QStringList ids;
        for (int i = 0; i < 200; ++i) {
            RecipeData r = recipe(pick(texts), random.bounded(6), random.bounded(5));
            r.category = pick(texts);
            r.notes = pick(texts);
            r.rating = pick(texts);
            for (IngredientLine &line : r.ingredients) {
                line.amount = pick({"1/2", "---", "", "2 1/4", " 1 "});
                line.measure = pick({"cup", "---", "Tbsp", ""});
                line.ingredient = pick(texts);
                line.cabinet = pick(texts);
            }
            for (DirectionLine &line : r.directions)
                line.direction = pick(texts);
            const QString id = store(r);
            QVERIFY2(!id.isEmpty(), qPrintable(r.title));
            ids << id;
        }
        exportRecipes(ids);
        QVERIFY(ReadFile(m_file).contains(QStringLiteral("\nEscaped=True\n")));
        importFile();
        QCOMPARE(leftOut(), QStringList());
        for (int i = 0; i < ids.size(); ++i) {
            const qint32 original = ids[i].toInt();
            QCOMPARE(describe(original + 200), describe(original));
        }
    }

    void cancelledExportWritesNothing()
    {
        const QStringList ids {store(recipe(QStringLiteral("One"))), store(recipe(QStringLiteral("Two")))};
        WriteFile(m_file, "[ID]\nMax=0\n");
        QTimer::singleShot(0, [] { QTest::mouseClick(StatusWindow()->cmdCancel, Qt::LeftButton); });
        exportRecipes(ids);
        QCOMPARE(ReadFile(m_file), QStringLiteral("[ID]\nMax=0\n"));
        QCOMPARE(m_boxes->prompts(), QStringList {"The export was cancelled: nothing was written to " + m_file + "."});
    }

    void badFilesImportWhatTheyCan_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QStringList>("titles");
        QTest::addColumn<QStringList>("leftOut");
        const QByteArray head = "Servings=2\nType=F\nCategory=C\nTitle=";
        const QByteArray tail = "\nPrepTime=\nCookTime=\nNotes=\nRating=\n";
        auto section = [&](int n, const char *title, const QByteArray &lines = {}) {
            return "[" + QByteArray::number(n) + "]\n" + head + title + tail + lines + "\n";
        };
        const QByteArray two = section(1, "A") + section(2, "B");
        QTest::newRow("well formed") << two + "[ID]\nMax=2\n" << QStringList {"A", "B"} << QStringList {};
        QTest::newRow("cut short") << two + "[3]\nServings=2\nType=F\nCat" << QStringList {"A", "B"}
                                   << QStringList {"Recipe 3: it has 3 of the 8 lines a recipe begins with"};
        QTest::newRow("windows line ends")
            << QByteArray(two + "[ID]\nMax=2\n").replace("\n", "\r\n") << QStringList {"A", "B"} << QStringList {};
        QTest::newRow("sections out of order")
            << section(2, "B") + "[ID]\nMax=2\n" + section(1, "A") << QStringList {"A", "B"} << QStringList {};
        QTest::newRow("a gap ends it") << section(1, "A") + section(3, "C") << QStringList {"A"} << QStringList {};
        QTest::newRow("Max not a number") << two + "[ID]\nMax=many\n" << QStringList {"A", "B"} << QStringList {};
        // More recipes counted than the file holds: it was cut short, its last recipe maybe within.
        QTest::newRow("Max too large") << two + "[ID]\nMax=99999999\n"
                                       << QStringList {"A"}
                                       << QStringList {"Recipe 2 (B): the file ends within it, so it is left out whole",
                                                       "Recipes 3 to 99999999: the file ends before them"};
        QTest::newRow("cut within a line")
            << two.chopped(2) << QStringList {"A"}
            << QStringList {"Recipe 2 (B): the file ends within it, so it is left out whole"};
        QTest::newRow("binary") << QByteArray("\x00\x01\xff[\x00]=\n\x80", 10) << QStringList {} << QStringList {};
        QTest::newRow("empty") << QByteArray() << QStringList {} << QStringList {};
        QTest::newRow("step not a number")
            << section(1, "A", "Ing1=1 | cup | rice | rice\nDir1=x | Boil.\nDir2=2 | Serve.") << QStringList {"A"}
            << QStringList {"Recipe 1 (A), Dir1: the step \"x\" is not a number"};
        QTest::newRow("apostrophe that ends a text")
            << section(1, "Mom', s") + section(2, "B", "Ing1=1 | cup | rice', brown | rice\nIng2=1 | | salt | salt")
            << QStringList {"B"}
            << QStringList {"Recipe 1 (Mom', s): the apostrophe in \"Mom', s\" would end the text early",
                            "Recipe 2 (B), Ing1: the apostrophe in \"rice', brown\" would end the text early"};
        QTest::newRow("missing ingredient number ends the list")
            << section(1, "A", "Ing1=1 | cup | rice | rice\nIng3=1 | | salt | salt\nDir1=1 | Boil.")
            << QStringList {"A"} << QStringList {};
        QTest::newRow("a line of 100,000 characters")
            << section(1, "A", "Dir1=1 | " + QByteArray(100000, 'z')) << QStringList {"A"} << QStringList {};
    }
    void badFilesImportWhatTheyCan()
    {
        QFETCH(QByteArray, file);
        QFETCH(QStringList, titles);
        QFETCH(QStringList, leftOut);
        WriteFile(m_file, file);
        importFile();
        QCOMPARE(titlesFrom(1), titles);
        QCOMPARE(this->leftOut(), leftOut);
        QCOMPARE(GetIniValue(m_file, QStringLiteral("Imported"), QStringLiteral("Flag")), QStringLiteral("True"));
        if (QTest::currentDataTag() == QLatin1String("step not a number"))
            QCOMPARE(describe(1).section(QStringLiteral(" / "), -1), QStringLiteral("02:Serve."));
        if (QTest::currentDataTag() == QLatin1String("missing ingredient number ends the list"))
            QCOMPARE(LoadRecipe(1).ingredients.size() + LoadRecipe(1).directions.size(), 1);
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
