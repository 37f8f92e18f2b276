// The transfer file without windows: sections written from the database, read back into it,
// and what a damaged or foreign file still gives.

#include "core/db/database.h"
#include "core/platform/modini.h"
#include "recipes/reciperepository.h"
#include "support/testhome.h"
#include "support/transferrecipes.h"
#include "transfer/transferfile.h"

#include <QRandomGenerator>
#include <QTest>

class TestTransferFile : public CoreSessionTest
{
    Q_OBJECT

    QString m_file;

    void exportRecipes(const QStringList &ids)
    {
        QVERIFY(ExportTransferSections(m_file, ids, [](qsizetype) { return true; }));
    }
    TransferImport importFile() const
    {
        IniFile file(m_file);
        return ImportTransferSections(file, [](int) {});
    }

private Q_SLOTS:
    void init()
    {
        CoreSessionTest::init();
        m_file = m_home->path(QStringLiteral("transfer.txt"));
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
        QCOMPARE(TransferSubItem(value, n), field);
    }

    void exportAppendsSectionsAfterMax()
    {
        const QString soup = store(TransferRecipe(QStringLiteral("Onion soup")));
        const QString bare = store(TransferRecipe(QStringLiteral("Bare"), 0, 0));
        const QString third = store(TransferRecipe(QStringLiteral("Third"), 1, 0));
        exportRecipes({soup, bare});
        const QString fields = QStringLiteral("Servings=4\nType=F\nCategory=Soup\nTitle=%1\nPrepTime=00:15\n"
                                              "CookTime=00:40\nNotes=\nRating=3\n");
        QString expected = u"[1]\n"_qs + fields.arg(QStringLiteral("Onion soup")) +
                           u"Ing1=1 | cups | onions, sliced 1 | onion\nIng2=2 | cups | onions, sliced 2 | onion\n"
                           u"Dir1=1 | Step 1.\n\n[2]\n"_qs +
                           fields.arg(QStringLiteral("Bare")) + u"\n[ID]\nMax=2\n"_qs;
        QCOMPARE(ReadFile(m_file), expected);

        WriteIniValue(m_file, QStringLiteral("Imported"), QStringLiteral("Flag=True"));
        exportRecipes({third});
        expected.replace(u"Max=2"_qs, u"Max=3"_qs);
        expected += u"\n[Imported]\nFlag=True\n\n[3]\n"_qs + fields.arg(QStringLiteral("Third")) +
                    u"Ing1=1 | cups | onions, sliced 1 | onion\n"_qs;
        QCOMPARE(ReadFile(m_file), expected);

        exportRecipes({}); // nothing chosen: Max is written again as it was
        QCOMPARE(ReadFile(m_file), expected);
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
            RecipeData r = TransferRecipe(pick(texts), random.bounded(6), random.bounded(5));
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
        const TransferImport result = importFile();
        QCOMPARE(result.leftOut, QStringList());
        for (int i = 0; i < ids.size(); ++i) {
            const qint32 original = ids[i].toInt();
            QCOMPARE(describe(original + 200), describe(original));
        }
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
        QCOMPARE(importFile().leftOut, leftOut);
        QCOMPARE(titlesFrom(1), titles);
        if (QTest::currentDataTag() == QLatin1String("step not a number"))
            QCOMPARE(describe(1).section(QStringLiteral(" / "), -1), QStringLiteral("02:Serve."));
        if (QTest::currentDataTag() == QLatin1String("missing ingredient number ends the list"))
            QCOMPARE(LoadRecipe(1).ingredients.size() + LoadRecipe(1).directions.size(), 1);
    }
};

QTEST_MAIN(TestTransferFile)
#include "test_transferfile.moc"
