// A program that does nothing but replace files, to be killed at random moments by the tests.
// "writeloop ini FILE" rewrites a settings file; "writeloop copy FROM TO" copies a file over
// another, as a restore puts a backup in place. It says "writing" once its first write is done.

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
    if (!ini && !copy)
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
        } else {
            CopyFileOver(path, QString::fromLocal8Bit(argv[3]));
        }
        if (round == 0) {
            std::puts("writing");
            std::fflush(stdout);
        }
    }
}
