#include "modini.h"

#include "core/platform/atomicfile.h"
#include "core/platform/platform.h"
#include "core/platform/programdir.h"

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

} // namespace

namespace {

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

bool fitsLatin1(QStringView text)
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

// The first p characters of a line, p being the position of its first "=" (or its length).
QStringView keyPart(const QString &line)
{
    const qsizetype eq = line.indexOf(u'=');
    return eq < 0 ? QStringView(line) : QStringView(line).left(eq + 1);
}

} // namespace

// A settings file as last read or written, with the line of each section's first header:
// start-up and every window read dozens of values, and a large file must be read once for
// all of them, not once for each. Writes change the lines in place, with the same result as
// composing the file anew.
struct IniDocument {
    FileStamp stamp;
    IniText text;
    bool exists = false; // a missing file is written without a blank line before its section
    QHash<QString, qsizetype> headers;
    qsizetype lastHeader = -1;

    void index()
    {
        headers.clear();
        lastHeader = -1;
        for (qsizetype i = 0; i < text.lines.size(); ++i)
            noteHeader(i);
    }

    // The line of the section's first header; -1 when the file has no such section.
    qsizetype headerOf(const QString &section) const { return headers.value(section, -1); }

    QString value(const QString &section, const QString &key) const
    {
        const QStringList &lines = text.lines;
        for (qsizetype i = headerOf(section) + 1; i > 0 && i < lines.size(); ++i) {
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

    QStringList section(const QString &section) const
    {
        QStringList result;
        const QStringList &lines = text.lines;
        for (qsizetype i = headerOf(section) + 1; i > 0 && i < lines.size(); ++i) {
            const QString &line = lines[i];
            if (opensSection(line))
                break;
            if (!line.isEmpty())
                result.append(line);
        }
        if (result.isEmpty())
            result.append(QString()); // a missing or empty section reads as one empty entry
        return result;
    }

    // Writes the whole line into the section. The rules are those of a writer that copies the
    // file line by line: after the section's header, empty lines are passed; a line of the
    // same key is replaced (with ordered insertion, the line goes before the first line whose
    // key sorts after it); the next section's header or the file's last line gets the new
    // line after it. An absent section is appended.
    void write(const QString &section, const QString &newLine, bool ordered, bool withinSection = false)
    {
        const qsizetype header = headerOf(section);
        if (header < 0) {
            if (exists)
                text.lines.append(QString());
            text.lines.append(QLatin1Char('[') + section + QLatin1Char(']'));
            noteHeader(text.lines.size() - 1);
            text.lines.append(newLine);
        } else {
            placeAfterHeader(header, newLine, ordered, withinSection);
        }
        exists = true;
        if (newLine.contains(u'\n') || newLine.contains(u'\r')) {
            // A line break in a value makes more lines (and maybe another line end) once the
            // file is read again; the lines in memory are those a reader would find.
            text = decode(encode(text));
            index();
        } else if (text.latin1 && !fitsLatin1(newLine)) {
            text.latin1 = false; // the file is written as UTF-8 from now on
        }
    }

    void removeKey(const QString &section, const QString &key)
    {
        const QStringList &lines = text.lines;
        for (qsizetype i = headerOf(section) + 1; i > 0 && i < lines.size(); ++i) {
            const QString &line = lines[i];
            if (opensSection(line))
                return;
            const qsizetype eq = line.indexOf(u'=');
            if (eq >= 0 && QStringView(line).left(eq) == key) {
                text.lines.removeAt(i);
                shiftHeaders(i, -1);
                return;
            }
        }
    }

private:
    void noteHeader(qsizetype i)
    {
        const QString &line = text.lines[i];
        if (!opensSection(line))
            return;
        if (const QString name = sectionName(line); !headers.contains(name))
            headers.insert(name, i);
        lastHeader = std::max(lastHeader, i);
    }

    void insertLine(qsizetype at, const QString &line)
    {
        text.lines.insert(at, line);
        shiftHeaders(at, 1);
    }

    // Headers at or after the line move by delta; appending at the end moves none.
    void shiftHeaders(qsizetype from, qsizetype delta)
    {
        if (from > lastHeader)
            return;
        for (auto it = headers.begin(); it != headers.end(); ++it)
            if (it.value() >= from)
                it.value() += delta;
        lastHeader += delta;
    }

    void placeAfterHeader(qsizetype header, const QString &newLine, bool ordered, bool withinSection)
    {
        const qsizetype n = text.lines.size();
        if (header == n - 1) {
            text.lines.append(newLine); // the header is the file's last line
            return;
        }
        for (qsizetype i = header + 1; i < n; ++i) {
            const QString &read = text.lines[i];
            const bool atEnd = i == n - 1;
            if (read.isEmpty() && !atEnd)
                continue; // empty lines are passed, never taken for a key
            const QStringView part = keyPart(read);
            const QStringView mine = QStringView(newLine).left(part.size());
            if (!read.isEmpty() && ordered && part.compare(mine) > 0) {
                insertLine(i, newLine);
            } else if (!read.isEmpty() && part == mine) {
                text.lines[i] = newLine;
            } else if (withinSection && (opensSection(read) || atEnd)) {
                // At the section's end, after its last line.
                qsizetype last = opensSection(read) ? i - 1 : i;
                while (last > header && text.lines[last].isEmpty())
                    --last;
                insertLine(last + 1, newLine);
            } else if (opensSection(read) || atEnd) {
                // The new line follows the next section's header when one comes first.
                insertLine(i + 1, newLine);
            } else {
                continue;
            }
            return;
        }
    }
};

namespace {

// The documents read so far, by path; the settings file and a transfer file at the most.
QHash<QString, std::shared_ptr<const IniDocument>> &documents()
{
    static QHash<QString, std::shared_ptr<const IniDocument>> cache;
    return cache;
}

// The file's document, read again only when the file changed on disk; nullptr when there
// is no file. An unreadable file is a FileAccess error when asked for (throwing), else none.
std::shared_ptr<const IniDocument> readIni(const QString &path, bool throwUnreadable = false)
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
    if (!file.open(QIODevice::ReadOnly)) {
        if (throwUnreadable)
            throw PlatformError(PlatformError::FileAccess, path + QStringLiteral(": ") + file.errorString());
        return nullptr;
    }
    auto document = std::make_shared<IniDocument>();
    document->stamp = stamp;
    document->exists = true;
    document->text = decode(file.readAll());
    document->index();
    if (cache.size() >= 4)
        cache.clear();
    cache.insert(path, document);
    return document;
}

// Replaces the file with the document's text in one step (see atomicfile.h) and keeps the
// document, so that the next read needs no disk.
void replaceIniFile(const QString &path, IniDocument document)
{
    const QString dir = DirectoryOf(path);
    if (!dir.isEmpty())
        QDir().mkdir(dir);
    ReplaceFile(path, encode(document.text), kTempName);
    document.stamp = stampOf(path);
    document.exists = true;
    documents().insert(path, std::make_shared<const IniDocument>(std::move(document)));
}

const IniDocument &emptyDocument()
{
    static const IniDocument empty;
    return empty;
}

} // namespace

IniFile::IniFile(const QString &path) : m_path(path)
{
    const auto source = readIni(path, true);
    m_document = std::make_unique<IniDocument>(source ? *source : emptyDocument());
}

IniFile::~IniFile() = default;

QString IniFile::value(const QString &section, const QString &key) const
{
    return m_document->value(section, key);
}

QStringList IniFile::section(const QString &section) const
{
    return m_document->section(section);
}

bool IniFile::hasSection(const QString &section) const
{
    return m_document->headerOf(section) >= 0;
}

void IniFile::write(const QString &section, const QString &line, bool ordered)
{
    m_document->write(section, line, ordered);
}

void IniFile::save()
{
    replaceIniFile(m_path, *m_document);
}

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
    return document ? document->value(section, key) : QString();
}

QStringList GetIniSection(const QString &path, const QString &section)
{
    const auto document = readIni(path);
    return (document ? *document : emptyDocument()).section(section);
}

void WriteIniValue(const QString &path, const QString &section, const QString &newLine, bool ordered)
{
    // A file that cannot be read is not replaced by the one line.
    const auto source = readIni(path, true);
    IniDocument document = source ? *source : emptyDocument();
    document.write(section, newLine, ordered);
    replaceIniFile(path, std::move(document));
}

void WriteIniListEntry(const QString &path, const QString &section, const QString &entry)
{
    const auto source = readIni(path, true);
    IniDocument document = source ? *source : emptyDocument();
    document.write(section, entry, true, true);
    replaceIniFile(path, std::move(document));
}

void DeleteIniKey(const QString &path, const QString &section, const QString &key)
{
    const auto source = readIni(path, true);
    if (!source)
        return;
    IniDocument document = *source;
    document.removeKey(section, key);
    replaceIniFile(path, std::move(document));
}

QStringList IniListValues(const QString &path, const QString &section)
{
    QStringList values;
    for (const QString &line : GetIniSection(path, section))
        values.append(IniLineValue(line));
    return values;
}
