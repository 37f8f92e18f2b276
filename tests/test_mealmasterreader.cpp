// MealMaster files read in: layouts, encodings, damage.

#include "support/mealmastersamples.h"
#include "support/testhome.h"
#include "transfer/mealmaster.h"

#include <QBuffer>
#include <QTest>

namespace {

const QStringList kHousehold {"---", "tsp", "Tbsp",  "cup",   "oz",  "lb",      "g",     "kg",
                              "ml",  "l",   "pinch", "clove", "can", "package", "slice", "piece"};

// The recipes of a file's text, each as one description with the reason it was refused.
QStringList readAll(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const MeasureCodes codes(kHousehold);
    MealMasterReader reader(buffer, codes);
    QStringList recipes;
    for (MealMasterRecipe r; reader.next(r);)
        recipes << (r.problem.isEmpty() ? Describe(r.recipe) : QStringLiteral("rejected: ") + r.problem);
    return recipes;
}

} // namespace

class TestMealMasterReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsColumnsContinuationsHeadingsAndParagraphs()
    {
        RecipeData pie =
            imported(QStringLiteral("Apple Pie"),
                     {"2|cup|Flour, sifted", "1 1/2|tsp|Salt", "1/2|lb|Butter; cold and cut into small pieces",
                      "6|---|Apples", "1|clove|Garlic", "---|---|Cinnamon", "1-2|zz|Sugar"},
                     {"Rub the butter into the flour and salt.", "Bake at 190 C."});
        pie.category = QStringLiteral("Desserts");
        pie.servings = QStringLiteral("8 servings");
        pie.notes = QStringLiteral("Categories: Desserts, Pies\n\nTOPPING (before ingredient line 7)");
        QCOMPARE(readAll(kPie), QStringList {Describe(pie)});
        QCOMPARE(pie.ingredients[2].cabinet, QStringLiteral("Butter"));
        // Cabinet names a household would choose.
        const QList<std::pair<const char *, const char *>> names {{"All-purpose flour", "All-purpose flour"},
                                                                  {"Onion; chopped", "Onion"},
                                                                  {"Salt or pepper", "Salt"},
                                                                  {"Half-and-half (cream)", "Half-and-half"},
                                                                  {"(optional) Salt", "(optional) Salt"},
                                                                  {"Egg, beaten", "Egg"}};
        for (const auto &[ingredient, cabinet] : names)
            QCOMPARE(MealMasterCabinetName(QLatin1String(ingredient)), QLatin1String(cabinet));
        // Written back with the format's standard codes, which every reader knows.
        const MeasureCodes codes(kHousehold);
        QCOMPARE(codes.code(QStringLiteral("tsp")), QStringLiteral("ts"));
        QCOMPARE(codes.code(QStringLiteral("Tbsp")), QStringLiteral("tb"));
        QCOMPARE(codes.name(QStringLiteral("t")), QStringLiteral("tsp"));
        QCOMPARE(codes.name(QStringLiteral("T")), QStringLiteral("Tbsp"));
        // Headings keep every letter, M at either end included.
        for (const char *heading : {"MARINADE", "CREAM", "M"}) {
            pie.notes = QStringLiteral("Categories: Desserts, Pies\n\n%1 (before ingredient line 7)")
                            .arg(QLatin1String(heading));
            QCOMPARE(readAll(QByteArray(kPie).replace("TOPPING", heading)), QStringList {Describe(pie)});
        }
    }

    // The directions' own marks: the paragraph mark (byte 0x14) and a line that begins with ":"
    // break the line; a section heading among them is a heading line of its own.
    void directionsKeepTheirLineBreaksAndHeadings()
    {
        const QByteArray text = "MMMMM----- Recipe via Meal-Master (tm) v8.05\n"
                                "      Title: Layers\n"
                                "\n"
                                "      1 c  Flour\n"
                                "\n"
                                "  Mix the flour.\x14Rest it.\n"
                                "  Then roll it\n"
                                "  :thin.\n"
                                "MMMMM--------------------------GLAZE-------------------------------\n"
                                "  Brush with milk.\n"
                                "MMMMM\n";
        RecipeData layers = imported(QStringLiteral("Layers"), {"1|cup|Flour"},
                                     {"Mix the flour.\nRest it. Then roll it\nthin.", "GLAZE", "Brush with milk."});
        QCOMPARE(readAll(text), QStringList {Describe(layers)});
    }

    // Layouts as the format's writers and other programs place them. Each file holds one
    // recipe titled "T"; the expected recipe's lines and steps follow the imported() notation.
    void layoutsAsTheirWritersPlaceThem_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("notes");
        // The right column starts at column 42 (the writer's place), or at 41.
        const auto two = [](const char *left, const char *right, int column = 42) {
            return QByteArray(left).leftJustified(column - 1) + right + '\n';
        };
        QTest::newRow("two columns, continued in both")
            << two("      1 c  Lettuce", "      2 tb Oil") + two("      2    Tomatoes", "    1/2 ts Salt") +
                   two("           -ripe", "           -fine") + "\n  Toss.\n"
            << QStringList {"1|cup|Lettuce", "2|---|Tomatoes ripe", "2|Tbsp|Oil", "1/2|tsp|Salt fine"}
            << QStringList {"Toss."} << QString();
        QTest::newRow("two columns at 41")
            << two("      1 c  Lettuce", "      2 tb Oil", 41) + two("      2    Tomatoes", "           Pepper", 41)
            << QStringList {"1|cup|Lettuce", "2|---|Tomatoes", "2|Tbsp|Oil", "---|---|Pepper"} << QStringList()
            << QString();
        QTest::newRow("a section after a blank line, no amount first")
            << QByteArray("      1 c  Flour\n\n           Salt to taste\n      2    Eggs\n\n  Mix.\n")
            << QStringList {"1|cup|Flour", "---|---|Salt to taste", "2|---|Eggs"} << QStringList {"Mix."} << QString();
        QTest::newRow("a heading, then a line without amount")
            << QByteArray("      1 c  Flour\n\nMMMMM-----FILLING------\n           Jam\n\n  Fill.\n")
            << QStringList {"1|cup|Flour", "---|---|Jam"} << QStringList {"Fill."}
            << QStringLiteral("FILLING (before ingredient line 2)");
        QTest::newRow("a heading that starts the directions")
            << QByteArray("      1 c  Flour\n\nMMMMM-----METHOD------\n  Stir it all together well.\n")
            << QStringList {"1|cup|Flour"} << QStringList {"METHOD", "Stir it all together well."} << QString();
        QTest::newRow("further header lines")
            << QByteArray("Contributor: Ann\n       Tags: quick, cheap\n      Yield: 2\n\n      1 c  Rice\n  Boil.\n")
            << QStringList {"1|cup|Rice"} << QStringList {"Boil."}
            << QStringLiteral("Contributor: Ann\n\nTags: quick, cheap");
        QTest::newRow("Notes in the middle stay, at the end close")
            << QByteArray(
                   "      1 c  Rice\n\n  Boil.\n\n  Notes: use a lid.\n\n  Serve.\n\n  Notes: Ann's.\n  :Twice.\n")
            << QStringList {"1|cup|Rice"} << QStringList {"Boil.", "Notes: use a lid.", "Serve."}
            << QStringLiteral("Ann's.\nTwice.");
        QTest::newRow("a double-dash continuation")
            << QByteArray("    370 g  Cherries; dripped off (\n           --1 glass)\n")
            << QStringList {"370|g|Cherries; dripped off ( 1 glass)"} << QStringList() << QString();
    }
    void layoutsAsTheirWritersPlaceThem()
    {
        QFETCH(QByteArray, body);
        QFETCH(QStringList, lines);
        QFETCH(QStringList, steps);
        QFETCH(QString, notes);
        RecipeData expected = imported(QStringLiteral("T"), lines, steps);
        expected.notes = notes;
        if (body.contains("Yield"))
            expected.servings = QStringLiteral("2");
        const QByteArray fields = QByteArray("      Title: T\n") + (body.startsWith(' ') ? "\n" : "") + body;
        QCOMPARE(readAll("MMMMM----- Recipe via Meal-Master (tm) v8.05\n" + fields + "MMMMM\n"),
                 QStringList {Describe(expected)});
        // The oldest versions: another header, and an end line of dashes of another length.
        QCOMPARE(readAll("---------- Recipe via Meal-Master (tm) v6.10\n" + fields + "------------\n"),
                 QStringList {Describe(expected)});
    }

    void encodingsAreDetected_data()
    {
        QTest::addColumn<QByteArray>("title");
        QTest::addColumn<QByteArray>("step");
        QTest::addColumn<QString>("expected");
        const QByteArray chill("Chill.");
        const QString creme = QStringLiteral("Crème brûlée");
        QTest::newRow("UTF-8") << QByteArray("Cr\xc3\xa8me br\xc3\xbbl\xc3\xa9\x65") << chill << creme;
        QTest::newRow("Latin-1") << QByteArray("Cr\xe8me br\xfbl\xe9\x65") << chill << creme;
        QTest::newRow("code page 437") << QByteArray("Cr\x8ame br\x96l\x82\x65") << chill << creme;
        // Files whose only special bytes are a degree sign or an ordinal: told apart by where
        // they stand.
        QTest::newRow("437, degrees only")
            << QByteArray("Roast") << QByteArray("Bake at 200\xf8 for 1 hour.") << QStringLiteral("200° for");
        QTest::newRow("437, ordinal only")
            << QByteArray("Roast") << QByteArray("Turn at the 1\xa7 bell.") << QStringLiteral("1º bell");
        QTest::newRow("Latin-1, degrees only")
            << QByteArray("Roast") << QByteArray("Bake at 200\xb0 for 1 hour.") << QStringLiteral("200° for");
    }
    void encodingsAreDetected()
    {
        QFETCH(QByteArray, title);
        QFETCH(QByteArray, step);
        QFETCH(QString, expected);
        // Plain text is passed over in words of eight bytes: the special byte at every place in one.
        for (int place = 0; place < 8; ++place) {
            const QStringList read = readAll("MMMMM----- Recipe via Meal-Master\n      Title: " + title + "\n\n  " +
                                             QByteArray(place, ' ') + step + "\nMMMMM\n");
            QCOMPARE(read.size(), 1);
            QVERIFY2(read[0].contains(expected), qPrintable(read[0]));
        }
    }

    // Damage costs the recipe it is in, never the others, and never a crash or a hang.
    void damagedInput_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QStringList>("read");
        const QByteArray good =
            "MMMMM----- Recipe via Meal-Master\n      Title: Good\n\n      1 c  Rice\n\n  Boil.\nMMMMM\n";
        QTest::newRow("cut short") << good + good.left(60)
                                   << QStringList {"Good", "rejected: the file ends before the recipe's end line"};
        QTest::newRow("no end before the next")
            << good.left(70) + good << QStringList {"rejected: it has no end line before the next recipe", "Good"};
        QTest::newRow("no title") << QByteArray("MMMMM----- Recipe via Meal-Master\n\n  Boil.\nMMMMM\n") + good
                                  << QStringList {"rejected: it has no title", "Good"};
        QTest::newRow("binary") << QByteArray(5000, '\0') + QByteArray("\xff\xfe\x01\n", 4) + good
                                << QStringList {"Good"};
        QTest::newRow("nothing but text") << QByteArray("no recipes here\n") << QStringList();
        QTest::newRow("empty") << QByteArray() << QStringList();
        QTest::newRow("a long direction")
            << QByteArray(good).replace("  Boil.", "  " + QByteArray(100000, 'b')) << QStringList {"Good"};
        QTest::newRow("amounts that are no numbers") << QByteArray(good).replace("      1 c ", "    1/0 c ") +
                                                            QByteArray(good).replace("      1 c ", "    1-2 c ")
                                                     << QStringList {"Good", "Good"};
        QTest::newRow("a line too long") << good.left(40) + "  " +
                                                QByteArray(MealMasterReader::kLongestLine + 10, 'x') + "\n" +
                                                good.mid(40) + good
                                         << QStringList {"rejected: a line is longer than 1048576 characters", "Good"};
    }
    void damagedInput()
    {
        QFETCH(QByteArray, text);
        QFETCH(QStringList, read);
        QStringList titles;
        for (const QString &recipe : readAll(text))
            titles << (recipe.startsWith(QStringLiteral("rejected")) ? recipe
                                                                     : recipe.section(QStringLiteral(" / "), 3, 3));
        QCOMPARE(titles, read);
    }
};

QTEST_MAIN(TestMealMasterReader)
#include "test_mealmasterreader.moc"
