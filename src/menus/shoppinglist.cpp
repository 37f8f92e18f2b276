#include "shoppinglist.h"

#include "core/platform/programdir.h"

#include "core/ui/voicewindows.h"
#include "core/platform/appstate.h"
#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/ui/msgbox.h"
#include "quantities/cfraction.h"
#include "quantities/measures.h"
#include "recipes/recipedata.h"
#include "reports/recipeprinter.h"

#include <QList>

#include <algorithm>

namespace {

const QString kFont = QStringLiteral("Courier New");
constexpr quint32 kRed = 255;

struct NeededRow {
    QString cabinet;
    QString amount;
    QString measure;
    QString type; // of the recipe, whose cabinet tells whether the item is at hand
};

QString measureKey(QString measure)
{
    measure.remove(u'.');
    measure.remove(QStringLiteral("(s)"));
    return measure.toUpper();
}

void heading(RecipePrinter &printer, const QString &text)
{
    const int b = gSettings.BaseFontSize;
    printer.AddLine(text, kFont, b + 10, true, false);
    printer.AddLine(QString(), kFont, 9, false, false);
}

// The amounts of one item: a sum per run of one measure, the unset measure's runs dropped.
QString amountsOf(const QList<NeededRow> &rows, qsizetype from, qsizetype to)
{
    QString amounts;
    for (qsizetype i = from; i < to;) {
        const QString measure = rows[i].measure;
        cFraction sum;
        sum.setStringValue(QStringLiteral("0/1"));
        for (; i < to && SameMeasure(measure, rows[i].measure); ++i) {
            cFraction amount;
            amount.setStringValue(rows[i].amount);
            sum.Add(amount);
        }
        if (measure != kUnset)
            amounts += sum.StringValue() + u' ' + measure + QStringLiteral(" + ");
    }
    return amounts;
}

// As amountsOf, but the amounts whose measures convert into one another summed into one amount
// first, in the largest sensible unit; the others follow as amountsOf lists them.
QString combinedAmountsOf(const QList<NeededRow> &rows, qsizetype from, qsizetype to, std::optional<Exact> gramsPerCup)
{
    QList<std::pair<QString, QString>> convertible;
    QList<NeededRow> others;
    for (qsizetype i = from; i < to; ++i) {
        if (IsUnitAmount(rows[i].amount, rows[i].measure))
            convertible.append({rows[i].amount, rows[i].measure});
        else
            others.append(rows[i]);
    }
    const std::optional<ShownAmount> sum =
        convertible.size() > 1 ? CombineAmounts(convertible, gramsPerCup) : std::nullopt;
    if (!sum)
        return amountsOf(rows, from, to);
    return sum->amount + u' ' + sum->measure + QStringLiteral(" + ") + amountsOf(others, 0, others.size());
}

} // namespace

QString IdListText(const QStringList &ids)
{
    const QString joined = ids.join(QStringLiteral(", ")) + QStringLiteral(", ");
    return joined.size() >= 3 ? joined.chopped(2) : QStringLiteral("-1");
}

bool SameMeasure(const QString &a, const QString &b)
{
    const QString x = measureKey(a);
    const QString y = measureKey(b);
    return x.contains(y) || y.contains(x);
}

