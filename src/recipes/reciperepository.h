#pragma once
// Storing and reading whole recipes: the RECIPE row with its ingredient and direction lines.

#include "recipedata.h"

#include <QStringList>

// The INSERT statements that store the recipe under the identifier, in order.
QStringList RecipeInsertStatements(const RecipeData &recipe, qint32 id);
// Stores the recipe under the identifier; with replace, the stored recipe of that identifier
// (and so its lines) is deleted first. All or nothing: false when any statement failed.
bool StoreRecipe(const RecipeData &recipe, qint32 id, bool replace);
// Reads a stored recipe; a missing one reads as empty fields and no lines.
RecipeData LoadRecipe(qint32 id);
