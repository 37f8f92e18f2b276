// How the program grows with the collection: generated collections of 3,000, 30,000 and
// 150,000 recipes (made once and kept in the build tree), each started as the real program in a
// fresh process (the first start, which makes the search indexes of a collection from before,
// timed apart), its idle memory, and the title, ingredient and cabinet searches timed from the
// click until the list is filled.

#include "benchdata.h"

#include "core/shell/frmmain.h"
#include "core/shell/startup.h"
#include "search/frmsearch.h"

#include <QApplication>
#include <QCheckBox>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLineEdit>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTreeWidget>

namespace {

// In the child: the program started, then each search timed (the median of seven after a first).
int runChild(int &argc, char **argv)
{
    PaintWithoutFrameDelay();
    MirepanApplication app(argc, argv);
    std::unique_ptr<frmMain> main = Startup();
    QCoreApplication::processEvents();
    std::printf("shown: %lld\nidle: %.1f\n", QDateTime::currentMSecsSinceEpoch(), ProcessMiB("VmRSS:"));
    frmSearch search;
    search.show();
    const auto timed = [&](const char *name, auto criteria) {
        search.cmdClear_Click();
        search.chkCabinet->setChecked(false);
        criteria();
        QList<double> samples;
        for (int i = 0; i < 8; ++i) {
            QElapsedTimer timer;
            timer.start();
            search.cmdSearch_Click();
            if (i > 0)
                samples.append(timer.nsecsElapsed() / 1e6);
        }
        std::printf("%s: %.2f\n", name, Median(samples));
    };
    timed("title", [&] { search.txtTitle->setText(QStringLiteral("Pie 2")); });
    timed("ingredient", [&] { search.txtIngredient->setText(QStringLiteral("saffron")); });
    timed("cabinet", [&] { search.chkCabinet->setChecked(true); });
    std::fflush(stdout);
    search.close();
    RecordCheckedDatabase(); // as the program's end does
    return 0;
}

// One start of the program on the collection: its figures, and the start's time in ms.
QHash<QByteArray, double> start(const QString &home)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("MIREPAN_HOME"), home);
    env.insert(QStringLiteral("MIREPAN_DATASOURCES"), home + QStringLiteral("/datasources.ini"));
    if (!env.contains(QStringLiteral("QT_QPA_PLATFORM")))
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    const qint64 started = QDateTime::currentMSecsSinceEpoch();
    QHash<QByteArray, double> figures = RunChildFigures({QStringLiteral("--child")}, env);
    figures.insert("startup", figures.value("shown") - double(started));
    return figures;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 2 && qstrcmp(argv[1], "--child") == 0)
        return runChild(argc, argv);
    QCoreApplication app(argc, argv);
    const QString bin = QCoreApplication::applicationDirPath() + QStringLiteral("/../bin");
    for (const int recipes : {3000, 30000, 150000}) {
        const QString kept = QCoreApplication::applicationDirPath() + QStringLiteral("/scale-%1.mdb").arg(recipes);
        if (!QFile::exists(kept))
            GenerateRecipeDatabase(kept, recipes);
        QTemporaryDir home;
        const QString database = home.filePath(QStringLiteral("PANTRIO.MDB"));
        QFile::copy(bin + QStringLiteral("/pantrio.ini"), home.filePath(QStringLiteral("pantrio.ini")));
        QFile::copy(kept, database);
        {
            QSettings sources(home.filePath(QStringLiteral("datasources.ini")), QSettings::IniFormat);
            sources.setValue(QStringLiteral("PANTRIO/Driver"), QStringLiteral("QSQLITE"));
            sources.setValue(QStringLiteral("PANTRIO/Database"), database);
        }
        const QByteArray name = "scale." + QByteArray::number(recipes) + '.';
        const bool large = recipes == 150000;
        PrintFigure((name + "first_startup.ms").constData(), start(home.path()).value("startup"), "ms");
        QList<double> startups, idle, title, ingredient, cabinet;
        for (int run = 0; run < 3; ++run) {
            const QHash<QByteArray, double> f = start(home.path());
            startups << f.value("startup");
            idle << f.value("idle");
            title << f.value("title");
            ingredient << f.value("ingredient");
            cabinet << f.value("cabinet");
        }
        PrintFigure((name + "search.ingredient.ms").constData(), Median(ingredient), "ms", large ? "< 20 ms" : nullptr);
        PrintFigure((name + "search.cabinet.ms").constData(), Median(cabinet), "ms", large ? "< 40 ms" : nullptr);
        PrintFigure((name + "search.title.ms").constData(), Median(title), "ms", large ? "< 20 ms" : nullptr);
        PrintFigure((name + "startup.ms").constData(), Median(startups), "ms", large ? "< 150 ms" : nullptr);
        PrintFigure((name + "rss_idle.mib").constData(), Median(idle), "MiB", large ? "< 45 MiB" : nullptr);
        PrintFigure((name + "db.mib").constData(), double(QFileInfo(database).size()) / 1048576, "MiB");
    }
    return 0;
}
