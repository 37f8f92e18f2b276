#include "measures.h"

#include "core/platform/modini.h"

#include <QFile>
#include <QHash>
#include <QList>
#include <QRegularExpression>

#include <cmath>
#include <limits>
#include <numeric>

namespace {

enum class Kind { Volume, Mass };
enum class System { US, Imperial, Metric };

using Wide = __int128;

std::optional<Exact> reduced(Wide num, Wide den)
{
    if (den == 0)
        return std::nullopt;
    if (den < 0) {
        num = -num;
        den = -den;
    }
    Wide a = num < 0 ? -num : num;
    Wide b = den;
    while (b != 0) {
        const Wide t = a % b;
        a = b;
        b = t;
    }
    if (a > 1) {
        num /= a;
        den /= a;
    }
    constexpr Wide kMost = std::numeric_limits<qint64>::max();
    if (num > kMost || num < -kMost || den > kMost)
        return std::nullopt;
    return Exact {qint64(num), qint64(den)};
}

std::optional<Exact> times(Exact a, Exact b)
{
    return reduced(Wide(a.num) * b.num, Wide(a.den) * b.den);
}

std::optional<Exact> plus(Exact a, Exact b)
{
    return reduced(Wide(a.num) * b.den + Wide(b.num) * a.den, Wide(a.den) * b.den);
}

double value(Exact e)
{
    return double(e.num) / double(e.den);
}

struct Unit {
    Kind kind;
    System system;
    Exact base; // in ml or g
};

// An exact decimal or fraction of any length ("4.92892159375", "1/1000").
std::optional<Exact> exactNumber(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^(\\d{1,18})(?:\\.(\\d{1,17})|/(\\d{1,18}))?$"));
    const QRegularExpressionMatch m = number.match(text.trimmed());
    if (!m.hasMatch())
        return std::nullopt;
    if (!m.captured(3).isEmpty())
        return reduced(m.captured(1).toLongLong(), m.captured(3).toLongLong());
    Wide den = 1;
    for (qsizetype k = 0; k < m.captured(2).size(); ++k)
        den *= 10;
    return reduced(Wide(m.captured(1).toLongLong()) * den + m.captured(2).toLongLong(), den);
}

// The table of units, shipped as data with the program (units.txt).
const QHash<QString, Unit> &units()
{
    static const QHash<QString, Unit> table = [] {
        QHash<QString, Unit> t;
        // Built into the program: its tests read every line of it.
        QFile file(QStringLiteral(":/mirepan/units.txt"));
        file.open(QIODevice::ReadOnly);
        for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
            const QStringList fields = line.split(u'|');
            if (line.startsWith(u'#') || fields.size() != 5)
                continue;
            const QString shown = fields[0].trimmed();
            const Kind kind = fields[2].trimmed() == u"mass" ? Kind::Mass : Kind::Volume;
            const QString system = fields[3].trimmed();
            // A size in ml or g, or a number of a unit above.
            const QString size = fields[4].trimmed();
            const qsizetype blank = size.indexOf(u' ');
            std::optional<Exact> base = blank < 0 ? exactNumber(size) : exactNumber(size.left(blank));
            if (base && blank >= 0) {
                const auto it = t.constFind(size.mid(blank + 1).trimmed().toLower());
                base = it != t.cend() ? times(*base, it->base) : std::nullopt;
            }
            if (!base)
                continue; // a size that names no unit above: the unit is not known
            const Unit unit {kind,
                             system == u"metric"     ? System::Metric
                             : system == u"imperial" ? System::Imperial
                                                     : System::US,
                             *base};
            t.insert(shown.toLower(), unit);
            for (const QString &name : fields[1].split(u','))
                if (!name.trimmed().isEmpty())
                    t.insert(name.trimmed().toLower(), unit);
        }
        return t;
    }();
    return table;
}

Exact sizeOf(const char *name)
{
    return units().value(QLatin1String(name)).base;
}

// The unit of a table that a measure names, written as recipes write it: any case, with or
// without a full stop, "(s)" or a plural ending ("Tbsp.", "cup(s)", "tablespoons", "inches").
std::optional<Unit> lookUp(const QHash<QString, Unit> &table, const QString &measure)
{
    const QString name = QString(measure).toLower().remove(u'.').remove(QStringLiteral("(s)")).simplified();
    for (const QString &form :
         {name, name.chopped(name.endsWith(u's') ? 1 : 0), name.chopped(name.endsWith(QLatin1String("es")) ? 2 : 0)}) {
        if (const auto it = table.constFind(form); it != table.cend())
            return *it;
    }
    return std::nullopt;
}

