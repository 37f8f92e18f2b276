#include "mealmaster.h"

#include "core/platform/platform.h"

#include <QIODevice>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

// Each code with the names it may stand for, the usual name first.
struct CodeNames {
    const char *code;
    std::initializer_list<const char *> names;
};
const CodeNames kCodes[] = {
    // The format's standard codes first: the first code of a name is the one written.
    {"ts", {"tsp", "teaspoon"}},
    {"t", {"tsp", "teaspoon"}},
    {"tb", {"Tbsp", "tablespoon"}},
    {"T", {"Tbsp", "tablespoon"}},
    {"c", {"cup", "cups"}},
    {"pt", {"pint"}},
    {"qt", {"quart"}},
    {"ga", {"gallon"}},
    {"fl", {"fl oz", "fluid ounce"}},
    {"oz", {"oz", "ounce"}},
    {"lb", {"lb", "pound"}},
    {"mg", {"mg"}},
    {"cg", {"cg"}},
    {"dg", {"dg"}},
    {"g", {"g", "gram"}},
    {"kg", {"kg", "kilogram"}},
    {"ml", {"ml"}},
    {"cl", {"cl"}},
    {"dl", {"dl"}},
    {"l", {"l", "liter", "litre"}},
    {"cb", {"cc"}},
    {"pn", {"pinch"}},
    {"dr", {"drop"}},
    {"ds", {"dash"}},
    {"cn", {"can"}},
    {"pk", {"package", "pkg"}},
    {"ct", {"carton"}},
    {"bn", {"bunch"}},
    {"sl", {"slice"}},
    {"ea", {"each", "piece"}},
    {"sm", {"small"}},
    {"md", {"medium"}},
    {"lg", {"large"}},
    {"x", {"per serving"}},
};

const QString kUnsetMeasure = QStringLiteral("---");
constexpr qsizetype kIngredientRoom = 28; // text columns 12 to 39
constexpr qsizetype kDirectionRoom = 76; // after a two-blank indent
const QString kNotes = QStringLiteral("Notes: ");
const QStringList kTimeKeys {QStringLiteral("Prep Time"), QStringLiteral("Cook Time"), QStringLiteral("Rating")};

// The DOS code page 437, bytes 0x80 to 0xFF.
const char16_t kCp437[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE,
    0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9, 0x00FF, 0x00D6,
    0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA,
    0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB, 0x2591, 0x2592, 0x2593, 0x2502,
    0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557, 0x255D, 0x255C, 0x255B, 0x2510, 0x2514,
    0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550,
    0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559, 0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C,
    0x2588, 0x2584, 0x258C, 0x2590, 0x2580, 0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4,
    0x03A6, 0x0398, 0x03A9, 0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229, 0x2261, 0x00B1, 0x2265, 0x2264, 0x2320,
    0x2321, 0x00F7, 0x2248, 0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0};

bool isHeader(QStringView trimmed)
{
    return (trimmed.startsWith(QLatin1String("MMMMM")) || trimmed.startsWith(QLatin1String("-----"))) &&
           trimmed.contains(QLatin1String("Meal-Master"), Qt::CaseInsensitive);
}

// "MMMMM", or a line of dashes alone: the oldest versions end a recipe with more than five.
bool isEnd(QStringView trimmed)
{
    if (trimmed == QLatin1String("MMMMM"))
        return true;
    return trimmed.size() >= 5 && std::all_of(trimmed.begin(), trimmed.end(), [](QChar c) { return c == u'-'; });
}

// A heading inside the ingredient list ("MMMMM-----SAUCE-----"); its words, or "" when the
// line is none.
QString headingOf(const QString &trimmed)
{
    if (!(trimmed.startsWith(QLatin1String("MMMMM-")) || trimmed.startsWith(QLatin1String("-----"))))
        return {};
    // Only the five M's of the mark and the dashes around the words: a heading may begin or end
    // with M itself ("MARINADE", "CREAM").
    qsizetype from = trimmed.startsWith(QLatin1String("MMMMM")) ? 5 : 0;
    while (from < trimmed.size() && trimmed[from] == u'-')
        ++from;
    qsizetype to = trimmed.size();
    while (to > from && trimmed[to - 1] == u'-')
        --to;
    return trimmed.mid(from, to - from).trimmed();
}

