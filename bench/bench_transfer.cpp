// Export and import of 1,000 recipes through the transfer file, against writing the file key by
// key (a rewrite of the whole file for every line); and a 100 MB file that is no transfer file.

#include "benchdata.h"

#include "core/db/database.h"
#include "core/platform/modini.h"
#include "transfer/ctransfer.h"
#include "transfer/transferfile.h"

#include <QApplication>
#include <QFile>

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    constexpr int kRecipes = 1000;
    BenchHome home(kRecipes);
    QStringList ids;
    for (int id = 1; id <= kRecipes; ++id)
        ids.append(QStringLiteral("%1").arg(id, 7, 10, QLatin1Char('0')));

    cTransfer transfer;
    transfer.FileName = home.path(QStringLiteral("transfer.txt"));
    QList<double> exports;
    for (int run = 0; run < 5; ++run) {
        QFile::remove(transfer.FileName);
        exports.append(TimedMs([&] { transfer.Export(ids); }));
    }
    const QByteArray exported = contents(transfer.FileName);

    // The same sections written as a key-by-key writer writes them.
    const QString keyByKey = home.path(QStringLiteral("keybykey.txt"));
    const double rewriting = TimedMs([&] {
        for (int i = 0; i < kRecipes; ++i)
            for (const QString &line : RecipeSectionLines(ids[i]))
                WriteIniValue(keyByKey, QString::number(i + 1), line);
        WriteIniValue(keyByKey, QStringLiteral("ID"), QStringLiteral("Max=%1").arg(kRecipes));
    });

    QList<double> imports;
    for (int run = 0; run < 5; ++run)
        imports.append(TimedMs([&] { transfer.Import(); }));

    // 100 MB of lines that hold no section: read, found empty, and flagged.
    const QString junk = home.path(QStringLiteral("junk.txt"));
    {
        QFile file(junk);
        file.open(QIODevice::WriteOnly);
        const QByteArray line = QByteArray(99, 'x') + '\n';
        for (int i = 0; i < 1000000; ++i)
            file.write(line);
    }
    transfer.FileName = junk;
    const double junkImport = TimedMs([&] { transfer.Import(); });

    const double exportMs = Median(exports);
    PrintFigure("transfer.export_1000.ms", exportMs, "ms", "< 500 ms");
    PrintFigure("transfer.export_1000_keybykey.ms", rewriting, "ms");
    PrintFigure("transfer.export_keybykey_ratio", rewriting / exportMs, "x");
    PrintFigure("transfer.export_identical", exported == contents(keyByKey) ? 1 : 0, "bool", "1");
    PrintFigure("transfer.import_1000.ms", Median(imports), "ms", "< 500 ms");
    PrintFigure("transfer.import_100mb_junk.ms", junkImport, "ms");
    return 0;
}