// A unit of the shipped table; "T" and "t" are the tablespoon and the teaspoon.
std::optional<Unit> builtInUnit(const QString &measure)
{
    const QString trimmed = measure.trimmed();
    if (trimmed == u"T")
        return units().value(QStringLiteral("tbsp"));
    if (trimmed == u"t")
        return units().value(QStringLiteral("tsp"));
    return lookUp(units(), trimmed);
}

// The household's own units, "stick = 8 Tbsp", kept by LoadHouseholdUnits.
struct HouseholdUnits {
    QStringList lines; // as last read
    QHash<QString, Unit> units; // by name in lower case
};
HouseholdUnits &householdUnits()
{
    static HouseholdUnits kept;
    return kept;
}

// The unit a household's measure names: one of the table's, or one of the household's own.
std::optional<Unit> unitOf(const QString &measure)
{
    if (std::optional<Unit> unit = builtInUnit(measure))
        return unit;
    return lookUp(householdUnits().units, measure);
}

// A number as a cook reads it: the whole part and the nearest of the common fractions.
QString friendly(double x)
{
    static const std::pair<double, const char *> kFractions[] = {
        {0, ""},          {1.0 / 8, "1/8"}, {1.0 / 4, "1/4"}, {1.0 / 3, "1/3"}, {3.0 / 8, "3/8"}, {1.0 / 2, "1/2"},
        {5.0 / 8, "5/8"}, {2.0 / 3, "2/3"}, {3.0 / 4, "3/4"}, {7.0 / 8, "7/8"}, {1, ""}};
    qint64 whole = qint64(std::floor(x));
    const double part = x - double(whole);
    const auto *best = &kFractions[0];
    for (const auto &f : kFractions)
        if (std::abs(part - f.first) < std::abs(part - best->first))
            best = &f;
    if (best->first == 1) {
        ++whole;
        best = &kFractions[0];
    }
    if (whole == 0 && best->first == 0)
        return QStringLiteral("1/8"); // a little: never "0"
    const QString fraction = QLatin1String(best->second);
    if (whole == 0)
        return fraction;
    return fraction.isEmpty() ? QString::number(whole) : QString::number(whole) + u' ' + fraction;
}

QString decimal(double x, const char *small, const char *large)
{
    if (x >= 1000)
        return QString::number(std::round(x / 100) / 10, 'f', 1).remove(QRegularExpression(QStringLiteral("\\.0$"))) +
               u' ' + QLatin1String(large);
    if (x < 1)
        return QString::number(std::round(x * 10) / 10, 'f', 1) + u' ' + QLatin1String(small);
    return QString::number(qint64(std::round(x))) + u' ' + QLatin1String(small);
}

// A quantity in ml or g, shown in the system's largest sensible unit.
ShownAmount shown(Exact base, Kind kind, System system)
{
    const double x = value(base);
    if (system == System::Metric) {
        const QString text = kind == Kind::Volume ? decimal(x, "ml", "l") : decimal(x, "g", "kg");
        return {text.section(u' ', 0, 0), text.section(u' ', 1)};
    }
    if (kind == Kind::Mass) {
        const double oz = x / value(sizeOf("oz"));
        return oz >= 16 ? ShownAmount {friendly(oz / 16), QStringLiteral("lb")}
                        : ShownAmount {friendly(oz), QStringLiteral("oz")};
    }
    const double tsp = x / value(sizeOf("tsp"));
    if (tsp >= 12)
        return {friendly(tsp / 48), QStringLiteral("cup")};
    if (tsp >= 3)
        return {friendly(tsp / 3), QStringLiteral("Tbsp")};
    return {friendly(tsp), QStringLiteral("tsp")};
}

// A quantity of one kind in the other, through the item's grams per cup.
std::optional<Exact> otherKind(Exact base, Kind from, Exact gramsPerCup)
{
    if (gramsPerCup.num <= 0)
        return std::nullopt;
    // ml * (g per cup) / (ml per cup) = g; g * (ml per cup) / (g per cup) = ml.
    const std::optional<Exact> ratio = from == Kind::Volume ? times(gramsPerCup, {sizeOf("cup").den, sizeOf("cup").num})
                                                            : times(sizeOf("cup"), {gramsPerCup.den, gramsPerCup.num});
    return ratio ? times(base, *ratio) : std::nullopt;
}

} // namespace

