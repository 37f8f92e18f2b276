// The menu planner: the needed amounts of a menu of 200 recipes, and saving and loading a tree
// of 1,000 nodes.

#include "benchdata.h"

#include "core/db/database.h"
#include "menus/frmmenu.h"
#include "menus/shoppinglist.h"
#include "reports/recipeprinter.h"

#include <QApplication>
#include <QTreeWidget>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    BenchHome home;
    SetPrintPreviewSink([](const RecipePrinter &) {});

    // 200 recipes of about ten lines each: some 2,000 ingredient lines.
    QStringList ids;
    for (int id = 1; id <= 30000 && ids.size() < 200; id += 150)
        ids.append(QStringLiteral(" %1").arg(id));
    QList<double> needed;
    QList<double> shopping;
    for (int run = 0; run < 7; ++run) {
        needed.append(TimedMs([&] { ShowNeededAmounts(QStringLiteral("Week"), ids); }));
        shopping.append(TimedMs([&] { ShowShoppingList(QStringLiteral("Week"), ids); }));
    }

    // 1,000 nodes: 10 groups of 7 days of 3 meals with recipes under them.
    frmMenu menu;
    menu.Form_Load();
    MenuTree &tree = menu.tree();
    int nodes = 1;
    int number = 1;
    for (int g = 0; nodes < 1000; ++g) {
        const QString group = QStringLiteral("Title: %1").arg(number++);
        tree.add(QStringLiteral("Root"), group, QStringLiteral("Week %1").arg(g));
        ++nodes;
        for (int d = 0; d < 7 && nodes < 1000; ++d) {
            const QString day = QStringLiteral("Day: %1").arg(number++);
            tree.add(group, day, QStringLiteral("Day %1").arg(d));
            ++nodes;
            for (const char *meal : {", Meal: B", ", Meal: L", ", Meal: D"}) {
                const QString mealKey = day + QLatin1String(meal);
                tree.add(day, mealKey, QStringLiteral("Meal"));
                tree.add(mealKey, mealKey + QStringLiteral(", ID: %1").arg(nodes), QStringLiteral("Recipe"));
                nodes += 2;
            }
        }
    }
    QList<double> saves;
    QList<double> loads;
    for (int run = 0; run < 5; ++run) {
        saves.append(TimedMs([&] { SaveMenu(tree); }));
        loads.append(TimedMs([&] {
            frmMenu loaded;
            loaded.Form_Load();
        }));
    }
    PrintFigure("menu.needed_200_recipes.ms", Median(needed), "ms", "< 100 ms");
    PrintFigure("menu.shopping_200_recipes.ms", Median(shopping), "ms");
    PrintFigure("menu.save_1000_nodes.ms", Median(saves), "ms", "< 200 ms");
    PrintFigure("menu.load_1000_nodes.ms", Median(loads), "ms", "< 200 ms");
    return 0;
}
