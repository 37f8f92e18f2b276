// Time from starting Mirepan to its main window standing, with 30,000 recipes present.

#include "benchdata.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int recipes = qEnvironmentVariableIntValue("MIREPAN_BENCH_RECIPES") > 0
                            ? qEnvironmentVariableIntValue("MIREPAN_BENCH_RECIPES")
                            : 30000;
    QTemporaryDir home;
    const QString bin = QCoreApplication::applicationDirPath() + QStringLiteral("/../bin");
    QFile::copy(bin + QStringLiteral("/pantrio.ini"), home.filePath(QStringLiteral("pantrio.ini")));
    GenerateRecipeDatabase(home.filePath(QStringLiteral("PANTRIO.MDB")), recipes);
    const QString registry = home.filePath(QStringLiteral("datasources.ini"));
    {
        QSettings sources(registry, QSettings::IniFormat);
        sources.setValue(QStringLiteral("PANTRIO/Driver"), QStringLiteral("QSQLITE"));
        sources.setValue(QStringLiteral("PANTRIO/Database"), home.filePath(QStringLiteral("PANTRIO.MDB")));
    }

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("MIREPAN_HOME"), home.path());
    env.insert(QStringLiteral("MIREPAN_DATASOURCES"), registry);
    env.insert(QStringLiteral("MIREPAN_REPORT_SHOWN"), QStringLiteral("1"));
    if (!env.contains(QStringLiteral("QT_QPA_PLATFORM")))
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));

    QList<double> samples;
    for (int run = 0; run < 7; ++run) {
        QProcess mirepan;
        mirepan.setProcessEnvironment(env);
        const qint64 started = QDateTime::currentMSecsSinceEpoch();
        mirepan.start(bin + QStringLiteral("/mirepan"), {});
        mirepan.waitForFinished(30000);
        const QByteArray out = mirepan.readAllStandardOutput();
        const qsizetype at = out.indexOf("shown-at-ms: ");
        if (at < 0)
            qFatal("mirepan did not report its main window: %s", mirepan.readAllStandardError().constData());
        const qint64 shown = out.mid(at + 13).trimmed().split('\n').first().toLongLong();
        if (run > 0) // the first run warms the file cache
            samples.append(double(shown - started));
    }
    PrintFigure("startup.main_window.ms", Median(samples), "ms", "< 300 ms");
    return 0;
}
