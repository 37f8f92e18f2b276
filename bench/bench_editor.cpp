// Opening an editor on a stored recipe of 40 ingredients and 20 directions among 30,000
// recipes, and saving it back.

#include "benchdata.h"

#include "recipes/frmadd2.h"
#include "recipes/reciperepository.h"

#include <QApplication>
#include <QElapsedTimer>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    BenchHome home;

    RecipeData big;
    big.recipeType = QStringLiteral("Food");
    big.title = QStringLiteral("Harvest Feast");
    big.servings = QStringLiteral("12 Servings");
    for (int i = 1; i <= 40; ++i)
        big.ingredients.append({QStringLiteral("%1").arg(i, 2, 10, QLatin1Char('0')), QStringLiteral("1 1/2"),
                                QStringLiteral("cup"), QStringLiteral("Ingredient number %1, chopped").arg(i),
                                QStringLiteral("item%1").arg(i)});
    for (int i = 1; i <= 20; ++i)
        big.directions.append({QStringLiteral("%1").arg(i, 2, 10, QLatin1Char('0')),
                               QStringLiteral("Direction number %1: stir and simmer gently.").arg(i)});
    const qint32 id = 30001;
    StoreRecipe(big, id, false);

    QList<double> open, save;
    for (int run = 0; run < 15; ++run) {
        QElapsedTimer timer;
        timer.start();
        auto *editor = new frmAdd2;
        editor->TabbedView = true;
        editor->EditMode = true;
        editor->RecipeID = id;
        editor->PopulateForm();
        editor->show();
        QCoreApplication::processEvents();
        open.append(timer.nsecsElapsed() / 1e6);

        timer.restart();
        editor->cmdSave_Click(); // overwrites the stored recipe
        save.append(timer.nsecsElapsed() / 1e6);
        delete editor;
    }
    PrintFigure("editor.open_40_20.ms", Median(open), "ms", "< 20 ms");
    PrintFigure("editor.save_40_20.ms", Median(save), "ms", "< 20 ms");
    return 0;
}
