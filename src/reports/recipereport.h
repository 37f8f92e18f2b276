#pragma once
// The printed recipe: one or many recipes composed for the preview.

#include "recipeprinter.h"
#include "quantities/measures.h"
#include "recipes/recipedata.h"

#include <QList>
#include <QStringList>

struct ReportSettings {
    int baseFontSize = 9;
    bool blankLines = true;
    bool foodFacts = true; // servings and times are printed for Food only
    MeasureSystem measures = MeasureSystem::AsWritten; // amounts and temperatures shown converted
    Densities densities; // the weight of a cup of the cabinet items that have one
};
// The household's settings for the report, read once.
ReportSettings HouseholdReportSettings();

// Composes one recipe. A number above 0 is printed before the title (numbered reports).
void ComposeRecipe(RecipePrinter &printer, const RecipeData &recipe, const ReportSettings &settings, int number = 0);
// The report of the stored recipes, in the given order, handed to the preview. The menu
// planner hands the identifiers as its keys spell them, and they go into the statements as
// they stand.
void PrintRecipes(const QStringList &identifiers);
void PrintRecipes(const QList<qint32> &ids);
// The size of the blank between directions: half the base size less a half, rounded to even.
int HalfBlankSize(int baseFontSize);