// The value after "Key:" when the line is that field.
bool field(const QString &trimmed, QLatin1String key, QString &value)
{
    if (!trimmed.startsWith(key, Qt::CaseInsensitive))
        return false;
    const QString rest = trimmed.mid(key.size()).trimmed();
    if (!rest.startsWith(u':'))
        return false;
    value = rest.mid(1).trimmed();
    return true;
}

// The text in lines of at most room characters, broken at single blanks only: a reader joins
// the lines with one blank, so a run of blanks stays inside a line. What cannot be broken so
// stands whole on its line.
QStringList wrap(const QString &text, qsizetype room)
{
    const auto breakable = [](const QString &t, qsizetype at) {
        return at > 0 && at + 1 < t.size() && t[at] == u' ' && t[at - 1] != u' ' && t[at + 1] != u' ';
    };
    QStringList lines;
    QString rest = text;
    while (rest.size() > room) {
        qsizetype at = room;
        while (at > 0 && !breakable(rest, at))
            --at;
        if (at == 0) {
            at = room + 1;
            while (at < rest.size() && !breakable(rest, at))
                ++at;
        }
        if (at >= rest.size())
            break;
        lines << rest.left(at);
        rest = rest.mid(at + 1);
    }
    lines << rest;
    return lines;
}

// A paragraph of "Prep Time:", "Cook Time:" and "Rating:" lines sets those fields; false, and
// nothing set, when it is another paragraph.
bool readTimes(const QStringList &paragraph, RecipeData &r)
{
    QString *fields[] = {&r.prepTime, &r.cookTime, &r.rating};
    QString values[3];
    bool seen[3] = {};
    for (const QString &line : paragraph) {
        const qsizetype k = kTimeKeys.indexOf(line.section(u':', 0, 0));
        if (k < 0 || seen[k] || !line.contains(u':'))
            return false;
        seen[k] = true;
        values[k] = line.section(u':', 1).trimmed();
    }
    for (int k = 0; k < 3; ++k)
        if (seen[k])
            *fields[k] = values[k];
    return true;
}

// What the amount column holds: digits, blanks, fraction bars, points and ranges.
bool isAmountText(QStringView amount)
{
    for (const QChar c : amount)
        if (!(c >= u'0' && c <= u'9') && c != u' ' && c != u'/' && c != u'.' && c != u'-')
            return false;
    return true;
}

bool fitsAmountColumn(const QString &amount)
{
    return amount.size() <= 7 && amount.trimmed() == amount && isAmountText(amount);
}

// Whether the bytes are UTF-8 (and whether they hold 0x80-0x9F), carried across calls.
struct EncodingScan {
    int pending = 0; // continuation bytes still due
    bool valid = true;
    // The whole file's evidence for DOS's code page against Latin-1, where the same byte is a
    // different character: after a digit, 0xF8 is DOS's degree sign ("350\xF8F") and 0xA6/0xA7
    // its ordinals, while 0xB0 is Latin-1's degree sign; after a letter, 0xE0-0xFF are Latin-1's
    // accented letters and DOS's Greek and mathematical signs.
    int dos = 0;
    int latin1 = 0;
    unsigned char previous = 0;

    void weigh(unsigned char b)
    {
        const bool afterDigit = previous >= '0' && previous <= '9';
        const bool afterLetter = (previous >= 'a' && previous <= 'z') || (previous >= 'A' && previous <= 'Z');
        if (b >= 0x80 && b <= 0x9F)
            dos += 2; // DOS's accented letters; control characters in Latin-1
        else if (afterDigit && (b == 0xF8 || b == 0xA6 || b == 0xA7))
            ++dos;
        else if (afterDigit && b == 0xB0)
            ++latin1;
        else if (afterLetter && b >= 0xE0 && b != 0xF8)
            ++latin1;
        previous = b;
    }

