#pragma once
// Replacing a file in one step. The household's files (the settings, the transfer file, a
// restored database) are never rewritten in place: the new contents go to a copy beside the
// file, reach the disk, and the copy is renamed over the original, so a program killed at any
// moment leaves either the old file or the new one, never neither and never half of one.

#include <QByteArray>
#include <QString>

// Writes data as the file at path through the copy tempName in the same directory (a name
// of its own when empty). The copy keeps the original's permissions. Throws a PlatformError
// (FileAccess) naming the file when it cannot be replaced; the original is then untouched.
void ReplaceFile(const QString &path, const QByteArray &data, const QString &tempName = {});
