#include "datasources.h"

#include <QDir>
#include <QFile>
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
    source.user = registry.value(QStringLiteral("User")).toString();
    source.password = registry.value(QStringLiteral("Password")).toString();
    source.sslMode = registry.value(QStringLiteral("SslMode")).toString();
    const int timeout = registry.value(QStringLiteral("ConnectTimeout")).toInt(&ok);
    if (ok && timeout > 0)
        source.connectTimeout = timeout;
    return source;
}

void RegisterDataSource(const DataSource &source)
{
    QDir().mkpath(QFileInfo(DataSourcesPath()).absolutePath());
    QSettings registry(DataSourcesPath(), QSettings::IniFormat);
    // A registration replaces the one before it whole: no key of another kind of source stays.
    registry.remove(source.name);
    registry.beginGroup(source.name);
    registry.setValue(QStringLiteral("Driver"), source.driver);
    registry.setValue(QStringLiteral("Database"), source.database);
    const auto setIfGiven = [&registry](const char *key, const QString &value) {
        if (!value.isEmpty())
            registry.setValue(QLatin1String(key), value);
    };
    setIfGiven("Host", source.host);
    if (source.port >= 0)
        registry.setValue(QStringLiteral("Port"), source.port);
    setIfGiven("User", source.user);
    setIfGiven("Password", source.password);
    setIfGiven("SslMode", source.sslMode);
    if (source.connectTimeout != DataSource().connectTimeout)
        registry.setValue(QStringLiteral("ConnectTimeout"), source.connectTimeout);
    registry.endGroup();
    registry.sync();
    // A password written down is for this user's eyes only.
    if (!source.password.isEmpty())
        QFile::setPermissions(DataSourcesPath(), QFile::ReadOwner | QFile::WriteOwner);
}

QString CheckedFileStamp(const QString &name)
{
    return QSettings(DataSourcesPath(), QSettings::IniFormat).value(name + QStringLiteral("/Checked")).toString();
}

void RecordCheckedFileStamp(const QString &name, const QString &stamp)
{
    QSettings registry(DataSourcesPath(), QSettings::IniFormat);
    if (registry.childGroups().contains(name))
        registry.setValue(name + QStringLiteral("/Checked"), stamp);
}
