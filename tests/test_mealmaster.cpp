// MealMaster collections: files read in (layouts, encodings, damage), written out and read back.

#include "cabinet/modcabinet.h"
#include "core/platform/modini.h"
#include "core/platform/programdir.h"
#include "core/db/database.h"
#include "core/db/dbcompact.h"
#include "core/ui/frmstatus.h"
#include "recipes/reciperepository.h"
#include "search/frmsearch.h"
#include "support/mealmastersamples.h"
#include "support/testsupport.h"
#include "transfer/mealmaster.h"
#include "transfer/mealmastercommands.h"

#include <QPushButton>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

class TestMealMaster : public SessionTest
{
    Q_OBJECT

    QString m_file;

    // Imports the files through the menu command, answering its file dialog.
    void importByCommand(const QStringList &files)
    {
        m_boxes->answerFile(files.join(u'\n'));
        ImportMealMaster();
    }

private Q_SLOTS:
    void init()
    {
        SessionTest::init();
        m_file = m_home->path(QStringLiteral("collection.mmf"));
    }

    void importStoresWholeRecipesAndSetsTheRejectedAside()
    {
        // Its second line cannot be stored: the recipe row and first line, written already, go too.
        const QByteArray bad = "MMMMM----- Recipe via Meal-Master\n      Title: Mom's pie\n\n      1 c  Flour\n"
                               "      1 ts Salt (',)\n\n  Bake.\nMMMMM\n";
        const QByteArray cut = "MMMMM----- Recipe via Meal-Master\n      Title: Cut\n\n  Bake";
        WriteFile(m_file, QByteArray(kPie) + "\nbetween\n" + bad + kPie + cut);
        const QString second = m_home->path(QStringLiteral("more.txt"));
        WriteFile(second, kPie);
        importByCommand({m_file, second});
        QCOMPARE(m_boxes->boxes.size(), 1);
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Import MealMaster"));
        const QString rejectedFile = m_home->path(QStringLiteral("collection-rejected.mmf"));
        QCOMPARE(m_boxes->boxes[0].prompt.section(u'\n', 0, 5),
                 QStringLiteral("3 imported, 2 rejected\n\nThe rejected recipes were written, as they stood, to:\n") +
                     rejectedFile + QStringLiteral("\nCorrect them there and import that file.\n"));
        QVERIFY(m_boxes->boxes[0].prompt.contains(QStringLiteral(
            "collection.mmf, recipe 2 (Mom's pie): The ingredient of ingredient line 02 cannot be stored")));
        QVERIFY(m_boxes->boxes[0].prompt.contains(QStringLiteral("collection.mmf, recipe 4 (Cut): the file ends")));
        QCOMPARE(ReadBytes(rejectedFile), bad + cut + '\n');
        QCOMPARE(QueryNumber("SELECT count(*) FROM RECIPE"), 3);
        QCOMPARE(QueryNumber("SELECT count(*) FROM INGREDIENTS"), 21);
        QCOMPARE(LoadRecipe(3).title, QStringLiteral("Apple Pie"));
        QCOMPARE(QueryNumber("SELECT count(*) FROM CABINET WHERE available = FALSE AND type = 'F'"), 7); // the pie's
        ExecuteSQL("UPDATE CABINET SET available = TRUE");
        QCOMPARE(BuildAvailableRecipeList(QStringLiteral("Food")), (QList<qint32> {1, 2, 3}));
        QCOMPARE(WalkAvailableRecipes(QStringLiteral("Food")), (QList<qint32> {1, 2, 3}));
        QVERIFY(!QFile::exists(m_home->path(QStringLiteral("more-rejected.txt"))));
    }

    void aFileWithoutRecipesIsSaidSo()
    {
        WriteFile(m_file, "Dear Ann,\nhere is the list.\n");
        importByCommand({m_file});
        QCOMPARE(m_boxes->prompts(), QStringList {"No MealMaster recipes were found in " + m_file + "."});
    }

    void cancelKeepsWhatWasImported()
    {
        QByteArray many;
        for (int i = 0; i < 3000; ++i)
            many += QByteArray(kPie).replace("Apple Pie", "Pie " + QByteArray::number(i));
        WriteFile(m_file, many);
        QTimer::singleShot(0, [] { QTest::mouseClick(StatusWindow()->cmdCancel, Qt::LeftButton); });
        const MealMasterImportResult result = ImportMealMasterFiles({m_file});
        QVERIFY(result.cancelled);
        QVERIFY2(result.imported > 0 && result.imported < 3000, qPrintable(QString::number(result.imported)));
        QCOMPARE(QueryNumber("SELECT count(*) FROM RECIPE"), result.imported);
        QCOMPARE(QueryNumber("SELECT count(*) FROM INGREDIENTS"), 7 * result.imported);
        QVERIFY(MealMasterImportSummary(result).contains(QStringLiteral("cancelled")));
    }

