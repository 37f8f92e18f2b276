#pragma once
// modINI: the settings file "pantrio.ini" (and the transfer file), read and written with our
// own line rules.
//
// A line beginning with "[" opens a section named by the text up to the first "]"; a key line
// is key=value split at the first "="; names compare case-sensitively; nothing is trimmed.
// Readers skip empty lines, writers copy them. Every write composes the whole file as
// "copytest.ini" beside it and renames that over the original in one step, so the settings
// survive a program killed at any moment. A file that is not UTF-8 is read as Latin-1 and
// written back in Latin-1. A file is read once and read again only when it changes on disk.

#include <QString>
#include <QStringList>

class QComboBox;

// The value of key in section, or "" when the file, the section or the key is missing.
QString GetIniValue(const QString &path, const QString &section, const QString &key);
// Every non-empty line of the section, whole, in file order; a missing or empty section gives
// one empty text.
QStringList GetIniSection(const QString &path, const QString &section);
// Writes the whole line key=value into section. An existing line of the same key is replaced;
// otherwise the line goes at the end of the section, except that when another section follows,
// it lands just under that section's header. With ordered insertion the line goes before the
// first line of the section that sorts after it. An absent section is appended.
void WriteIniValue(const QString &path, const QString &section, const QString &line,
                   bool ordered = false);
// Removes the key's line from the section.
void DeleteIniKey(const QString &path, const QString &section, const QString &key);
bool FileExists(const QString &path);
// Creates the directory holding the file (one level) and the file itself, empty.
void CreateIniFile(const QString &path);
// The text after the first "=" of a key=value line.
QString IniLineValue(const QString &line);
// Fills a combo box with the display values of a list section.
void LoadIniList(QComboBox *combo, const QString &section);
// The display values of a list section (what LoadIniList adds).
QStringList IniListValues(const QString &path, const QString &section);
