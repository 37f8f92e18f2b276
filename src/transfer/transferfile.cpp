#include "transferfile.h"

#include "core/db/database.h"
#include "core/platform/modini.h"
#include "core/platform/platform.h"
#include "recipes/cabinetnames.h"
#include "recipes/searchindexes.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// The cabinet names of the recipes stored from the identifier on.
CabinetNames newCabinetNames(qint32 firstId)
{
    CabinetNames names;
    gSQL = QStringLiteral("SELECT DISTINCT cabinet, type FROM INGREDIENTS A, RECIPE B where A.recipe_id = B.ID "
                          "AND B.ID >= ") +
           QString::number(firstId);
    for (Recordset rs = ExecuteSQL(gSQL); rs && !rs.eof(); rs.MoveNext())
        names.add(rs.text(0), rs.text(1));
    return names;
}

const QString kSeparator = QStringLiteral(" | ");
const QString kIdSection = QStringLiteral("ID");
const QString kImportedSection = QStringLiteral("Imported");

// The eight field lines of a section, in the order a reader takes them by position.
constexpr std::array<std::pair<const char *, const char *>, 8> kFields {{
    {"Servings", "servings"},
    {"Type", "type"},
    {"Category", "category"},
    {"Title", "title"},
    {"PrepTime", "prep_time"},
    {"CookTime", "cook_time"},
    {"Notes", "notes"},
    {"Rating", "rating"},
}};

// The number of the last section written, as a whole number; 0 for a new file.
qint64 lastSection(const IniFile &file)
{
    const double max = Val(file.value(kIdSection, QStringLiteral("Max")));
    if (!(std::abs(max) < 1e15))
        throw PlatformError(PlatformError::Overflow);
    return std::llround(max);
}

// The numbered sections the file holds, from 1 to the first missing one.
int sectionsPresent(const IniFile &file)
{
    int count = 0;
    while (file.hasSection(QString::number(count + 1)))
        ++count;
    return count;
}

// The number of recipes the progress counts: Max when it is a usable count, else the
// numbered sections there are (a file cut short has lost its [ID] section at the end).
int recipesToImport(const IniFile &file)
{
    try {
        const qint32 max = CLng(file.value(kIdSection, QStringLiteral("Max")));
        if (max >= 0)
            return max;
    } catch (const PlatformError &) { }
    return sectionsPresent(file);
}

// Texts the file's lines cannot carry as they stand (a line break, a bar, a blank at a field's
// end, which the reader trims) are written escaped: the section then says so in a line
// "Escaped=True", and every value of it is read back through unescape(). Sections without that
// line are read as the file format has always been read.
const QString kEscapedLine = QStringLiteral("Escaped=True");

bool needsEscape(const QString &text)
{
    return text.contains(u'\n') || text.contains(u'\r') || text.contains(u'|') || text.startsWith(u' ') ||
           text.endsWith(u' ');
}

QString escaped(QString text)
{
    text.replace(u'\\', QStringLiteral("\\\\"))
        .replace(u'\n', QStringLiteral("\\n"))
        .replace(u'\r', QStringLiteral("\\r"))
        .replace(u'|', QStringLiteral("\\|"));
    if (text.startsWith(u' '))
        text.replace(0, 1, QStringLiteral("\\s"));
    if (text.endsWith(u' '))
        text.replace(text.size() - 1, 1, QStringLiteral("\\s"));
    return text;
}

QString unescaped(const QString &text)
{
    QString plain;
    plain.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\' || i + 1 == text.size()) {
            plain += text[i];
            continue;
        }
        const QChar next = text[++i];
        plain += next == u'n' ? QChar(u'\n') : next == u'r' ? QChar(u'\r') : next == u's' ? QChar(u' ') : next;
    }
    return plain;
}

bool endsWithLineBreak(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() == 0)
        return true;
    file.seek(file.size() - 1);
    return file.read(1) == "\n";
}

bool isWholeNumber(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^[+-]?[0-9]+$"));
    return number.match(text).hasMatch();
}

} // namespace

