// reg_vesk: sets up the data source "PANTRIO" for Mirepan.
//
// "reg_vesk /s" registers PANTRIO as the SQLite file PANTRIO.MDB in the program directory
// and, when that file is not there yet, creates it from the shipped schema. It never touches
// an existing database, and leaves alone a registration that names another database (one on
// a drive that is not plugged in just now is still the household's). Without /s it says what
// it would do.
//
// "reg_vesk /server host=H port=P dbname=D [user=U] [password=W] [sslmode=M]" registers
// PANTRIO as a collection on a PostgreSQL server instead, and creates the tables when that
// database is empty. A database that already holds tables is left as it is: it is checked to
// be a recipe collection, never changed.

#include "core/db/datasources.h"
#include "core/db/database.h"
#include "core/platform/programdir.h"
#include "core/db/schema.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <cstdio>

namespace {

// The server entry from "key=value" arguments; its name stays empty when one is not understood.
DataSource serverSource(const QStringList &arguments, QString *wrong)
{
    DataSource source;
    source.driver = QStringLiteral("QPSQL");
    for (const QString &argument : arguments) {
        const QString key = argument.section(u'=', 0, 0).toLower();
        const QString value = argument.section(u'=', 1);
        bool ok = true;
        if (key == u"host")
            source.host = value;
        else if (key == u"port")
            source.port = value.toInt(&ok);
        else if (key == u"dbname")
            source.database = value;
        else if (key == u"user")
            source.user = value;
        else if (key == u"password")
            source.password = value;
        else if (key == u"sslmode")
            source.sslMode = value;
        else
            ok = false;
        if (!ok) {
            *wrong = argument.section(u'=', 0, 0);
            return source;
        }
    }
    if (source.database.isEmpty()) {
        *wrong = QStringLiteral("dbname (missing)");
        return source;
    }
    source.name = kDataSourceName;
    return source;
}

int registerServer(const QStringList &arguments)
{
    QString wrong;
    const DataSource source = serverSource(arguments, &wrong);
    if (source.name.isEmpty()) {
        std::fprintf(stderr,
                     "reg_vesk: %s is not understood; give host=, port=, dbname= and, if needed, "
                     "user=, password=, sslmode=\n",
                     qPrintable(wrong));
        return 2;
    }
    if (!QSqlDatabase::isDriverAvailable(source.driver)) {
        std::fprintf(stderr, "reg_vesk: the PostgreSQL driver is not installed (Debian: libqt6sql6-psql).\n");
        return 1;
    }
    const QString connection = QStringLiteral("reg_vesk");
    int status = 0;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(source.driver, connection);
        ConfigureConnection(db, source);
        QString problem;
        if (!db.open()) {
            problem = QStringLiteral("cannot connect: ") + db.lastError().text();
        } else if (!CreateServerSchema(db, &problem)) {
            // Tables there already: fine when they are a recipe collection.
            const QString notRecipes = RecipeDatabaseProblem(db);
            problem = notRecipes.isEmpty() ? QString() : problem + QStringLiteral(", and ") + notRecipes;
        } else {
            std::printf("reg_vesk: created the recipe tables in %s.\n", qPrintable(source.database));
        }
        db.close();
        if (!problem.isEmpty()) {
            std::fprintf(stderr, "reg_vesk: %s\n", qPrintable(problem));
            status = 1;
        }
    }
    QSqlDatabase::removeDatabase(connection);
    if (status != 0)
        return status;
    RegisterDataSource(source);
    std::printf("reg_vesk: PANTRIO now names %s on %s.\n", qPrintable(source.database),
                qPrintable(source.host.isEmpty() ? QStringLiteral("this computer") : source.host));
    if (!source.password.isEmpty())
        std::printf("reg_vesk: the password is kept in %s; ~/.pgpass keeps it out of that file.\n",
                    qPrintable(DataSourcesPath()));
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("Mirepan"));
    app.setOrganizationName(QStringLiteral("Mirepan"));

    const QStringList arguments = app.arguments().mid(1);
    if (!arguments.isEmpty() && arguments.first().compare(QStringLiteral("/server"), Qt::CaseInsensitive) == 0)
        return registerServer(arguments.mid(1));
    const bool silent = arguments.contains(QStringLiteral("/s"), Qt::CaseInsensitive);
    const QString database = DefaultDatabasePath();
    if (!silent) {
        std::printf("reg_vesk /s registers the data source \"PANTRIO\" for %s\n"
                    "in %s and creates the database when it is missing.\n"
                    "reg_vesk /server host=H port=P dbname=D [user=U] [password=W] [sslmode=M]\n"
                    "registers a collection on a PostgreSQL server and creates its tables when\n"
                    "that database is empty.\n",
                    qPrintable(database), qPrintable(DataSourcesPath()));
        return 0;
    }

    const DataSource registered = FindDataSource(kDataSourceName);
    if (!registered.name.isEmpty() && (registered.driver != u"QSQLITE" || !SameFile(registered.database, database))) {
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
            std::fprintf(stderr, "reg_vesk: cannot create %s: %s\n", qPrintable(database), qPrintable(error));
            return 1;
        }
    }
    return 0;
}
