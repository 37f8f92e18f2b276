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

#include <memory>

struct IniDocument;

// A settings-style file held in memory: read once, changed with the same rules as the
// functions below, and written once. A transfer file of a thousand recipes is then one read
// and one write, not a rewrite of the whole file for every key; the bytes written are the
// same.
class IniFile
{
public:
    // Reads the file; a missing file is an empty one. A file that exists but cannot be read is
    // a FileAccess error, so that saving never replaces what could not be read.
    explicit IniFile(const QString &path);
    ~IniFile();
    IniFile(const IniFile &) = delete;
    IniFile &operator=(const IniFile &) = delete;

    QString path() const { return m_path; }
    QString value(const QString &section, const QString &key) const;
    QStringList section(const QString &section) const;
    bool hasSection(const QString &section) const;
    void write(const QString &section, const QString &line, bool ordered = false);
    // Replaces the file in one step (creating its directory, one level, when missing).
    void save();

private:
    QString m_path;
    std::unique_ptr<IniDocument> m_document;
};

// The value of key in section, or "" when the file, the section or the key is missing.
QString GetIniValue(const QString &path, const QString &section, const QString &key);
// Every non-empty line of the section, whole, in file order; a missing or empty section gives
// one empty text.
QStringList GetIniSection(const QString &path, const QString &section);
// Writes the whole line key=value into section. A file that cannot be read is a FileAccess
// error and is left as it is. An existing line of the same key is replaced;
// otherwise the line goes at the end of the section, except that when another section follows,
// it lands just under that section's header. With ordered insertion the line goes before the
// first line of the section that sorts after it. An absent section is appended.
void WriteIniValue(const QString &path, const QString &section, const QString &line, bool ordered = false);
// Writes the entry "order=value" of a list section in its order: an entry of the same order is
// replaced, a new one goes before the first entry whose order sorts after it, or after the
// section's last entry (never into the next section).
void WriteIniListEntry(const QString &path, const QString &section, const QString &entry);
// Removes the key's line from the section (a FileAccess error when the file cannot be read).
void DeleteIniKey(const QString &path, const QString &section, const QString &key);
bool FileExists(const QString &path);
// Creates the directory holding the file (one level) and the file itself, empty.
void CreateIniFile(const QString &path);
// The text after the first "=" of a key=value line.
QString IniLineValue(const QString &line);
// The display values of a list section (what LoadIniList adds).
QStringList IniListValues(const QString &path, const QString &section);
