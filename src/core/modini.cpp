#include "modini.h"

#include "atomicfile.h"
#include "platform.h"
#include "programdir.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>

#include <algorithm>
#include <memory>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace {

const QString kTempName = QStringLiteral("copytest.ini");

// The file as lines, with what is needed to write it back as it came: its line ends, and
// its encoding (a file from another system may be Latin-1; it is written back in Latin-1 so
// that no byte of it changes unless a line does).
struct IniText {
    QStringList lines;
    bool crlf = false;
    bool latin1 = false;
    bool bom = false;
};

// What identifies one state of a file on disk: a rewrite through a copy gives a new file,
// any other change a new size or time.
struct FileStamp {
    bool exists = false;
    qint64 size = 0;
    qint64 modified = 0;
    qint64 changed = 0;
    quint64 inode = 0;
    quint64 device = 0;
    bool operator==(const FileStamp &) const = default;
};

FileStamp stampOf(const QString &path)
{
    FileStamp stamp;
#ifdef Q_OS_UNIX
    struct stat info;
    if (::stat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return stamp;
    stamp.exists = true;
    stamp.size = info.st_size;
    stamp.modified = qint64(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
    stamp.changed = qint64(info.st_ctim.tv_sec) * 1000000000 + info.st_ctim.tv_nsec;
    stamp.inode = info.st_ino;
    stamp.device = info.st_dev;
#else
    const QFileInfo info(path);
    if (!info.isFile())
        return stamp;
    stamp.exists = true;
    stamp.size = info.size();
    stamp.modified = info.lastModified().toMSecsSinceEpoch();
#endif
    return stamp;
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

// A settings file as last read or written, with the line of each section's first header:
// start-up and every window read dozens of values, and a large file must be read once for
// all of them, not once for each.
struct IniDocument {
    FileStamp stamp;
    IniText text;
    QHash<QString, qsizetype> headers;

    void index()
    {
        headers.clear();
        for (qsizetype i = 0; i < text.lines.size(); ++i) {
            const QString &line = text.lines[i];
            if (opensSection(line))
                if (const QString name = sectionName(line); !headers.contains(name))
                    headers.insert(name, i);
        }
    }
    // The line of the section's first header; -1 when the file has no such section.
    qsizetype headerOf(const QString &section) const { return headers.value(section, -1); }
};

IniText decode(const QByteArray &bytes)
{
    IniText text;
    QByteArrayView data(bytes);
    text.bom = data.startsWith("\xEF\xBB\xBF");
    if (text.bom)
        data = data.sliced(3);
    text.crlf = data.contains("\r\n");
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString all = utf8.decode(data);
    if (utf8.hasError()) {
        text.latin1 = true;
        text.bom = false;
        all = QString::fromLatin1(bytes);
    }
    if (text.crlf)
        all.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.lines = all.split(u'\n');
    // A final line break does not start another line.
    if (!text.lines.isEmpty() && text.lines.constLast().isEmpty())
        text.lines.removeLast();
    return text;
}

bool fitsLatin1(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x100; });
}

QByteArray encode(const IniText &text)
{
    const QString eol = text.crlf ? QStringLiteral("\r\n") : QStringLiteral("\n");
    QString all;
    qsizetype size = 0;
    for (const QString &line : text.lines)
        size += line.size() + eol.size();
    all.reserve(size);
    for (const QString &line : text.lines) {
        all += line;
        all += eol;
    }
    // A Latin-1 file stays Latin-1; only a character it cannot hold makes it UTF-8, so that
    // what the user typed is stored as typed.
    if (text.latin1 && fitsLatin1(all))
        return all.toLatin1();
    QByteArray bytes = all.toUtf8();
    if (text.bom && !text.latin1)
        bytes.prepend("\xEF\xBB\xBF");
    return bytes;
}

// The documents read so far, by path; the settings file and a transfer file at the most.
QHash<QString, std::shared_ptr<IniDocument>> &documents()
{
    static QHash<QString, std::shared_ptr<IniDocument>> cache;
    return cache;
}

// The file's document, read again only when the file changed on disk; nullptr when there
// is no file.
std::shared_ptr<const IniDocument> readIni(const QString &path)
{
    const FileStamp stamp = stampOf(path);
    auto &cache = documents();
    if (!stamp.exists) {
        cache.remove(path);
        return nullptr;
    }
    if (const auto found = cache.value(path); found && found->stamp == stamp)
        return found;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    auto document = std::make_shared<IniDocument>();
    document->stamp = stamp;
    document->text = decode(file.readAll());
    document->index();
    if (cache.size() >= 4)
        cache.clear();
    cache.insert(path, document);
    return document;
}

// Replaces the file with the text in one step (see atomicfile.h) and keeps the text as the
// file's document, so that the next read needs no disk.
void replaceIniFile(const QString &path, const IniText &text)
{
    ReplaceFile(path, encode(text), kTempName);
    auto document = std::make_shared<IniDocument>();
    document->stamp = stampOf(path);
    document->text = text;
    document->index();
    documents().insert(path, document);
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
    const auto document = readIni(path);
    if (!document)
        return {};
    const QStringList &lines = document->text.lines;
    for (qsizetype i = document->headerOf(section) + 1; i > 0 && i < lines.size(); ++i) {
        const QString &line = lines[i];
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
    QStringList result;
    if (const auto document = readIni(path)) {
        const QStringList &lines = document->text.lines;
        for (qsizetype i = document->headerOf(section) + 1; i > 0 && i < lines.size(); ++i) {
            const QString &line = lines[i];
            if (opensSection(line))
                break;
            if (!line.isEmpty())
                result.append(line);
        }
    }
    if (result.isEmpty())
        result.append(QString()); // a missing or empty section reads as one empty entry
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
    const auto source = readIni(path);
    IniText out;
    if (source) {
        out.crlf = source->text.crlf;
        out.latin1 = source->text.latin1;
        out.bom = source->text.bom;
    }
    const QStringList lines = source ? source->text.lines : QStringList();
    const qsizetype n = lines.size();
    out.lines.reserve(n + 2);
    qsizetype i = 0;
    while (i < n) {
        const QString &line = lines[i++];
        out.lines.append(line);
        if (!notWritten || !opensSection(line) || sectionName(line) != section)
            continue;
        if (i == n) {
            out.lines << newLine; // the header is the file's last line
            notWritten = false;
            break;
        }
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
    const auto source = readIni(path);
    if (!source)
        return;
    IniText out = source->text;
    out.lines.clear();
    bool inSection = false;
    bool done = false;
    for (const QString &line : source->text.lines) {
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
