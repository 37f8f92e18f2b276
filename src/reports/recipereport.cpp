#include "recipereport.h"

#include "core/platform/appstate.h"
#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/platform/platform.h"
#include "core/platform/programdir.h"
#include "core/ui/frmstatus.h"

#include <QLabel>
#include "core/ui/msgbox.h"
#include "recipes/reciperepository.h"
#include "core/ui/voicewindows.h"

#include <cmath>

namespace {

const QString kFont = QStringLiteral("Courier New");
const QString kLargeReport =
    QStringLiteral("You have chosen to view/print a large number of recipes.  This may take a while to load.\n"
                   "Would you like to continue?");
const QString kNoTime = QStringLiteral("00:00");

} // namespace

ReportSettings HouseholdReportSettings()
{
    ReportSettings settings;
    settings.baseFontSize = gSettings.BaseFontSize;
    settings.blankLines = gSettings.BlankLines;
    settings.measures = MeasureSystemFromText(gSettings.ShowMeasures);
    if (settings.measures != MeasureSystem::AsWritten)
        settings.densities = LoadHouseholdMeasures(IniPath());
    return settings;
}

int HalfBlankSize(int baseFontSize)
{
    return int(std::nearbyint(baseFontSize / 2.0 - 0.5));
}

void ComposeRecipe(RecipePrinter &p, const RecipeData &r, const ReportSettings &s, int number)
{
    const int b = s.baseFontSize;
    if (number > 0)
        p.AddText(QString::number(number) + QStringLiteral(" - "), kFont, b + 10, true, false);
    p.AddLine(r.title, kFont, b + 10, true, false);
    p.AddLine(QString(), kFont, 9, false, false);
    if (!r.exists)
        return; // deleted meanwhile: an empty heading, and the report goes on
    if (!r.category.isEmpty())
        p.AddLine(QStringLiteral("Category:\t") + r.category, kFont, b + 1, false, false);
    if (s.foodFacts) {
        if (!r.servings.isEmpty())
            p.AddLine(QStringLiteral("Servings:\t") + r.servings, kFont, b + 1, false, false);
        if (r.prepTime != kNoTime)
            p.AddLine(QStringLiteral("Prep Time:\t") + r.prepTime, kFont, b + 1, false, false);
        if (r.cookTime != kNoTime)
            p.AddLine(QStringLiteral("Cook Time:\t") + r.cookTime, kFont, b + 1, false, false);
    }
    p.AddLine(QString(), kFont, 9, false, false);
    if (!r.ingredients.isEmpty()) {
        p.AddLine(QStringLiteral("Ingredients:"), kFont, b + 2, false, true);
        for (const IngredientLine &line : r.ingredients) {
            p.AddText(QStringLiteral("  "), kFont, 9, false, false);
            // Shown in the household's measures, when asked for; the recipe keeps what was written.
            const std::optional<ShownAmount> converted =
                ConvertAmount(line.amount, line.measure, s.measures, s.densities.gramsPerCup(line.cabinet));
            const QString amount = converted ? converted->amount : line.amount;
            const QString measure = converted ? converted->measure : line.measure;
            if (amount != kUnset)
                p.AddText(amount + u' ', kFont, b, false, false);
            if (measure != kUnset)
                p.AddText(measure + u' ', kFont, b, false, false);
            p.AddLine(line.ingredient, kFont, b, false, false);
        }
        p.AddLine(QString(), kFont, 9, false, false);
    }
    if (!r.directions.isEmpty()) {
        p.AddLine(QStringLiteral("Directions:"), kFont, b + 2, false, true);
        for (const DirectionLine &line : r.directions) {
            p.AddText(QStringLiteral("  "), kFont, 9, false, false);
            p.AddText(line.step + u':', kFont, b, true, false);
            p.AddLine(u'\t' + AnnotateTemperatures(line.direction, s.measures), kFont, b, false, false);
            if (s.blankLines)
                p.AddLine(QString(), kFont, HalfBlankSize(b), false, false);
        }
        p.AddLine(QString(), kFont, 9, false, false);
    }
    if (!r.notes.isEmpty()) {
        p.AddLine(QStringLiteral("Notes:"), kFont, b + 2, false, true);
        p.AddLine(r.notes, kFont, b, false, false);
        p.AddLine(QString(), kFont, 9, false, false);
        p.AddLine(QString(), kFont, 9, false, false);
    }
}

void PrintRecipes(const QList<qint32> &ids)
{
    QStringList identifiers;
    for (const qint32 id : ids)
        identifiers.append(QString::number(id));
    PrintRecipes(identifiers);
}

void PrintRecipes(const QStringList &ids)
{
    if (ReportNotConnected())
        return;
    RecipePrinter printer;
    printer.SetFileName(gSettings.Preview);
    const qsizetype n = ids.size();
    if (n > 25 && MsgBox(kLargeReport, Msg::Question, QStringLiteral("Message")) != MsgResult::Yes)
        return;
    const int b = gSettings.BaseFontSize;
    const bool numbered = n >= 2 && gSettings.PageNumbers;
    {
        WaitCursor busy;
        StatusGuard status(QStringLiteral("Loading Recipes..."));
        SetStatusMaximum(int(n));
        if (numbered) {
            printer.AddLine(QStringLiteral("Recipes"), kFont, b + 10, true, false);
            printer.AddLine(QString(), kFont, 9, false, false);
            for (qsizetype i = 0; i < n; ++i) {
                gSQL = QStringLiteral("SELECT * FROM RECIPE WHERE ID = ") + ids[i];
                const Recordset rs = ExecuteSQL(gSQL);
                const QString title = rs && !rs.eof() ? rs.text(QStringLiteral("title")) : QString();
                printer.AddLine(QStringLiteral("  %1.  ").arg(i + 1) + title, kFont, b + 4, false, false);
            }
            printer.StartPage();
        }
        ReportSettings settings = HouseholdReportSettings();
        settings.foodFacts = gRecipeType == u"Food";
        for (qsizetype i = 0; i < n; ++i) {
            RecipeData recipe = LoadRecipe(ids[i]);
            // Steps are printed as the database holds them: 1, not the list's 01.
            for (DirectionLine &line : recipe.directions)
                line.step = QString::number(qint64(Val(line.step)));
            if (gSettings.NewPage && i >= 1)
                printer.StartPage();
            if (frmStatus *window = StatusWindow())
                window->lblMessage->setText(QStringLiteral("Loading Recipes... ") + recipe.title);
            SetStatusProgress(int(i + 1));
            ComposeRecipe(printer, recipe, settings, numbered ? int(i + 1) : 0);
        }
    }
    printer.Show();
}