QStringList RecipeSectionLines(const QString &recipeId)
{
    Recordset rs = ExecuteSQL(QStringLiteral("SELECT * FROM RECIPE WHERE ID = ") + recipeId);
    if (!rs || rs.eof())
        return {};
    // Each line as its key and its values (one, or the fields the separator joins).
    QList<std::pair<QString, QStringList>> read;
    for (const auto &[key, column] : kFields)
        read.append({QLatin1String(key), {rs.text(QLatin1String(column))}});

    rs = ExecuteSQL(QStringLiteral("SELECT * FROM INGREDIENTS WHERE recipe_id = ") + recipeId);
    if (rs) {
        const int amount = rs.columnIndex(QStringLiteral("amount"));
        const int measure = rs.columnIndex(QStringLiteral("measure"));
        const int ingredient = rs.columnIndex(QStringLiteral("ingredient"));
        const int cabinet = rs.columnIndex(QStringLiteral("cabinet"));
        for (int k = 1; !rs.eof(); ++k, rs.MoveNext())
            read.append({QStringLiteral("Ing") + QString::number(k),
                         {rs.text(amount), rs.text(measure), rs.text(ingredient), rs.text(cabinet)}});
    }
    rs = ExecuteSQL(QStringLiteral("SELECT * FROM DIRECTIONS WHERE recipe_id = ") + recipeId);
    if (rs) {
        const int step = rs.columnIndex(QStringLiteral("step"));
        const int direction = rs.columnIndex(QStringLiteral("direction"));
        for (int k = 1; !rs.eof(); ++k, rs.MoveNext())
            read.append({QStringLiteral("Dir") + QString::number(k), {rs.text(step), rs.text(direction)}});
    }
    bool escape = false;
    for (const auto &[key, values] : read)
        escape = escape || std::any_of(values.begin(), values.end(), needsEscape);
    QStringList lines;
    for (auto &[key, values] : read) {
        if (escape)
            std::transform(values.begin(), values.end(), values.begin(), escaped);
        lines.append(key + u'=' + values.join(kSeparator));
    }
    if (escape)
        lines.append(kEscapedLine);
    return lines;
}

QString TransferSubItem(const QString &value, int n)
{
    qsizetype start = 0;
    for (int field = 1; field < n; ++field) {
        const qsizetype next = value.indexOf(kSeparator, start);
        if (next < 0)
            return {};
        start = next + kSeparator.size();
    }
    const qsizetype end = value.indexOf(kSeparator, start);
    return Trim(end < 0 ? value.mid(start) : value.mid(start, end - start));
}

bool ExportTransferSections(const QString &path, const QStringList &chosen, const std::function<bool(qsizetype)> &goOn)
{
    // The file is read once, the sections are added in memory and the file is replaced once:
    // a program stopped half-way, or a cancel, leaves the file as it was.
    IniFile file(path);
    const qint64 base = lastSection(file);
    qint64 written = 0;
    for (qsizetype i = 1; i <= chosen.size(); ++i) {
        if (!goOn(i))
            return false;
        const QStringList lines = RecipeSectionLines(chosen[i - 1]);
        if (lines.isEmpty())
            continue; // deleted since it was chosen; the numbers stay without a gap
        const QString section = QString::number(base + ++written);
        for (const QString &line : lines)
            file.write(section, line);
    }
    file.write(kIdSection, QStringLiteral("Max=") + QString::number(base + written));
    file.save();
    return true;
}

int TransferRecipeCount(const IniFile &file)
{
    return recipesToImport(file);
}

bool TransferFileImported(const IniFile &file)
{
    return file.value(kImportedSection, QStringLiteral("Flag")) == QLatin1String("True");
}

void MarkTransferFileImported(IniFile &file)
{
    file.write(kImportedSection, QStringLiteral("Flag=True"));
    file.save();
}

TransferImport ImportTransferSections(const IniFile &file, const std::function<void(int)> &progress)
{
    TransferImport result;
    GatheredFailures failures;
    // One commit for the whole file: a commit per recipe would wait for the disk a thousand
    // times. A failed line fails alone; the recipes before a fault stay.
    StatementBatch batch;
    const qint32 firstNew = batch.begun() ? NextId(QStringLiteral("RECIPE")) : 0;
    SearchIndexesBulk counted;
    // A file cut short (a copy or a download that stopped) ends within a line, or holds fewer
    // recipes than its [ID] section counts: its last recipe may be cut, and is left out.
    const int expected = recipesToImport(file);
    const int present = sectionsPresent(file);
    int lastWhole = present;
    if (!endsWithLineBreak(file.path()) || (file.hasSection(kIdSection) && expected > present))
        --lastWhole;
    for (int section = 1; batch.begun(); ++section) {
        progress(section);
        const QStringList lines = file.section(QString::number(section));
        result.stored += RecipeProcess(lines, section, lastWhole, result.leftOut) ? 1 : 0;
        if (lines.size() <= 1)
            break;
    }
    if (expected > present && file.hasSection(kIdSection))
        result.leftOut.append(
            QStringLiteral("Recipes %1 to %2: the file ends before them").arg(present + 1).arg(expected));
    // The new cabinet names of the file's recipes, in the same commit.
    if ((result.stored > 0 && !AddCabinetItems(newCabinetNames(firstNew)).isEmpty()) || !counted.finish())
        batch.fail();
    if (!batch.commit())
        result.notStored = batch.failure();
    result.leftOut << failures.texts();
    return result;
}

