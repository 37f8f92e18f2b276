// reg_vesk: sets up the data source "PANTRIO" for Mirepan.
//
// "reg_vesk /s" registers PANTRIO as the SQLite file PANTRIO.MDB in the program directory
// and, when that file is not there yet, creates it from the shipped schema. It never touches
// an existing database, and leaves alone a registration that names another database (one on
// a drive that is not plugged in just now is still the household's). Without /s it says what
// it would do.

#include "core/datasources.h"
#include "core/database.h"
#include "core/programdir.h"
#include "core/schema.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("Mirepan"));
    app.setOrganizationName(QStringLiteral("Mirepan"));

    const bool silent = app.arguments().contains(QStringLiteral("/s"), Qt::CaseInsensitive);
    const QString database = DefaultDatabasePath();
    if (!silent) {
        std::printf("reg_vesk /s registers the data source \"PANTRIO\" for %s\n"
                    "in %s and creates the database when it is missing.\n",
                    qPrintable(database), qPrintable(DataSourcesPath()));
        return 0;
    }

    const DataSource registered = FindDataSource(kDataSourceName);
    if (!registered.name.isEmpty() &&
        (registered.driver != u"QSQLITE" || !SameFile(registered.database, database))) {
        std::fprintf(stderr, "reg_vesk: PANTRIO is registered for %s; left as it is.\n",
                     qPrintable(registered.database));
        return 0;
    }

    DataSource source;
    source.name = kDataSourceName;
    source.driver = QStringLiteral("QSQLITE");
    source.database = database;
    RegisterDataSource(source);

    const QFileInfo file(database);
    if (!file.exists() || file.size() == 0) {
        QString error;
        if (!CreateDatabaseFromSchema(database, &error)) {
            std::fprintf(stderr, "reg_vesk: cannot create %s: %s\n", qPrintable(database),
                         qPrintable(error));
            return 1;
        }
    }
    return 0;
}
