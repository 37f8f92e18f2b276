#pragma once
// The registry of named data sources: "datasources.ini" in the user's configuration directory
// (or the file named by $MIREPAN_DATASOURCES). Each section is a data source with the keys
// Driver (QSQLITE unless given), Database, Host and Port.

#include <QString>

struct DataSource {
    QString name;
    QString driver = QStringLiteral("QSQLITE");
    QString database;
    QString host;
    int port = -1;
};

QString DataSourcesPath();
// The registered data source, or nullopt-like (empty name) when it is not registered.
DataSource FindDataSource(const QString &name);
void RegisterDataSource(const DataSource &source);