    void feed(const char *data, qsizetype size)
    {
        // One pass: the UTF-8 check and the weighing of the bytes where the two code pages differ.
        // Plain ASCII, most of any file, is passed over eight bytes at a time.
        for (qsizetype i = 0; i < size; ++i) {
            if (pending == 0) {
                const qsizetype from = i;
                for (quint64 word; i + 8 <= size; i += 8) {
                    std::memcpy(&word, data + i, 8);
                    if (word & 0x8080808080808080ULL)
                        break;
                }
                if (i > from)
                    previous = static_cast<unsigned char>(data[i - 1]);
                if (i == size)
                    break;
            }
            const auto b = static_cast<unsigned char>(data[i]);
            weigh(b);
            if (!valid) {
                continue;
            } else if (pending > 0) {
                if ((b & 0xC0) != 0x80)
                    valid = false;
                --pending;
            } else if (b >= 0xC2 && b <= 0xDF) {
                pending = 1;
            } else if (b >= 0xE0 && b <= 0xEF) {
                pending = 2;
            } else if (b >= 0xF0 && b <= 0xF4) {
                pending = 3;
            } else if (b >= 0x80) {
                valid = false;
            }
        }
    }
};

// A further header line some programs write ("Contributor: Ann", "       Tags: quick"): a few
// words and a colon, at the line's start or with the colon where the header fields have theirs.
bool isExtraHeader(const QString &text)
{
    qsizetype lead = 0;
    while (lead < text.size() && text[lead] == u' ')
        ++lead;
    const qsizetype colon = text.indexOf(u':', lead);
    if ((lead > 0 && colon != 11) || colon <= lead || colon - lead > 24 || !text[lead].isLetter())
        return false;
    if (colon + 1 < text.size() && text[colon + 1] != u' ')
        return false;
    for (qsizetype k = lead; k < colon; ++k)
        if (!text[k].isLetter() && text[k] != u' ' && text[k] != u'-')
            return false;
    return true;
}

// The ingredients of a line in one column or two. The format's writers start the right column
// at column 42; some programs start it at 41.
struct IngredientColumns {
    MealMasterIngredient left;
    MealMasterIngredient right;
    bool two = false;

    explicit IngredientColumns(const QString &text)
    {
        if (text.size() > 41 && text.at(39) == u' ') {
            for (const qsizetype at : {41, 40}) {
                right = text.at(at - 1) == u' ' ? ParseMealMasterIngredient(text.mid(at)) : MealMasterIngredient();
                if (right.ok)
                    break;
            }
            left = ParseMealMasterIngredient(text.left(39));
            two = right.ok && (left.ok || text.left(39).trimmed().isEmpty());
        }
        if (!two)
            left = ParseMealMasterIngredient(text);
        m_inTextColumn = text.size() > 11 && text.size() <= 39 && text.left(11).trimmed().isEmpty() && text[11] != u' ';
    }

    // Whether the line plainly is an ingredient, also where it could begin a paragraph: it has
    // an amount or a measure, stands in two columns, or its text starts in the text column and
    // fits it.
    bool startsList() const
    {
        if (two)
            return true;
        return left.ok && (!left.amount.isEmpty() || !left.code.isEmpty() || m_inTextColumn);
    }

private:
    bool m_inTextColumn = false;
};

} // namespace

MeasureCodes::MeasureCodes(const QStringList &householdMeasures) : m_household(householdMeasures)
{
    m_household.removeAll(kUnsetMeasure);
    m_household.removeAll(QString());
    for (const CodeNames &entry : kCodes) {
        const QString code = QLatin1String(entry.code);
        QString chosen;
        for (const char *candidate : entry.names) {
            for (const QString &own : std::as_const(m_household))
                if (own.compare(QLatin1String(candidate), Qt::CaseInsensitive) == 0) {
                    chosen = own;
                    break;
                }
            if (!chosen.isEmpty())
                break;
        }
        if (chosen.isEmpty())
            chosen = QLatin1String(*entry.names.begin());
        m_names.insert(code, chosen);
        if (!m_codes.contains(chosen))
            m_codes.insert(chosen, code);
    }
}

