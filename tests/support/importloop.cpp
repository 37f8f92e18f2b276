// Another computer importing a MealMaster file, to be killed at a random moment by the tests:
// "importloop FILE" opens the registered collection and imports the file again and again. It
// says "importing" before its first import.

#include "core/db/database.h"
#include "transfer/mealmastercommands.h"

#include <QApplication>
#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    if (argc != 2 || !OpenDatabase())
        return 2;
    std::puts("importing");
    std::fflush(stdout);
    for (;;)
        ImportMealMasterFiles({QString::fromLocal8Bit(argv[1])});
}
