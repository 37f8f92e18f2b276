#include "atomicfile.h"

#include "platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif
#include <cstdio>

namespace {

// Pushes what was written out of the system's caches, so that a power cut after the rename
// cannot leave a renamed but empty file.
bool syncToDisk(QFile &file)
{
#ifdef Q_OS_UNIX
    return ::fsync(file.handle()) == 0;
#else
    return file.flush();
#endif
}

void syncDirectory(const QString &dir)
{
#ifdef Q_OS_UNIX
    const int fd = ::open(QFile::encodeName(dir).constData(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
#else
    Q_UNUSED(dir);
#endif
}

} // namespace

void ReplaceFile(const QString &path, const QByteArray &data, const QString &tempName)
{
    const QFileInfo target(path);
    const QString dir = target.absolutePath();
    // The copy must lie on the same file system as the file: only there is a rename one step.
    const QString temp = QDir(dir).filePath(tempName.isEmpty() ? target.fileName() + QStringLiteral(".new")
                                                               : tempName);
    QFile out(temp);
    const bool written = out.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                         out.write(data) == data.size() && out.flush() && syncToDisk(out);
    out.close();
    if (written && target.exists())
        QFile::setPermissions(temp, QFile::permissions(path));
    if (!written || std::rename(QFile::encodeName(temp).constData(), QFile::encodeName(path).constData()) != 0) {
        QFile::remove(temp);
        throw PlatformError(PlatformError::FileAccess, path);
    }
    syncDirectory(dir);
}