bool RecipeProcess(const QStringList &lines, int section, int lastWhole, QStringList &leftOut)
{
    if (lines.isEmpty() || lines.first().isEmpty())
        return false;
    const QString recipe = QStringLiteral("Recipe ") + QString::number(section);
    if (lines.size() < qsizetype(kFields.size())) {
        leftOut.append(recipe + QStringLiteral(": it has %1 of the 8 lines a recipe begins with").arg(lines.size()));
        return false;
    }
    // A text with an apostrophe next to a comma or parenthesis would be cut short in the
    // statement; such a text is left out and named rather than stored wrong.
    auto carries = [&leftOut](const QString &where, const QStringList &texts) {
        for (const QString &text : texts)
            if (DelimiterApostropheIn(text) >= 0) {
                leftOut.append(where + QStringLiteral(": the apostrophe in \"") + text +
                               QStringLiteral("\" would end the text early"));
                return false;
            }
        return true;
    };

    const bool escape = lines.contains(kEscapedLine);
    const auto value = [escape](const QString &text) { return escape ? unescaped(text) : text; };
    QStringList values;
    for (qsizetype i = 0; i < qsizetype(kFields.size()); ++i)
        values.append(value(IniLineValue(lines[i])));
    const QString named = recipe + QStringLiteral(" (") + values[3] + u')';
    if (section > lastWhole) {
        leftOut.append(named + QStringLiteral(": the file ends within it, so it is left out whole"));
        return false;
    }
    if (!carries(named, values))
        return false;

    const Recordset max = ExecuteSQL(QStringLiteral("SELECT MAX(ID) FROM RECIPE"));
    const QString id = QString::number(max && !max.eof() ? max.integer(0) + 1 : 1);
    if (ExecuteSQL(QStringLiteral("INSERT INTO RECIPE VALUES (") + id + QStringLiteral(", '") +
                   values.join(QStringLiteral("', '")) + QStringLiteral("')"))
            .failed()) {
        leftOut.append(named + QStringLiteral(": the database refused it"));
        return false;
    }

    qsizetype at = qsizetype(kFields.size());
    for (int k = 1; at < lines.size() && lines[at].contains(QStringLiteral("Ing%1=").arg(k)); ++k, ++at) {
        const QString line = IniLineValue(lines[at]);
        QStringList fields;
        for (int n = 1; n <= 4; ++n)
            fields.append(value(TransferSubItem(line, n)));
        if (!carries(named + QStringLiteral(", Ing%1").arg(k), fields))
            continue;
        ExecuteSQL(QStringLiteral("INSERT INTO INGREDIENTS VALUES (") + id + QStringLiteral(", ") + QString::number(k) +
                   QStringLiteral(", '") + fields.join(QStringLiteral("', '")) + QStringLiteral("')"));
    }
    for (int k = 1; at < lines.size() && lines[at].contains(QStringLiteral("Dir%1=").arg(k)); ++k, ++at) {
        const QString line = IniLineValue(lines[at]);
        const QString step = TransferSubItem(line, 1);
        const QString direction = value(TransferSubItem(line, 2));
        const QString where = named + QStringLiteral(", Dir%1").arg(k);
        if (!isWholeNumber(step)) {
            leftOut.append(where + QStringLiteral(": the step \"") + step + QStringLiteral("\" is not a number"));
            continue;
        }
        if (!carries(where, {direction}))
            continue;
        ExecuteSQL(QStringLiteral("INSERT INTO DIRECTIONS VALUES (") + id + QStringLiteral(", ") + step +
                   QStringLiteral(", '") + direction + QStringLiteral("')"));
    }
    return true;
}
