// A program that does nothing but replace files, to be killed at random moments by the tests.
// "writeloop ini FILE" rewrites a settings file; "writeloop copy FROM TO" copies a file over
// another, as a restore puts a backup in place; "writeloop transfer FILE" appends fifty
// recipe sections to a transfer file at a time, as an export does. It says "writing" once its first write is done.

#include "core/platform/atomicfile.h"
#include "core/platform/modini.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstring>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const bool ini = argc == 3 && std::strcmp(argv[1], "ini") == 0;
    const bool copy = argc == 4 && std::strcmp(argv[1], "copy") == 0;
    const bool transfer = argc == 3 && std::strcmp(argv[1], "transfer") == 0;
    if (!ini && !copy && !transfer)
        return 2;
    const QString path = QString::fromLocal8Bit(argv[2]);
    for (int round = 0;; ++round) {
        if (ini) {
            // Replacing a key, inserting and deleting a list entry: every kind of rewrite the
            // program makes.
            WriteIniValue(path, QStringLiteral("Misc"),
                          round % 2 ? QStringLiteral("Seek=True") : QStringLiteral("Seek=False"));
            WriteIniValue(path, QStringLiteral("Rating"), QStringLiteral("06=******"), true);
            DeleteIniKey(path, QStringLiteral("Rating"), QStringLiteral("06"));
        } else if (transfer) {
            IniFile file(path);
            const int base = file.value(QStringLiteral("ID"), QStringLiteral("Max")).toInt();
            for (int section = base + 1; section <= base + 50; ++section)
                for (int line = 1; line <= 10; ++line)
                    file.write(QString::number(section), QStringLiteral("Ing%1=1 | cup | flour | flour").arg(line));
            file.write(QStringLiteral("ID"), QStringLiteral("Max=%1").arg(base + 50));
            file.save();
        } else {
            CopyFileOver(path, QString::fromLocal8Bit(argv[3]));
        }
        if (round == 0) {
            std::puts("writing");
            std::fflush(stdout);
        }
    }
}