MeasureSystem MeasureSystemFromText(const QString &text)
{
    if (text.compare(QLatin1String("US"), Qt::CaseInsensitive) == 0)
        return MeasureSystem::US;
    if (text.compare(QLatin1String("Metric"), Qt::CaseInsensitive) == 0)
        return MeasureSystem::Metric;
    return MeasureSystem::AsWritten;
}

QString MeasureSystemText(MeasureSystem system)
{
    switch (system) {
    case MeasureSystem::US:
        return QStringLiteral("US");
    case MeasureSystem::Metric:
        return QStringLiteral("Metric");
    case MeasureSystem::AsWritten:
        break;
    }
    return {};
}

std::optional<Exact> ParseExactAmount(const QString &text)
{
    static const QRegularExpression mixed(QStringLiteral("^\\s*(?:(\\d{1,9})\\s+)?(\\d{1,9})/(\\d{1,9})\\s*$"));
    static const QRegularExpression plain(QStringLiteral("^\\s*(\\d{0,9})(?:\\.(\\d{1,6}))?\\s*$"));
    if (const auto m = mixed.match(text); m.hasMatch()) {
        const qint64 den = m.captured(3).toLongLong();
        return reduced(Wide(m.captured(1).toLongLong()) * den + m.captured(2).toLongLong(), den);
    }
    if (const auto m = plain.match(text); m.hasMatch() && !(m.captured(1).isEmpty() && m.captured(2).isEmpty())) {
        qint64 den = 1;
        for (qsizetype k = 0; k < m.captured(2).size(); ++k)
            den *= 10;
        return reduced(Wide(m.captured(1).toLongLong()) * den + m.captured(2).toLongLong(), den);
    }
    return std::nullopt;
}

std::optional<ShownAmount> ConvertAmount(const QString &amount, const QString &measure, MeasureSystem system,
                                         std::optional<Exact> gramsPerCup)
{
    if (system == MeasureSystem::AsWritten)
        return std::nullopt;
    const std::optional<Unit> unit = unitOf(measure);
    const std::optional<Exact> quantity = ParseExactAmount(amount);
    if (!unit || !quantity || quantity->num == 0)
        return std::nullopt;
    const System target = system == MeasureSystem::US ? System::US : System::Metric;
    // With a density the cook's own way: a metric kitchen weighs, a US one measures by volume.
    const Kind wanted = !gramsPerCup ? unit->kind : target == System::Metric ? Kind::Mass : Kind::Volume;
    if (unit->system == target && unit->kind == wanted)
        return std::nullopt;
    std::optional<Exact> base = times(*quantity, unit->base);
    if (base && wanted != unit->kind)
        base = otherKind(*base, unit->kind, *gramsPerCup);
    if (!base)
        return std::nullopt;
    return shown(*base, wanted, target);
}

bool IsUnitAmount(const QString &amount, const QString &measure)
{
    return unitOf(measure) && ParseExactAmount(amount);
}

std::optional<ShownAmount> CombineAmounts(const QList<std::pair<QString, QString>> &amountsAndMeasures,
                                          std::optional<Exact> gramsPerCup)
{
    std::optional<Unit> first;
    Exact sum;
    for (const auto &[amount, measure] : amountsAndMeasures) {
        const std::optional<Unit> unit = unitOf(measure);
        const std::optional<Exact> quantity = ParseExactAmount(amount);
        if (!unit || !quantity || (first && unit->kind != first->kind && !gramsPerCup))
            return std::nullopt;
        if (!first)
            first = unit;
        std::optional<Exact> base = times(*quantity, unit->base);
        if (base && unit->kind != first->kind)
            base = otherKind(*base, unit->kind, *gramsPerCup);
        const std::optional<Exact> total = base ? plus(sum, *base) : std::nullopt;
        if (!total)
            return std::nullopt;
        sum = *total;
    }
    if (!first)
        return std::nullopt;
    return shown(sum, first->kind, first->system == System::Metric ? System::Metric : System::US);
}

