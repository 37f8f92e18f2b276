// Viewing the recipe as it stands in the editor, saved or not: as it would print, or at the
// stove.

#include "frmadd2.h"
#include "frmcook.h"

#include "core/platform/appstate.h"
#include "reports/recipereport.h"

void frmAdd2::cmdView_Click()
{
    RecipePrinter printer;
    printer.SetFileName(gSettings.Preview);
    ReportSettings settings = HouseholdReportSettings();
    // The editor's own type decides, not the program's current one.
    settings.foodFacts = RecipeType == u"Food";
    ComposeRecipe(printer, CurrentRecipe(), settings);
    printer.Show();
}

void frmAdd2::cmdCook_Click()
{
    ShowCookingMode(CurrentRecipe(), EditMode ? RecipeID : 0);
}
