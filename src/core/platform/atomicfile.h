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

// For a file written by someone else (a PDF printer): the copy beside path to write to, and
// putting the written copy in the file's place in one step (a FileAccess PlatformError when it
// cannot; the copy is then removed and the original untouched).
QString CopyBeside(const QString &path, const QString &tempName = {});
void RenameOver(const QString &copy, const QString &path);

// Copies the file from over the file to, in one step as above (to need not exist).
void CopyFileOver(const QString &from, const QString &to);