void ShowShoppingList(const QString &nodeText, const QStringList &ids)
{
    if (ReportNotConnected())
        return;
    RecipePrinter printer;
    {
        WaitCursor busy;
        printer.SetFileName(gSettings.Preview);
        Recordset rs = ExecuteSQL(
            QStringLiteral("SELECT B.cabinet FROM RECIPE A, INGREDIENTS B, CABINET C WHERE C.type = A.type AND "
                           "C.available = FALSE AND ucase(C.item) = ucase(B.cabinet) AND A.ID = B.recipe_id AND "
                           "A.ID IN (") +
            IdListText(ids) + QStringLiteral(") ORDER BY B.cabinet"));
        if (!rs || rs.eof()) {
            MsgBox(QStringLiteral("You have all necessary ingredients for ") + nodeText +
                       QStringLiteral(" available in your cabinet!"),
                   Msg::Ok, QStringLiteral("Message"));
            return;
        }
        heading(printer, QStringLiteral("Shopping List for ") + nodeText + u':');
        const int b = gSettings.BaseFontSize;
        QString previous;
        bool first = true;
        for (; !rs.eof(); rs.MoveNext()) {
            const QString item = rs.text(0);
            const QString upper = item.toUpper();
            if (!first && upper == previous)
                continue;
            first = false;
            previous = upper;
            printer.AddText(QStringLiteral("  *  ") + item, kFont, b + 4, false, false);
            printer.AddLine(QString(), kFont, 9, false, false);
        }
    }
    printer.Show();
}

void ShowNeededAmounts(const QString &nodeText, const QStringList &ids)
{
    if (ReportNotConnected())
        return;
    RecipePrinter printer;
    {
        WaitCursor busy;
        printer.SetFileName(gSettings.Preview);
        QList<NeededRow> rows;
        for (Recordset rs =
                 ExecuteSQL(QStringLiteral("SELECT B.cabinet, B.amount, B.measure, A.type FROM RECIPE A, INGREDIENTS "
                                           "B WHERE A.ID = B.recipe_id AND A.ID IN (") +
                            IdListText(ids) + QStringLiteral(") ORDER BY B.cabinet, B.measure DESC"));
             rs && !rs.eof(); rs.MoveNext())
            rows.append({rs.text(0), rs.text(1), rs.text(2), rs.text(3)});
        if (rows.isEmpty()) {
            MsgBox(QStringLiteral("There are no ingredients in the recipes of the group ") + nodeText + u'!', Msg::Ok,
                   QStringLiteral("Message"));
            return;
        }
        heading(printer, QStringLiteral("Needed Ingredient Amounts for ") + nodeText + u':');
        const int b = gSettings.BaseFontSize;
        const Densities densities = gSettings.CombineMeasures ? LoadHouseholdMeasures(IniPath()) : Densities();
        for (qsizetype first = 0; first < rows.size();) {
            const QString item = rows[first].cabinet;
            const QString upper = item.toUpper();
            qsizetype end = first + 1;
            while (end < rows.size() && rows[end].cabinet.toUpper() == upper)
                ++end;
            QString amounts = gSettings.CombineMeasures
                                ? combinedAmountsOf(rows, first, end, densities.gramsPerCup(item))
                                : amountsOf(rows, first, end);
            // At hand when the cabinet of each recipe type that needs it holds it, as the
            // shopping list judges.
            QStringList types;
            for (qsizetype k = first; k < end; ++k)
                if (!types.contains(rows[k].type, Qt::CaseInsensitive))
                    types << rows[k].type;
            first = end;

            printer.AddText(QStringLiteral("  *  ") + item, kFont, b + 4, false, false);
            const bool atHand = std::all_of(types.cbegin(), types.cend(), [&item](const QString &type) {
                const Recordset available =
                    ExecuteSQL(QStringLiteral("SELECT * FROM CABINET WHERE item = '") + item +
                               QStringLiteral("' AND available = TRUE AND type = '") + type + u'\'');
                return available && !available.eof();
            });
            if (amounts.size() < 4)
                amounts = QStringLiteral("N/A   ");
            amounts.chop(3);
            if (!atHand)
                printer.AddText(QStringLiteral("  -  (") + amounts + QStringLiteral(") *"), kFont, 10, true, true,
                                false, kRed);
            else
                printer.AddText(QStringLiteral("  -  (") + amounts + u')', kFont, 10, false, false);
            printer.AddLine(QString(), kFont, 9, false, false);
        }
        printer.AddLine(QStringLiteral("* Bold, Italic, Red Amounts mean you are out of this item!\r\n"), kFont, 9,
                        true, true, false, kRed);
    }
    printer.Show();
}