QString MeasureCodes::name(const QString &code) const
{
    if (code.isEmpty())
        return kUnsetMeasure;
    return m_names.value(code, code);
}

QString MeasureCodes::code(const QString &measure) const
{
    return m_codes.value(measure);
}

QString MeasureCodes::leadingMeasure(const QString &text) const
{
    for (const QString &own : m_household)
        if (text.size() > own.size() && text.startsWith(own, Qt::CaseSensitive) && text[own.size()] == u' ')
            return own;
    return {};
}

MealMasterEncoding DetectMealMasterEncoding(QIODevice &file)
{
    EncodingScan scan;
    const qint64 start = file.pos();
    std::array<char, 1 << 16> buffer;
    for (qint64 n; (n = file.read(buffer.data(), buffer.size())) > 0;)
        scan.feed(buffer.data(), n);
    file.seek(start);
    if (scan.valid)
        return MealMasterEncoding::Utf8;
    return scan.dos > scan.latin1 ? MealMasterEncoding::Cp437 : MealMasterEncoding::Latin1;
}

QString DecodeMealMasterLine(const QByteArray &line, MealMasterEncoding encoding)
{
    switch (encoding) {
    case MealMasterEncoding::Utf8:
        return QString::fromUtf8(line);
    case MealMasterEncoding::Latin1:
        return QString::fromLatin1(line);
    case MealMasterEncoding::Cp437:
        break;
    }
    QString text(line.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (const char c : line) {
        const auto b = static_cast<unsigned char>(c);
        *out++ = b < 0x80 ? QChar(char16_t(b)) : QChar(kCp437[b - 0x80]);
    }
    return text;
}

MealMasterIngredient ParseMealMasterIngredient(const QString &column)
{
    MealMasterIngredient ingredient;
    if (column.size() < 12 || column.at(7) != u' ' || column.at(10) != u' ')
        return ingredient;
    const QString amount = column.left(7);
    if (!isAmountText(amount))
        return ingredient;
    const QString code = column.mid(8, 2);
    for (const QChar c : code)
        if (!(c == u' ' || (c.unicode() < 128 && c.isLetter())))
            return ingredient;
    if (code.at(0) == u' ' && code.at(1) != u' ')
        return ingredient;
    ingredient.amount = amount.trimmed();
    ingredient.code = code.trimmed();
    ingredient.text = column.mid(11).trimmed();
    ingredient.ok = !ingredient.text.isEmpty() || !ingredient.amount.isEmpty() || !ingredient.code.isEmpty();
    return ingredient;
}

QString MealMasterCabinetName(const QString &ingredient)
{
    // The name before what describes it: "Onion, chopped", "Onion; chopped" (as collections
    // often write it), "Butter (cold)", "Lemon juice or lime juice". A hyphen belongs to the
    // name ("All-purpose flour", "Half-and-half"); a name too short to tell is the whole text.
    QStringView name = ingredient;
    const auto describes = std::find_if(name.begin(), name.end(),
                                        [](QChar c) { return c == u',' || c == u';' || c == u'(' || c == u'/'; });
    name.truncate(describes - name.begin());
    if (const qsizetype orAt = name.indexOf(QLatin1String(" or "), 0, Qt::CaseInsensitive); orAt > 0)
        name.truncate(orAt);
    name = name.trimmed();
    return name.size() >= 3 ? name.toString() : ingredient.trimmed();
}

MealMasterReader::MealMasterReader(QIODevice &file, const MeasureCodes &codes)
    : m_file(file), m_codes(codes), m_encoding(DetectMealMasterEncoding(file))
{ }

qint64 MealMasterReader::position() const
{
    return m_bufferStart + m_at;
}

bool MealMasterReader::readLine(Line &line)
{
    if (m_pending) {
        m_pending = false;
        line = m_next;
        return true;
    }
    line.begin = position();
    line.tooLong = false;
    QByteArray bytes;
    for (;;) {
        if (m_at == m_buffer.size()) { // the next block of the file
            m_bufferStart += m_buffer.size();
            m_buffer = m_file.read(1 << 16);
            m_at = 0;
            if (m_buffer.isEmpty()) {
                if (bytes.isEmpty() && position() == line.begin)
                    return false; // the end of the file
                break;
            }
        }
        const qsizetype end = m_buffer.indexOf('\n', m_at);
        const qsizetype stop = end < 0 ? m_buffer.size() : end;
        // Beyond the longest line the rest is passed over (the recipe is rejected anyway).
        if (!line.tooLong)
            bytes.append(m_buffer.constData() + m_at, stop - m_at);
        if (bytes.size() > kLongestLine) {
            line.tooLong = true;
            bytes.truncate(80);
        }
        m_at = end < 0 ? m_buffer.size() : end + 1;
        if (end >= 0)
            break;
    }
    if (bytes.endsWith('\r'))
        bytes.chop(1);
    line.text = DecodeMealMasterLine(bytes, m_encoding);
    return true;
}

bool MealMasterReader::next(MealMasterRecipe &out)
{
    Line line;
    // Up to the next header; what stands between recipes is not a recipe.
    for (;;) {
        if (!readLine(line))
            return false;
        if (!line.tooLong && isHeader(QStringView(line.text).trimmed()))
            break;
    }
    out = MealMasterRecipe();
    out.begin = line.begin;
    m_lines.clear();
    bool ended = false;
    bool tooLong = false;
    while (readLine(line)) {
        const QStringView trimmed = QStringView(line.text).trimmed();
        if (!line.tooLong && isHeader(trimmed)) { // the next recipe begins: this one has no end
            m_next = line;
            m_pending = true;
            break;
        }
        if (!line.tooLong && isEnd(trimmed)) {
            ended = true;
            break;
        }
        tooLong = tooLong || line.tooLong;
        m_lines.append(line);
    }
    out.end = m_pending ? m_next.begin : position();
    parse(m_lines, out);
    if (tooLong)
        out.problem = QStringLiteral("a line is longer than %1 characters").arg(kLongestLine);
    else if (!ended)
        out.problem = m_pending ? QStringLiteral("it has no end line before the next recipe")
                                : QStringLiteral("the file ends before the recipe's end line");
    else if (out.recipe.title.isEmpty())
        out.problem = QStringLiteral("it has no title");
    return true;
}

void MealMasterReader::parse(const QList<Line> &lines, MealMasterRecipe &out) const
{
    RecipeData &r = out.recipe;
    r.recipeType = QStringLiteral("Food");
    r.prepTime = r.cookTime = QStringLiteral("00:00");
    QStringList kept; // what has no field of its own, for the notes

    qsizetype i = 0;
    // The header fields, and the further ones some programs write ("Contributor:", "Tags:")
    // among them.
    bool fieldsEnded = false;
    for (; i < lines.size(); ++i) {
        const QString t = lines[i].text.trimmed();
        QString value;
        if (t.isEmpty()) {
            fieldsEnded = !r.title.isEmpty();
            continue;
        }
        if (field(t, QLatin1String("Title"), value)) {
            r.title = value;
        } else if (field(t, QLatin1String("Categories"), value)) {
            const QStringList all = value.split(u',', Qt::SkipEmptyParts);
            r.category = all.value(0).trimmed();
            if (all.size() > 1)
                kept << QStringLiteral("Categories: ") + value;
        } else if (field(t, QLatin1String("Yield"), value) || field(t, QLatin1String("Servings"), value)) {
            r.servings = value;
        } else if (!fieldsEnded && isExtraHeader(lines[i].text)) {
            kept << t;
        } else {
            break;
        }
    }

    // The ingredient lines, one or two columns; the right column's lines follow the left's.
    QList<MealMasterIngredient> columns[2];
    QStringList headings;
    bool afterBlank = false;
    const auto add = [](QList<MealMasterIngredient> &list, const MealMasterIngredient &part) {
        if (part.amount.isEmpty() && part.code.isEmpty() && part.text.startsWith(u'-') && !list.isEmpty()) {
            const qsizetype dashes = part.text.startsWith(QLatin1String("--")) ? 2 : 1;
            list.last().text += u' ' + part.text.mid(dashes).trimmed();
        } else {
            list.append(part);
        }
    };
    for (; i < lines.size(); ++i) {
        const QString &text = lines[i].text;
        const QString t = text.trimmed();
        if (t.isEmpty()) {
            afterBlank = true;
            continue;
        }
        if (const QString heading = headingOf(t); !heading.isEmpty()) {
            // The ingredients' heading when an ingredient follows; else the directions start here.
            qsizetype k = i + 1;
            while (k < lines.size() && lines[k].text.trimmed().isEmpty())
                ++k;
            if (k == lines.size() || !IngredientColumns(lines[k].text).startsList())
                break;
            headings << QStringLiteral("%1 (before ingredient line %2)")
                            .arg(heading)
                            .arg(columns[0].size() + columns[1].size() + 1);
            afterBlank = false;
            continue;
        }
        const IngredientColumns line(text);
        if (!line.left.ok && !line.two)
            break;
        // After a blank line the list goes on only with a line that is plainly an ingredient:
        // a paragraph of directions is indented less and has no amount or measure.
        if (afterBlank && !line.startsList())
            break;
        afterBlank = false;
        if (line.left.ok)
            add(columns[0], line.left);
        if (line.two)
            add(columns[1], line.right);
    }
    r.ingredients.reserve(columns[0].size() + columns[1].size());
    for (const auto &column : columns)
        for (const MealMasterIngredient &part : column) {
            QString measure = m_codes.name(part.code);
            QString item = part.text;
            if (part.code.isEmpty()) {
                if (const QString own = m_codes.leadingMeasure(item); !own.isEmpty()) {
                    measure = own;
                    item = item.mid(own.size() + 1).trimmed();
                }
            }
            r.ingredients.append({Format(r.ingredients.size() + 1, QStringLiteral("00")),
                                  part.amount.isEmpty() ? kUnsetMeasure : part.amount, measure, item,
                                  MealMasterCabinetName(item)});
        }

    // The directions, a paragraph a step. Within a paragraph the lines run on, but the format's
    // paragraph mark (byte 0x14) and a line that begins with ":" break the line there. A section
    // heading among them is a heading line of its own.
    QStringList paragraphs;
    QList<QStringList> paragraphLines; // as they stood, for the times
    QString joined;
    QStringList read;
    const auto close = [&] {
        if (!read.isEmpty()) {
            paragraphs << joined;
            paragraphLines << read;
        }
        joined.clear();
        read.clear();
    };
    for (; i < lines.size(); ++i) {
        QString t = lines[i].text.trimmed();
        if (t.isEmpty()) {
            close();
            continue;
        }
        if (const QString heading = headingOf(t); !heading.isEmpty()) {
            close();
            paragraphs << heading;
            paragraphLines << QStringList {heading};
            continue;
        }
        const bool forcedBreak = t.startsWith(u':');
        if (forcedBreak)
            t = t.mid(1).trimmed();
        if (t.contains(QChar(0x14))) {
            QStringList parts = t.split(QChar(0x14));
            for (QString &part : parts)
                part = part.trimmed();
            t = parts.join(u'\n');
        }
        if (!read.isEmpty() && (forcedBreak || !joined.endsWith(u'\n')))
            joined += forcedBreak ? u'\n' : u' ';
        joined += t;
        read << t;
    }
    close();

    // The times' paragraph sets their fields; a "Notes:" paragraph that closes the recipe is the
    // notes, one in the middle stays a step.
    QString notes;
    if (!paragraphs.isEmpty() && paragraphs.last().startsWith(kNotes))
        notes = paragraphs.takeLast().mid(kNotes.size());
    r.directions.reserve(paragraphs.size());
    for (qsizetype k = 0; k < paragraphs.size(); ++k)
        if (!paragraphs[k].contains(u':') ||
            (!readTimes(paragraphLines[k], r) && !readTimes(paragraphs[k].split(u'\n'), r)))
            r.directions.append({Format(r.directions.size() + 1, QStringLiteral("00")), paragraphs[k]});

    if (!notes.isEmpty())
        kept.prepend(notes);
    r.notes = (kept << headings).join(QStringLiteral("\n\n"));
}

QStringList FormatMealMaster(const RecipeData &r, const MeasureCodes &codes)
{
    QStringList out {QStringLiteral("MMMMM----- Recipe via Meal-Master (tm) v8.05"),
                     QString(),
                     QStringLiteral("      Title: ") + r.title,
                     QStringLiteral(" Categories: ") + r.category,
                     QStringLiteral("      Yield: ") + r.servings,
                     QString()};
    // The ingredient headings that came in with the recipe go back out as section lines.
    static const QRegularExpression headingNote(QStringLiteral("^(.+) \\(before ingredient line (\\d+)\\)$"));
    QList<std::pair<qsizetype, QString>> headings; // before which line, as they came
    QStringList notes;
    for (const QString &paragraph : r.notes.split(QStringLiteral("\n\n"), Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch m = headingNote.match(paragraph);
        const qsizetype before = m.hasMatch() ? m.captured(2).toLongLong() : 0;
        if (before >= 1 && before <= r.ingredients.size() && !m.captured(1).contains(u'\n'))
            headings.append({before, m.captured(1)});
        else
            notes << paragraph;
    }
    const auto sections = [&](qsizetype before) {
        for (const auto &[at, heading] : headings)
            if (at == before)
                out << (QStringLiteral("MMMMM-----") + heading + u'-').leftJustified(70, u'-');
    };
    for (qsizetype k = 0; k < r.ingredients.size(); ++k) {
        sections(k + 1);
        const IngredientLine &line = r.ingredients[k];
        // What the columns cannot hold goes in front of the text, as a person would write it.
        QString amount = line.amount == kUnsetMeasure ? QString() : line.amount;
        QString code = line.measure == kUnsetMeasure ? QString() : codes.code(line.measure);
        // A code the format does not know stays in its column and comes back as it stands.
        if (code.isEmpty() && line.measure != kUnsetMeasure && codes.name(line.measure) == line.measure &&
            ParseMealMasterIngredient(QStringLiteral("      1 ") + line.measure.leftJustified(2) + QStringLiteral(" x"))
                .ok)
            code = line.measure;
        QString text = line.ingredient;
        if (code.isEmpty() && line.measure != kUnsetMeasure)
            text = line.measure + u' ' + text;
        if (!fitsAmountColumn(amount)) {
            text = amount + u' ' + text;
            amount.clear();
        }
        const QStringList parts = wrap(text, kIngredientRoom);
        out << amount.rightJustified(7) + u' ' + code.leftJustified(2) + u' ' + parts.first();
        for (qsizetype p = 1; p < parts.size(); ++p)
            out << QStringLiteral("           -") + parts[p];
    }
    // A line break inside a text starts its next line with ":", the format's forced break; an
    // empty line is a ":" alone, so the paragraph goes on.
    const auto paragraph = [&out](const QString &text) {
        out << QString();
        const QStringList lines = text.split(u'\n');
        for (qsizetype n = 0; n < lines.size(); ++n) {
            const QStringList parts = wrap(lines[n], kDirectionRoom);
            for (qsizetype k = 0; k < parts.size(); ++k)
                out << ((k == 0 && (n > 0 || parts[k].isEmpty())) ? QStringLiteral("  :") : QStringLiteral("  ")) +
                           parts[k];
        }
    };
    for (const DirectionLine &line : r.directions)
        paragraph(line.direction);
    QStringList times;
    const QString *values[] = {&r.prepTime, &r.cookTime, &r.rating};
    for (int k = 0; k < 3; ++k)
        if (*values[k] != (k < 2 ? QStringLiteral("00:00") : QString()))
            times << kTimeKeys[k] + QStringLiteral(": ") + *values[k];
    if (!times.isEmpty())
        paragraph(times.join(u'\n'));
    if (!notes.isEmpty())
        paragraph(kNotes + notes.join(QStringLiteral("\n\n")));
    out << QString() << QStringLiteral("MMMMM");
    return out;
}
