#pragma once
// Amounts in the household's units: the measures the household writes mapped onto a table of
// units (volume and mass; US customary, imperial and metric), converted exactly and shown as a
// cook reads them. Recipes keep what was written; conversion is for showing only.
//
// Inside a system the ratios are exact (3 tsp = 1 Tbsp, 16 Tbsp = 1 cup, 16 oz = 1 lb,
// 1000 g = 1 kg); between systems they are the defined ones (1 US tsp = 4.92892159375 ml,
// 1 oz = 28.349523125 g, 1 imperial pint = 568.26125 ml). The arithmetic is on 64-bit
// fractions, apart from the 16-bit fractions of the recipe arithmetic, so no conversion
// overflows.

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
std::optional<ShownAmount> ConvertAmount(const QString &amount, const QString &measure, MeasureSystem system);

// Whether the amount is a number and the measure a known unit: what converts and combines.
bool IsUnitAmount(const QString &amount, const QString &measure);

// Amounts of compatible measures summed into one, in the largest sensible unit of the first
// one's system ("1 1/2 tsp" + "1 Tbsp" is "2 1/2 Tbsp"); nothing when a measure is not a known
// unit of the same kind (volume or mass) or an amount no number.
std::optional<ShownAmount> CombineAmounts(const QList<std::pair<QString, QString>> &amountsAndMeasures);

// The text with each temperature written in it ("350°F", "180 C", "gas mark 4") followed by
// the same in the system's scale, in parentheses; unchanged for AsWritten.
QString AnnotateTemperatures(const QString &text, MeasureSystem system);
