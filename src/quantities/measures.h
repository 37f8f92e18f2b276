#pragma once
// Amounts in the household's units: the measures the household writes mapped onto a table of
// units (volume and mass; US customary, imperial and metric; shipped as data in units.txt and
// extended by the household's own list), converted exactly and shown as a cook reads them.
// Recipes keep what was written; conversion is for showing only.
//
// Inside a system the ratios are exact (3 tsp = 1 Tbsp, 16 Tbsp = 1 cup, 16 oz = 1 lb,
// 1000 g = 1 kg); between systems they are the defined ones (1 US tsp = 4.92892159375 ml,
// 1 oz = 28.349523125 g, 1 imperial pint = 568.26125 ml). The arithmetic is on 64-bit
// fractions, apart from the 16-bit fractions of the recipe arithmetic, so no conversion
// overflows.

#include <QHash>
#include <QString>

#include <optional>

enum class MeasureSystem { AsWritten, US, Metric };

// The choice as the settings file keeps it ("", "US", "Metric") and back.
MeasureSystem MeasureSystemFromText(const QString &text);
QString MeasureSystemText(MeasureSystem system);

// An exact fraction, kept in lowest terms with a positive denominator.
struct Exact {
    qint64 num = 0;
    qint64 den = 1;
};
// An amount as recipes write it: "2", "1/2", "1 1/2", "0.75"; nothing for any other text
// ("1-2", "a pinch", "---").
std::optional<Exact> ParseExactAmount(const QString &text);

// An amount and its measure, converted.
struct ShownAmount {
    QString amount;
    QString measure;
};
// The amount and measure as the system shows them: US measures in tsp, Tbsp and cups (or oz and
// lb) with fractions in halves, thirds, quarters and eighths; metric in whole ml and g, or l and
// kg with one decimal. Nothing when the measure is not a known unit, the amount no number, or
// the system AsWritten or the one the measure belongs to already.
// A density, grams in one US cup of the item, lets a volume show as a mass and back: a metric
// household weighs the cup of flour (125 g), a US one measures the 250 g of flour in cups.
std::optional<ShownAmount> ConvertAmount(const QString &amount, const QString &measure, MeasureSystem system,
                                         std::optional<Exact> gramsPerCup = std::nullopt);

// Reads the household's own units from the settings file's [Units] list ("stick = 8 Tbsp",
// "pinch = 1/16 tsp"), for the conversions and sums that follow; read again only when the list
// changed. A name the table already knows keeps the table's meaning.
void LoadHouseholdUnits(const QString &iniPath);

// Whether the amount is a number and the measure a known unit: what converts and combines.
bool IsUnitAmount(const QString &amount, const QString &measure);

// Amounts of compatible measures summed into one, in the largest sensible unit of the first
// one's system ("1 1/2 tsp" + "1 Tbsp" is "2 1/2 Tbsp"); nothing when a measure is not a known
// unit of the same kind (volume or mass) or an amount no number. With the item's density,
// volumes and masses sum too, in the first one's kind.
std::optional<ShownAmount> CombineAmounts(const QList<std::pair<QString, QString>> &amountsAndMeasures,
                                          std::optional<Exact> gramsPerCup = std::nullopt);

// The densities the household has given its cabinet items, kept in the settings file as
// [Densities] "ITEM=grams in one cup" (the item as the cabinet names it, in capitals, since the
// cabinet matches names without regard to case).
class Densities
{
public:
    // Reads the section once.
    static Densities fromSettings(const QString &iniPath);
    std::optional<Exact> gramsPerCup(const QString &cabinetItem) const;
    // The entry's key and value as written into the settings file ("" for no density).
    static QString key(const QString &cabinetItem);
    static QString text(std::optional<Exact> gramsPerCup);

private:
    QHash<QString, Exact> m_items;
};

// The household's own measures, read for a report or a list: its units, kept for the
// conversions and sums that follow, and (returned) the densities of its cabinet items.
Densities LoadHouseholdMeasures(const QString &iniPath);

// The text with each temperature written in it ("350°F", "180 C", "gas mark 4") followed by
// the same in the system's scale, in parentheses; unchanged for AsWritten.
QString AnnotateTemperatures(const QString &text, MeasureSystem system);
