// reg_vesk: sets up the data source "PANTRIO" for Mirepan.
//
// "reg_vesk /s" registers PANTRIO as the SQLite file PANTRIO.MDB in the program directory
// and, when that file is not there yet, creates it from the shipped schema. It never touches
// an existing database. Without /s it says what it would do.

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
    const QString database = JoinPath(ProgramDir(), QStringLiteral("PANTRIO.MDB"));
    if (!silent) {
        std::printf("reg_vesk /s registers the data source \"PANTRIO\" for %s\n"
                    "in %s and creates the database when it is missing.\n",
                    qPrintable(database), qPrintable(DataSourcesPath()));
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
