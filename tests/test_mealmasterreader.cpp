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

    void headerVariantsAndTwoColumns()
    {
        // The right column starts at column 41.
        const auto two = [](const char *left, const char *right) {
            return QByteArray(left).leftJustified(40) + right + '\n';
        };
        const QByteArray text = "Some words before the first recipe.\n"
                                "---------- Recipe via Meal-Master (tm) v8.02\n"
                                "      Title: Salad\n"
                                " Categories: Salads\n"
                                "   Servings: 4\n"
                                "\n" +
                                two("      1 c  Lettuce", "      2 tb Oil") +
                                two("      2    Tomatoes", "    1/2 ts Salt") +
                                "           -ripe\n"
                                "\n"
                                "  Toss.\n"
                                "-----\n";
        RecipeData salad = imported(QStringLiteral("Salad"),
                                    {"1|cup|Lettuce", "2|---|Tomatoes ripe", "2|Tbsp|Oil", "1/2|tsp|Salt"}, {"Toss."});
        salad.category = QStringLiteral("Salads");
        salad.servings = QStringLiteral("4");
        QCOMPARE(readAll(text), QStringList {Describe(salad)});
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
        const QStringList read =
            readAll("MMMMM----- Recipe via Meal-Master\n      Title: " + title + "\n\n  " + step + "\nMMMMM\n");
        QCOMPARE(read.size(), 1);
        QVERIFY2(read[0].contains(expected), qPrintable(read[0]));
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
