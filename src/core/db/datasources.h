#pragma once
// The registry of named data sources: "datasources.ini" in the user's configuration directory
// (or the file named by $MIREPAN_DATASOURCES). Each section is a data source with the keys
// Driver (QSQLITE unless given) and Database; a source on a server (QPSQL) also has Host,
// Port and optionally User, Password, SslMode and ConnectTimeout (seconds, 5 unless given). Left out, the server's own
// sources (the environment, ~/.pgpass) give the user name and the password.

#include <QString>

struct DataSource {
    QString name;
    QString driver = QStringLiteral("QSQLITE");
    QString database;
    QString host;
    int port = -1;
    QString user;
    QString password;
    QString sslMode;
    // How long connecting to the server may take before it is given up, in seconds: a server
    // that accepts the connection and never answers must not hold the start without a window.
    int connectTimeout = 5;

    bool onServer() const { return driver == u"QPSQL"; }
    // The server as the household names it; libpq's own default when none is given.
    QString serverName() const { return host.isEmpty() ? QStringLiteral("localhost") : host; }
};

QString DataSourcesPath();
// The registered data source, or one with an empty name when it is not registered.
DataSource FindDataSource(const QString &name);
void RegisterDataSource(const DataSource &source);
// The source's file as the program last left it, sound ("" when not known): kept beside the
// source's entry, so that the next start need not read an unchanged file through.
QString CheckedFileStamp(const QString &name);
void RecordCheckedFileStamp(const QString &name, const QString &stamp);