    // A large import writes each table's rows together: the file needs no rewrite in order.
    void importLeavesTheTablesInOrder()
    {
        QByteArray many;
        for (int i = 0; i < 1000; ++i)
            many += QByteArray(kPie).replace("Apple Pie", "Pie " + QByteArray::number(i));
        WriteFile(m_file, many);
        QCOMPARE(ImportMealMasterFiles({m_file}).imported, 1000);
        QVERIFY2(DatabaseScatter() < 0.3, qPrintable(QString::number(DatabaseScatter())));
    }

    // Recipes of every kind go out and come back equal, within the format's columns. What the
    // format cannot carry (the recipe type, cabinet names, blanks at a text's ends) is left out
    // of the recipes made here.
    void exportReadsBackEqual()
    {
        QRandomGenerator random(5);
        // Amounts outside the amount column ("about 3") go in front of the text and do not come
        // back as amounts.
        const QStringList amounts {"1", "1/2", "2 1/4", "---", "10", "1-2", "0.5"};
        const QStringList measures {"cup", "tsp", "Tbsp", "---", "g", "clove", "pinch", "lb", "zz"};
        const QStringList words {"Onions,",
                                 "chopped",
                                 "Mom's",
                                 "crème",
                                 "牛肉",
                                 "(canned)",
                                 "50%",
                                 "and",
                                 "a",
                                 "two  blanks",
                                 "extraordinarilylongwordthatwillnotfitanywhereatallinthecolumnsofthisformat"};
        const auto text = [&](int most) {
            QStringList picked;
            for (int n = 1 + random.bounded(most); n > 0; --n)
                picked << words[random.bounded(int(words.size()))];
            return picked.join(u' ');
        };
        QStringList ids;
        QList<RecipeData> recipes;
        for (int i = 0; i < 60; ++i) {
            QStringList lines, steps;
            for (int n = random.bounded(12); n > 0; --n)
                lines << amounts[random.bounded(int(amounts.size()))] + u'|' +
                             measures[random.bounded(int(measures.size()))] + u'|' + text(9);
            for (int n = random.bounded(5); n > 0; --n)
                steps << (n % 2 ? text(40) : text(6) + u'\n' + text(6)); // line breaks come back too
            RecipeData r = imported(QStringLiteral("Recipe %1 ").arg(i) + text(4), lines, steps);
            r.category = QStringList {"Soups", "Mom's", ""}[i % 3];
            r.servings = i % 3 ? QStringLiteral("4") : QString();
            r.prepTime = i % 4 ? QStringLiteral("00:00") : QStringLiteral("01:15");
            r.rating = QString(i % 5, u'*');
            r.notes = i % 2 ? text(30) + QStringLiteral("\n\n") + text(5) + u'\n' + text(3) : QString();
            if (!lines.isEmpty() && i % 3 == 0) // an ingredient heading it came in with
                r.notes += (r.notes.isEmpty() ? "" : "\n\n") + QStringLiteral("SAUCE (before ingredient line 1)");
            ids << SevenDigits(StoreTestRecipe(r));
            recipes << r;
        }
        QCOMPARE(ExportMealMasterFile(ids, m_file), 60);
        QCOMPARE(ReadFile(m_file).count(QStringLiteral("\nMMMMM-----SAUCE---")), 20);
        static const QRegularExpression breakable(QStringLiteral("\\S \\S"));
        for (const QString &line : ReadFile(m_file).split(u'\n')) {
            const bool unbreakable = !line.trimmed().contains(breakable) || line.contains(words.last());
            QVERIFY2(line.size() <= 80 || unbreakable || line.contains(QStringLiteral("Title: ")), qPrintable(line));
        }
        const MealMasterImportResult result = ImportMealMasterFiles({m_file});
        QCOMPARE(result.imported, 60);
        for (int i = 0; i < 60; ++i)
            QCOMPARE(Describe(LoadRecipe(61 + i)), Describe(recipes[i]));
    }

