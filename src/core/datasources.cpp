#include "datasources.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

QString DataSourcesPath()
{
    const QString overridden = qEnvironmentVariable("MIREPAN_DATASOURCES");
    if (!overridden.isEmpty())
        return overridden;
    QString dir = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    if (dir.isEmpty())
        dir = QDir::homePath() + QStringLiteral("/.config/Mirepan");
    return dir + QStringLiteral("/datasources.ini");
}

DataSource FindDataSource(const QString &name)
{
    QSettings registry(DataSourcesPath(), QSettings::IniFormat);
    DataSource source;
    if (!registry.childGroups().contains(name))
        return source;
    registry.beginGroup(name);
    source.name = name;
    source.driver = registry.value(QStringLiteral("Driver"), source.driver).toString();
    source.database = registry.value(QStringLiteral("Database")).toString();
    source.host = registry.value(QStringLiteral("Host")).toString();
    bool ok = false;
    const int port = registry.value(QStringLiteral("Port")).toInt(&ok);
    source.port = ok ? port : -1;
    return source;
}

void RegisterDataSource(const DataSource &source)
{
    QDir().mkpath(QFileInfo(DataSourcesPath()).absolutePath());
    QSettings registry(DataSourcesPath(), QSettings::IniFormat);
    registry.beginGroup(source.name);
    registry.setValue(QStringLiteral("Driver"), source.driver);
    registry.setValue(QStringLiteral("Database"), source.database);
    if (!source.host.isEmpty())
        registry.setValue(QStringLiteral("Host"), source.host);
    if (source.port >= 0)
        registry.setValue(QStringLiteral("Port"), source.port);
    registry.endGroup();
    registry.sync();
}
