// Fills a recipe database with realistic recipes: generate_db <file> [recipes=30000]

#include "benchdata.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 2) {
        std::fprintf(stderr, "usage: generate_db <PANTRIO.MDB> [recipes]\n");
        return 2;
    }
    const int recipes = args.size() > 2 ? args[2].toInt() : 30000;
    GenerateRecipeDatabase(args[1], recipes);
    return 0;
}
