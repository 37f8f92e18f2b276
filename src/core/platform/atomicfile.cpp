#include "atomicfile.h"

#include "core/platform/platform.h"

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

QString CopyBeside(const QString &path, const QString &tempName)
{
    // The copy must lie on the same file system as the file: only there is a rename one step.
    const QFileInfo target(path);
    return QDir(target.absolutePath())
        .filePath(tempName.isEmpty() ? target.fileName() + QStringLiteral(".new") : tempName);
}

void RenameOver(const QString &copy, const QString &path)
{
    if (QFileInfo::exists(path))
        QFile::setPermissions(copy, QFile::permissions(path));
    if (std::rename(QFile::encodeName(copy).constData(), QFile::encodeName(path).constData()) != 0) {
        QFile::remove(copy);
        throw PlatformError(PlatformError::FileAccess, path);
    }
    syncDirectory(QFileInfo(path).absolutePath());
}

void ReplaceFile(const QString &path, const QByteArray &data, const QString &tempName)
{
    const QString temp = CopyBeside(path, tempName);
    QFile out(temp);
    const bool written = out.open(QIODevice::WriteOnly | QIODevice::Truncate) && out.write(data) == data.size() &&
                         out.flush() && syncToDisk(out);
    out.close();
    if (!written) {
        QFile::remove(temp);
        throw PlatformError(PlatformError::FileAccess, path);
    }
    RenameOver(temp, path);
}

void CopyFileOver(const QString &from, const QString &to)
{
    QFile in(from);
    if (!in.open(QIODevice::ReadOnly))
        throw PlatformError(PlatformError::FileAccess, from);
    const QString temp = CopyBeside(to);
    QFile out(temp);
    bool written = out.open(QIODevice::WriteOnly | QIODevice::Truncate);
    QByteArray chunk;
    while (written && !in.atEnd()) {
        chunk = in.read(1 << 20);
        written = !chunk.isEmpty() && out.write(chunk) == chunk.size();
    }
    written = written && out.flush() && syncToDisk(out);
    out.close();
    if (!written) {
        QFile::remove(temp);
        throw PlatformError(PlatformError::FileAccess, to);
    }
    RenameOver(temp, to);
}
