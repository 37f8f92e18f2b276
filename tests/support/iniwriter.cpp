// A program that does nothing but write the settings file, to be killed at random moments by
// the settings tests. It says "writing" once its first write is done.

#include "core/modini.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc < 2)
        return 2;
    const QString path = QString::fromLocal8Bit(argv[1]);
    for (int round = 0;; ++round) {
        // Replacing a key, inserting and deleting a list entry, appending to a section: every
        // kind of rewrite the program makes.
        WriteIniValue(path, QStringLiteral("Misc"), round % 2 ? QStringLiteral("Seek=True") : QStringLiteral("Seek=False"));
        WriteIniValue(path, QStringLiteral("Rating"), QStringLiteral("06=******"), true);
        DeleteIniKey(path, QStringLiteral("Rating"), QStringLiteral("06"));
        if (round == 0) {
            std::puts("writing");
            std::fflush(stdout);
        }
    }
}
