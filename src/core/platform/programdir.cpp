#include "programdir.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

bool isWritableDir(const QString &dir)
{
    const QFileInfo info(dir);
    return info.isDir() && info.isWritable();
}

// The user's own program directory, stocked with the shipped files found in from.
QString userDataDir(const QString &from)
{
    QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    if (dir.isEmpty())
        dir = QDir::homePath() + QStringLiteral("/.mirepan");
    QDir().mkpath(dir);
    // The settings file is the household's once it is there; the manual, the web page and the
    // schema are the program's, and a newer program brings newer ones.
    const QString settings = dir + QStringLiteral("/pantrio.ini");
    if (!QFileInfo::exists(settings))
        QFile::copy(from + QStringLiteral("/pantrio.ini"), settings);
    for (const char *name : {"schema.sql", "vesk_um.rtf", "README.md"}) {
        const QString target = dir + u'/' + QLatin1String(name);
        QFile shipped(from + u'/' + QLatin1String(name));
        QFile kept(target);
        if (!shipped.open(QIODevice::ReadOnly))
            continue;
        if (kept.open(QIODevice::ReadOnly) && kept.readAll() == shipped.readAll())
            continue;
        kept.close();
        QFile::remove(target);
        QFile::copy(shipped.fileName(), target);
    }
    return dir;
}

} // namespace

QString ProgramDir()
{
    const QString home = qEnvironmentVariable("MIREPAN_HOME");
    if (!home.isEmpty())
        return QDir::cleanPath(home);
    static const QString dir = [] {
        const QString appDir = QCoreApplication::applicationDirPath();
        // An installed program ships its files in share/mirepan and never writes beside itself.
        const QString shipped = QDir::cleanPath(appDir + QStringLiteral("/../share/mirepan"));
        if (QFileInfo(shipped + QStringLiteral("/pantrio.ini")).isFile())
            return userDataDir(shipped);
        return isWritableDir(appDir) ? appDir : userDataDir(appDir);
    }();
    return dir;
}

QString JoinPath(const QString &dir, const QString &name)
{
    if (dir.endsWith(u'/') || dir.endsWith(u'\\'))
        return dir + name;
    return dir + QDir::separator() + name;
}

QString IniPath()
{
    return JoinPath(ProgramDir(), QStringLiteral("pantrio.ini"));
}

QString DefaultDatabasePath()
{
    return JoinPath(ProgramDir(), QStringLiteral("PANTRIO.MDB"));
}

QString DefaultTransferPath()
{
    return JoinPath(ProgramDir(), QStringLiteral("transfer.txt"));
}

QString ProgramFile(const QString &name)
{
    return name.isEmpty() || !QDir::isRelativePath(name) ? name : JoinPath(ProgramDir(), name);
}

bool SameFile(const QString &a, const QString &b)
{
    return QDir::cleanPath(QFileInfo(a).absoluteFilePath()) == QDir::cleanPath(QFileInfo(b).absoluteFilePath());
}

QString DirectoryOf(const QString &path)
{
    const qsizetype cut = std::max(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\'));
    return cut < 0 ? QString() : path.left(cut + 1);
}
