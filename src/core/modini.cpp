#include "modini.h"

#include "platform.h"
#include "programdir.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

const QString kTempName = QStringLiteral("copytest.ini");

struct IniText {
    QStringList lines;
    bool crlf = false; // written on Windows: keep its line ends when rewriting
};

IniText readIni(const QString &path)
{
    IniText text;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return text;
    const QByteArray data = file.readAll();
    text.crlf = data.contains("\r\n");
    QString all = QString::fromUtf8(data);
    all.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.lines = all.split(u'\n');
    // A final line break does not start another line.
    if (!text.lines.isEmpty() && text.lines.constLast().isEmpty())
        text.lines.removeLast();
    return text;
}

bool opensSection(const QString &line)
{
    return line.startsWith(u'[');
}

QString sectionName(const QString &line)
{
    const qsizetype close = line.indexOf(u']');
    return close < 0 ? line.mid(1) : line.mid(1, close - 1);
}

// Where the rewritten file is composed: "copytest.ini" in the current directory, or beside
// the settings file when the current directory cannot take it (a program started from a
// read-only directory must still be able to save its settings).
QString tempPathFor(const QString &path)
{
    for (const QString &dir : {QDir::currentPath(), QFileInfo(path).absolutePath(), QDir::tempPath()}) {
        const QString candidate = QDir(dir).filePath(kTempName);
        QFile probe(candidate);
        if (probe.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return candidate;
    }
    throw PlatformError(PlatformError::FileAccess, kTempName);
}

void replaceIniFile(const QString &path, const IniText &text)
{
    const QString temp = tempPathFor(path);
    const QString eol = text.crlf ? QStringLiteral("\r\n") : QStringLiteral("\n");
    QByteArray data;
    for (const QString &line : text.lines)
        data += (line + eol).toUtf8();
    {
        QFile out(temp);
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(data) != data.size())
            throw PlatformError(PlatformError::FileAccess, temp);
    }
    QFile::remove(path);
    if (QFile::rename(temp, path))
        return;
    // The old file could not be replaced (a read-only directory): write it in place, and
    // never leave the household without its settings.
    QFile in(path);
    if (in.open(QIODevice::WriteOnly | QIODevice::Truncate) && in.write(data) == data.size()) {
        in.close();
        QFile::remove(temp);
        return;
    }
    throw PlatformError(PlatformError::FileAccess, path);
}

// The first p characters of a line, p being the position of its first "=" (or its length).
QString keyPart(const QString &line)
{
    const qsizetype eq = line.indexOf(u'=');
    return eq < 0 ? line : line.left(eq + 1);
}

} // namespace

bool FileExists(const QString &path)
{
    return QFileInfo(path).isFile();
}

void CreateIniFile(const QString &path)
{
    const QString dir = DirectoryOf(path);
    if (!dir.isEmpty())
        QDir().mkdir(dir);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.close();
}

QString IniLineValue(const QString &line)
{
    return line.mid(line.indexOf(u'=') + 1);
}

QString GetIniValue(const QString &path, const QString &section, const QString &key)
{
    if (!FileExists(path))
        return {};
    const IniText text = readIni(path);
    bool inSection = false;
    for (const QString &line : text.lines) {
        if (!inSection) {
            inSection = opensSection(line) && sectionName(line) == section;
            continue;
        }
        if (line.isEmpty())
            continue;
        if (opensSection(line))
            return {};
        const qsizetype eq = line.indexOf(u'=');
        if (eq >= 1 && QStringView(line).left(eq) == key)
            return line.mid(eq + 1);
    }
    return {};
}

QStringList GetIniSection(const QString &path, const QString &section)
{
    QStringList result{QString()};
    if (!FileExists(path))
        return result;
    const IniText text = readIni(path);
    bool inSection = false;
    int index = 0;
    for (const QString &line : text.lines) {
        if (!inSection) {
            inSection = opensSection(line) && sectionName(line) == section;
            continue;
        }
        if (opensSection(line))
            break;
        if (line.isEmpty())
            continue;
        if (index == 0)
            result[0] = line;
        else
            result.append(line);
        ++index;
    }
    return result;
}

void WriteIniValue(const QString &path, const QString &section, const QString &newLine,
                   bool ordered)
{
    bool notWritten = true;
    bool isNew = false;
    if (!FileExists(path)) {
        CreateIniFile(path);
        isNew = true;
    }
    const IniText source = readIni(path);
    IniText out;
    out.crlf = source.crlf;
    const QStringList &lines = source.lines;
    const qsizetype n = lines.size();
    qsizetype i = 0;
    while (i < n) {
        const QString &line = lines[i++];
        out.lines.append(line);
        if (!notWritten || !opensSection(line) || sectionName(line) != section)
            continue;
        while (i < n) {
            const QString &read = lines[i++];
            const bool atEnd = i == n;
            if (read.isEmpty() && !atEnd) {
                out.lines.append(read); // empty lines are copied, never taken for a key
                continue;
            }
            const QString part = keyPart(read);
            const QStringView mine = QStringView(newLine).left(part.size());
            if (!read.isEmpty() && ordered && QStringView(part).compare(mine) > 0) {
                out.lines << newLine << read;
            } else if (!read.isEmpty() && part == mine) {
                out.lines << newLine;
            } else if (opensSection(read) || atEnd) {
                // The new line follows the next section's header when one comes first.
                out.lines << read << newLine;
            } else {
                out.lines << read;
                continue;
            }
            notWritten = false;
            break;
        }
    }
    if (notWritten) {
        if (!isNew)
            out.lines << QString();
        out.lines << QLatin1Char('[') + section + QLatin1Char(']') << newLine;
    }
    replaceIniFile(path, out);
}

void DeleteIniKey(const QString &path, const QString &section, const QString &key)
{
    if (!FileExists(path))
        return;
    const IniText source = readIni(path);
    IniText out;
    out.crlf = source.crlf;
    bool inSection = false;
    bool done = false;
    for (const QString &line : source.lines) {
        if (done || !inSection) {
            out.lines.append(line);
            if (!done && opensSection(line) && sectionName(line) == section)
                inSection = true;
            continue;
        }
        if (opensSection(line)) {
            out.lines.append(line);
            done = true;
            continue;
        }
        const qsizetype eq = line.indexOf(u'=');
        if (eq >= 0 && QStringView(line).left(eq) == key) {
            done = true; // the key's line is left out; the rest is copied unchanged
            continue;
        }
        out.lines.append(line);
    }
    replaceIniFile(path, out);
}

QStringList IniListValues(const QString &path, const QString &section)
{
    QStringList values;
    for (const QString &line : GetIniSection(path, section))
        values.append(IniLineValue(line));
    return values;
}

void LoadIniList(QComboBox *combo, const QString &section)
{
    combo->addItems(IniListValues(IniPath(), section));
}
