// A collection of 30,000 MealMaster recipes (8 to 12 ingredient lines and 6 direction
// paragraphs each) imported into a fresh database, then searched as the household would; and
// the imports of 30,000 and 150,000 recipes each in a process of its own, for the growth of
// their time and memory.

#include "benchdata.h"

#include "core/db/database.h"
#include "search/frmsearch.h"
#include "transfer/mealmastercommands.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QTreeWidget>

namespace {

constexpr int kRecipes = 30000;

// Writes the collection line by line, as MealMaster itself lays it out.
void generateCollection(const QString &path, int recipes = kRecipes)
{
    static const char *const kItems[] = {"Flour, all-purpose",
                                         "Sugar",
                                         "Butter; softened",
                                         "Eggs",
                                         "Milk",
                                         "Onion, chopped",
                                         "Garlic cloves, minced",
                                         "Olive oil",
                                         "Salt",
                                         "Black pepper, freshly ground",
                                         "Chicken breasts",
                                         "Tomatoes (canned)",
                                         "Saffron threads",
                                         "Parsley; chopped",
                                         "Lemon juice",
                                         "Rice"};
    static const char *const kCodes[] = {"c ", "ts", "tb", "lb", "oz", "  ", "pn", "g ", "cn", "ml"};
    static const char *const kAmounts[] = {"      1", "    1/2", "  1 1/2", "      2", "    3/4", "       ", "     10"};
    static const char *const kWords[] = {"stir",     "the",  "mixture", "until", "smooth",  "and",  "bake",  "in",  "a",
                                         "moderate", "oven", "for",     "about", "minutes", "then", "serve", "warm"};
    QRandomGenerator random(30000);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write the collection");
    QByteArray out;
    for (int i = 1; i <= recipes; ++i) {
        out += "MMMMM----- Recipe via Meal-Master (tm) v8.05\n\n      Title: ";
        out += (i % 7 ? "Pie " : "Chicken stew ") + QByteArray::number(i);
        out += "\n Categories: Desserts, Pies\n      Yield: 6 servings\n\n";
        for (int n = 8 + random.bounded(5); n > 0; --n) {
            out += kAmounts[random.bounded(7)];
            out += ' ';
            out += kCodes[random.bounded(10)];
            out += ' ';
            out += kItems[random.bounded(16)];
            out += '\n';
        }
        for (int p = 0; p < 6; ++p) {
            out += '\n';
            for (int l = 1 + random.bounded(3); l > 0; --l) {
                out += ' ';
                for (int w = 0; w < 11; ++w) {
                    out += ' ';
                    out += kWords[random.bounded(17)];
                }
                out += '\n';
            }
        }
        out += "\nMMMMM\n\n";
        if (out.size() > (1 << 20)) {
            file.write(out);
            out.clear();
        }
    }
    file.write(out);
}

} // namespace

// "--write FILE": the 30,000 recipes written to FILE, to import them into another program side
// by side. "--import N": one import of N recipes into a fresh database; prints its time and the
// process's peak memory.
int importOnce(int recipes)
{
    const QString collection = QDir::temp().filePath(QStringLiteral("mirepan-bench-%1.mmf").arg(recipes));
    generateCollection(collection, recipes);
    const double before = ProcessMiB("VmRSS:");
    BenchHome home(0);
    int imported = 0;
    const double ms = TimedMs([&] { imported = ImportMealMasterFiles({collection}).imported; });
    QFile::remove(collection);
    std::printf("import: %.1f\nrss: %.1f\nbefore: %.1f\n", ms, ProcessMiB("VmHWM:"), before);
    return imported == recipes ? 0 : 1;
}

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--import") == 0)
        return importOnce(QString::fromLatin1(argv[2]).toInt());
    if (argc == 3 && qstrcmp(argv[1], "--write") == 0) { // the collection, for another program
        generateCollection(QString::fromLocal8Bit(argv[2]));
        return 0;
    }
    const QString collection = QDir::temp().filePath(QStringLiteral("mirepan-bench-collection.mmf"));
    generateCollection(collection);
    QList<double> imports;
    int imported = 0;
    for (int run = 0; run < 3; ++run) {
        BenchHome home(0); // a fresh database each run
        imports.append(TimedMs([&] { imported = ImportMealMasterFiles({collection}).imported; }));
        if (run < 2)
            continue;
        PrintFigure("mealmaster.import_30000.ms", Median(imports), "ms", "< 1500 ms");
        PrintFigure("mealmaster.import_peak_rss.mib", ProcessMiB("VmHWM:"), "MiB", "< 120 MiB");
        std::printf("mealmaster.imported: %d recipes\n", imported);
        // The searches of the other benchmarks, on what came in.
        frmSearch search;
        search.show();
        const auto measure = [&](const char *name, const QString &title, const QString &ingredient) {
            search.cmdClear_Click();
            search.txtTitle->setText(title);
            search.txtIngredient->setText(ingredient);
            QList<double> samples;
            for (int i = 0; i < 5; ++i)
                samples.append(TimedMs([&] { search.cmdSearch_Click(); }));
            PrintFigure(name, Median(samples), "ms");
            std::printf("%s.hits: %d recipes\n", name, int(search.lvwRecipes->topLevelItemCount()));
        };
        measure("mealmaster.search.all.ms", {}, {});
        measure("mealmaster.search.title.ms", QStringLiteral("chicken"), {});
        measure("mealmaster.search.ingredient.ms", {}, QStringLiteral("saffron"));
        search.close();
    }
    QFile::remove(collection);
    // The growth: each size imported once, in a process of its own.
    const QHash<QByteArray, double> small = RunChildFigures({QStringLiteral("--import"), QStringLiteral("30000")});
    const QHash<QByteArray, double> large = RunChildFigures({QStringLiteral("--import"), QStringLiteral("150000")});
    PrintFigure("mealmaster.import_150000.ms", large.value("import"), "ms",
                qPrintable(QStringLiteral("< %1 ms, 5x the 30,000").arg(5 * small.value("import"), 0, 'f', 0)));
    PrintFigure("mealmaster.import_peak_rss_30000.mib", small.value("rss"), "MiB");
    PrintFigure("mealmaster.import_peak_rss_150000.mib", large.value("rss"), "MiB",
                qPrintable(QStringLiteral("< %1 MiB, the 30,000's + 20%").arg(1.2 * small.value("rss"), 0, 'f', 1)));
    return imported == kRecipes ? 0 : 1;
}
