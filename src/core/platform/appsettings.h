#pragma once
// The settings the household chooses in the settings dialog, read from and written to the
// settings file in one place.

#include "appstate.h"

// What an empty file setting stands for.
struct FileDefaults {
    QString preview;
    QString database;
};

// The settings as the file holds them: a missing or unreadable font size is 9, a switch is on
// when it reads "True" (any case) or a number other than 0, an empty preview or database name
// is its default. The transfer file is read as written (a bare name in the program directory):
// an empty one is the household's choice, which the transfer commands then ask them to set.
AppSettings ReadAppSettings(const QString &iniPath, const FileDefaults &defaults);
// Writes every setting into its section with one replacement of the file (a FileAccess error
// when the file cannot be read or written; it is then left as it was).
void WriteAppSettings(const QString &iniPath, const AppSettings &settings);