    // The import binds its rows where the statements would have carried the texts as they stand,
    // and takes the statements' way for the rest: the same recipes come in, under the same
    // identifiers, as when every recipe is stored by the statements.
    void bulkImportStoresWhatTheStatementsWould()
    {
        QRandomGenerator random(31);
        const QStringList words {"Flour", "crème", "牛肉",        "🍋",  "50%", "\"quoted\"",
                                 "x|y",   "[1]",   "back\\slash", "--", "and", "tamis"};
        const auto text = [&](int most) {
            QStringList picked;
            for (int n = 1 + random.bounded(most); n > 0; --n)
                picked << words[random.bounded(int(words.size()))];
            return picked.join(u' ').toUtf8();
        };
        QByteArray file;
        for (int i = 0; i < 150; ++i) {
            file += QByteArray("MMMMM----- Recipe via Meal-Master (tm) v8.05\n\n      Title: ") +
                    (i % 3 ? "" : "Mom's ") + text(4) + "\n Categories: " + text(2) +
                    "\n      Yield: " + QByteArray::number(i % 7) + " servings\n\n";
            for (int n = random.bounded(9); n > 0; --n)
                file += "      1 c  " + text(5) + '\n';
            if (i % 5 == 0) // apostrophes the statements take for delimiters
                file += "      1 c  a,'b (',)\n";
            for (int n = random.bounded(4); n > 0; --n)
                file += "\n  " + text(12) + '\n';
            file += "\nMMMMM\n\n";
        }
        WriteFile(m_file, file);

        QStringList measures;
        for (const QString &line : GetIniSection(IniPath(), QStringLiteral("Measure_Food")))
            measures << IniLineValue(line);
        const MeasureCodes codes(measures);
        QFile source(m_file);
        QVERIFY(source.open(QIODevice::ReadOnly));
        MealMasterReader reader(source, codes);
        MealMasterRecipe read;
        QStringList byStatements;
        while (reader.next(read)) {
            qint32 id = 0;
            if (read.problem.isEmpty() && StoreRecipe(read.recipe, 0, false, nullptr, &id, false))
                byStatements << Describe(LoadRecipe(id));
        }
        QCOMPARE(byStatements.size(), 120); // those apostrophes are refused
        ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE"));

        const MealMasterImportResult result = ImportMealMasterFiles({m_file});
        QCOMPARE(result.imported, byStatements.size());
        for (qsizetype i = 0; i < byStatements.size(); ++i)
            QCOMPARE(Describe(LoadRecipe(qint32(i + 1))), byStatements[i]);
    }

    // What the database keeps otherwise than it was read is found when the import reads its
    // recipes back, and a line the database refuses takes its whole recipe with it: either
    // recipe goes again and is set aside with the rejected, the others stay as they were read.
    void importRemovesARecipeStoredOtherwise()
    {
        if (gConn().driverName() != u"QSQLITE")
            QSKIP("the file database's rows are bound; a server's are read back one recipe at a time");
        QVERIFY(!ExecuteSQL(QStringLiteral("CREATE TRIGGER tamper AFTER INSERT ON DIRECTIONS WHEN new.direction "
                                           "LIKE '%tamper%' BEGIN UPDATE DIRECTIONS SET direction = 'changed' WHERE "
                                           "recipe_id = new.recipe_id AND step = new.step; END"))
                     .failed());
        QVERIFY(!ExecuteSQL(QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON INGREDIENTS WHEN new.ingredient = "
                                           "'Refused' BEGIN SELECT RAISE(ABORT, 'refused'); END"))
                     .failed());
        const QByteArray tampered = "MMMMM----- Recipe via Meal-Master\n      Title: Odd\n\n      1 c  Flour\n\n"
                                    "  Please tamper.\nMMMMM\n";
        const QByteArray refused = "MMMMM----- Recipe via Meal-Master\n      Title: Odder\n\n      1 c  Flour\n"
                                   "      1 c  Refused\n\n  Stir.\nMMMMM\n";
        WriteFile(m_file, QByteArray(kPie) + tampered + refused + kPie);
        const MealMasterImportResult result = ImportMealMasterFiles({m_file});
        QCOMPARE(result.imported, 2);
        QCOMPARE(result.rejected, 2);
        QVERIFY(result.reasons.contains(
            QStringLiteral("collection.mmf, recipe 2 (Odd): the database did not keep it as it was read")));
        QVERIFY(result.reasons.contains(QStringLiteral("collection.mmf, recipe 3 (Odder): the database refused it")));
        QCOMPARE(ReadBytes(m_home->path(QStringLiteral("collection-rejected.mmf"))), tampered + refused);
        for (const char *table : {"RECIPE WHERE id", "INGREDIENTS WHERE recipe_id", "DIRECTIONS WHERE recipe_id"})
            QCOMPARE(QueryNumber(QStringLiteral("SELECT count(*) FROM %1 IN (2, 3)").arg(QLatin1String(table))), 0);
        QCOMPARE(Describe(LoadRecipe(4)), Describe(LoadRecipe(1)));
        // The import's lines are the recipe's again: deleting it takes them along.
        ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE WHERE ID = 4"));
        QCOMPARE(QueryNumber("SELECT count(*) FROM INGREDIENTS WHERE recipe_id = 4"), 0);
    }

    void exportCommandChoosesInTheSearchWindow()
    {
        StoreTestRecipe(imported(QStringLiteral("Soup"), {"1|cup|Water"}, {"Boil."}));
        m_boxes->onModal([](QDialog *dialog) {
            auto *search = static_cast<frmSearch *>(dialog);
            search->cmdSearch_Click();
            search->lvwRecipes->selectAll();
            search->cmdClose_Click();
        });
        m_boxes->answerFile(m_file);
        ExportMealMaster();
        QCOMPARE(m_boxes->prompts(), QStringList {"1 recipe exported to " + m_file});
        QCOMPARE(ReadFile(m_file).section(u'\n', 0, 7),
                 QStringLiteral("MMMMM----- Recipe via Meal-Master (tm) v8.05\n\n      Title: Soup\n Categories: \n"
                                "      Yield: \n\n      1 c  Water\n"));
    }
};

QTEST_MAIN(TestMealMaster)
#include "test_mealmaster.moc"
