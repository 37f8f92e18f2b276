// Searches and reports on 30,000 recipes, each timed from the button press until the list
// is filled (or the document composed).

#include "benchdata.h"

#include "cabinet/modcabinet.h"
#include "core/appstate.h"
#include "core/database.h"
#include "core/datasources.h"
#include "core/msgbox.h"
#include "reports/recipeprinter.h"
#include "reports/recipereport.h"
#include "search/frmsearch.h"

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTreeWidget>

namespace {

class YesResponder : public Responder
{
public:
    MsgResult messageBox(const QString &, MsgStyle style, const QString &) override
    {
        return style.buttons == MsgButtons::YesNo ? MsgResult::Yes : MsgResult::Ok;
    }
    QString inputBox(const QString &, const QString &, const QString &d) override { return d; }
    void showModal(QDialog *) override {}
    void wait(double) override {}
};

template<typename Run>
double medianMs(int runs, Run run)
{
    QList<double> samples;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        samples.append(timer.nsecsElapsed() / 1e6);
    }
    return Median(samples);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTemporaryDir home;
    qputenv("MIREPAN_HOME", home.path().toUtf8());
    qputenv("MIREPAN_DATASOURCES", home.filePath(QStringLiteral("datasources.ini")).toUtf8());
    QFile::copy(QCoreApplication::applicationDirPath() + QStringLiteral("/../bin/pantrio.ini"),
                home.filePath(QStringLiteral("pantrio.ini")));
    const QString database = home.filePath(QStringLiteral("PANTRIO.MDB"));
    GenerateRecipeDatabase(database, 30000);
    DataSource source;
    source.name = kDataSourceName;
    source.database = database;
    RegisterDataSource(source);
    if (!OpenDatabase())
        qFatal("cannot open the benchmark database");
    YesResponder yes;
    SetResponder(&yes);
    gSettings.Preview = home.filePath(QStringLiteral("recipes.rtf"));

    frmSearch search;
    search.show();
    auto measure = [&](const char *name, const char *goal, auto setCriteria) {
        search.cmdClear_Click();
        search.chkCabinet->setChecked(false);
        setCriteria();
        int hits = 0;
        const double ms = medianMs(7, [&] {
            search.cmdSearch_Click();
            hits = search.lvwRecipes->topLevelItemCount();
        });
        PrintFigure(name, ms, "ms", goal);
        std::printf("%s.hits: %d recipes\n", name, hits);
    };
    measure("search.all.ms", "< 100 ms", [] {});
    measure("search.title.ms", "< 16 ms", [&] { search.txtTitle->setText(QStringLiteral("Pie 2")); });
    measure("search.ingredient.ms", "< 50 ms", [&] { search.txtIngredient->setText(QStringLiteral("saffron")); });
    measure("search.cabinet.ms", "< 100 ms", [&] { search.chkCabinet->setChecked(true); });

    PrintFigure("cabinet.available_list.ms", medianMs(7, [] { BuildAvailableRecipeList(QStringLiteral("Food")); }), "ms");

    int lines = 0;
    SetPrintPreviewSink([&](const RecipePrinter &p) { lines = int(p.lines().size()); });
    for (int count : {25, 1000}) {
        QList<qint32> ids;
        for (int i = 0; i < count; ++i)
            ids.append(1 + (i * 29) % 30000);
        const double ms = medianMs(count > 100 ? 3 : 7, [&] { PrintRecipes(ids); });
        if (count == 25)
            PrintFigure("report.25.ms", ms, "ms", "< 200 ms");
        else
            PrintFigure("report.1000.ms", ms, "ms");
    }
    SetPrintPreviewSink(nullptr);
    SetResponder(nullptr);
    search.close();
    CloseDatabase();
    return lines > 0 ? 0 : 1;
}
