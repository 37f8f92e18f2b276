// Time from starting Mirepan to its main window standing, with 30,000 recipes present, and
// again with a settings file grown to 5 MB (long household lists from years of use).

#include "benchdata.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

namespace {

// The median time from start to the main window standing, over six runs after a warm-up.
double timeStartup(const QProcessEnvironment &env, const QString &bin)
{
    QList<double> samples;
    for (int run = 0; run < 7; ++run) {
        QProcess mirepan;
        mirepan.setProcessEnvironment(env);
        const qint64 started = QDateTime::currentMSecsSinceEpoch();
        mirepan.start(bin + QStringLiteral("/mirepan"), {});
        mirepan.waitForFinished(60000);
        const QByteArray out = mirepan.readAllStandardOutput();
        const qsizetype at = out.indexOf("shown-at-ms: ");
        if (at < 0)
            qFatal("mirepan did not report its main window: %s", mirepan.readAllStandardError().constData());
        const qint64 shown = out.mid(at + 13).trimmed().split('\n').first().toLongLong();
        if (run > 0) // the first run warms the file cache
            samples.append(double(shown - started));
    }
    return Median(samples);
}

void growSettingsFile(const QString &path, qint64 bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::Append))
        qFatal("cannot grow %s", qPrintable(path));
    for (int section = 0; file.size() < bytes; ++section) {
        QByteArray block = "\n[Category_Archive" + QByteArray::number(section) + "]\n";
        for (int entry = 0; entry < 100; ++entry)
            block += QByteArray::number(entry).rightJustified(2, '0') + "=An old favourite category number " +
                     QByteArray::number(entry) + "\n";
        file.write(block);
    }
}

} // namespace

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

    PrintFigure("startup.main_window.ms", timeStartup(env, bin), "ms", "< 300 ms");
    growSettingsFile(home.filePath(QStringLiteral("pantrio.ini")), 5 * 1024 * 1024);
    PrintFigure("startup.settings_5mb.ms", timeStartup(env, bin), "ms", "< 1000 ms");
    return 0;
}
