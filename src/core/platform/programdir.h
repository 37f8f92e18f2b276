#pragma once
// Where Mirepan keeps its files: the settings file, the database, the manual.

#include <QString>

// The program directory: $MIREPAN_HOME when set; for an installed program (its files in
// ../share/mirepan) the user's data directory, stocked on first use with those files; else
// the executable's directory when the program may write there (a build tree, a portable
// folder), or the user's data directory stocked with the files beside the executable.
QString ProgramDir();
// Joins a directory and a file name with the native separator, whichever separator the
// directory was written with.
QString JoinPath(const QString &dir, const QString &name);
// The settings file: the program directory and "pantrio.ini".
QString IniPath();
// The database the data-source set-up creates and registers: PANTRIO.MDB in the program
// directory.
QString DefaultDatabasePath();
// The transfer file the settings dialog's reset offers: transfer.txt in the program directory.
QString DefaultTransferPath();
// A file the settings name: a name without a folder (as shipped, for the folder is not known
// before the first start) is in the program directory; an empty name stays empty.
QString ProgramFile(const QString &name);
// Whether two paths name the same file (however they are spelled).
bool SameFile(const QString &a, const QString &b);
// The directory part of a path up to and including its last separator ("\" or "/").
QString DirectoryOf(const QString &path);