QString AnnotateTemperatures(const QString &text, MeasureSystem system)
{
    if (system == MeasureSystem::AsWritten)
        return text;
    const bool toF = system == MeasureSystem::US;
    // "350°F", "350 degrees F", "180 C" (a capital alone, in an oven's range), "gas mark 4".
    static const QRegularExpression temperature(
        QStringLiteral("(\\d{2,3})(?:\\s*(?:°|º|degrees?\\s*)([FfCc])\\b|\\s?([FC])\\b)|gas mark (\\d)\\b"),
        QRegularExpression::CaseInsensitiveOption);
    static const int kGasC[] = {140, 150, 160, 180, 190, 200, 220, 230, 240};
    static const int kGasF[] = {275, 300, 325, 350, 375, 400, 425, 450, 475};
    QString out;
    qsizetype last = 0;
    for (auto it = temperature.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        QString other;
        if (!m.captured(4).isEmpty()) {
            const int mark = m.captured(4).toInt();
            if (mark >= 1 && mark <= 9)
                other = toF ? QStringLiteral("%1°F").arg(kGasF[mark - 1]) : QStringLiteral("%1°C").arg(kGasC[mark - 1]);
        } else {
            const QString scale = (m.captured(2) + m.captured(3)).toUpper();
            const int degrees = m.captured(1).toInt();
            const bool plainCapital = m.captured(2).isEmpty();
            const bool oven = scale == u"F" ? degrees >= 200 && degrees <= 550 : degrees >= 90 && degrees <= 290;
            if ((plainCapital && !oven) || (scale == u"F") == toF) {
                continue;
            }
            const double converted = toF ? degrees * 9.0 / 5.0 + 32 : (degrees - 32) * 5.0 / 9.0;
            other = QStringLiteral("%1°%2").arg(qint64(std::round(converted / 5) * 5)).arg(QChar(toF ? u'F' : u'C'));
        }
        if (other.isEmpty())
            continue;
        out += QStringView(text).mid(last, m.capturedEnd() - last);
        out += QStringLiteral(" (") + other + u')';
        last = m.capturedEnd();
    }
    out += QStringView(text).mid(last);
    return out;
}

Densities Densities::fromSettings(const QString &iniPath)
{
    Densities densities;
    for (const QString &line : GetIniSection(iniPath, QStringLiteral("Densities"))) {
        const qsizetype at = line.indexOf(u'=');
        const std::optional<Exact> grams = at > 0 ? ParseExactAmount(line.mid(at + 1)) : std::nullopt;
        if (grams && grams->num > 0)
            densities.m_items.insert(line.left(at), *grams);
    }
    return densities;
}

Densities LoadHouseholdMeasures(const QString &iniPath)
{
    LoadHouseholdUnits(iniPath);
    return Densities::fromSettings(iniPath);
}

std::optional<Exact> Densities::gramsPerCup(const QString &cabinetItem) const
{
    const auto it = m_items.constFind(key(cabinetItem));
    return it == m_items.cend() ? std::nullopt : std::optional<Exact>(*it);
}

QString Densities::key(const QString &cabinetItem)
{
    return cabinetItem.trimmed().toUpper();
}

QString Densities::text(std::optional<Exact> gramsPerCup)
{
    if (!gramsPerCup)
        return {};
    return gramsPerCup->den == 1 ? QString::number(gramsPerCup->num) : QString::number(value(*gramsPerCup), 'g', 10);
}

void LoadHouseholdUnits(const QString &iniPath)
{
    HouseholdUnits &kept = householdUnits();
    const QStringList lines = GetIniSection(iniPath, QStringLiteral("Units"));
    if (lines == kept.lines)
        return;
    kept.lines = lines;
    kept.units.clear();
    // "name = amount unit", the unit one of the table's: "stick = 8 Tbsp", "knob = 15 g".
    static const QRegularExpression entry(QStringLiteral("^(.+?)\\s*=\\s*(\\d[\\d./ ]*?)\\s*([^\\d\\s].*)$"));
    for (const QString &line : lines) {
        const qsizetype at = line.indexOf(u'=');
        const QRegularExpressionMatch m = entry.match(line.mid(at + 1).trimmed());
        if (at < 0 || !m.hasMatch())
            continue;
        const std::optional<Exact> amount = ParseExactAmount(m.captured(2));
        const std::optional<Unit> unit = builtInUnit(m.captured(3));
        const std::optional<Exact> base = amount && unit ? times(*amount, unit->base) : std::nullopt;
        const QString name = m.captured(1).toLower().simplified();
        if (base && base->num > 0 && !builtInUnit(name))
            kept.units.insert(name, Unit {unit->kind, unit->system, *base});
    }
}
