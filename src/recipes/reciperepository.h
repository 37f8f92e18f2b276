#pragma once
// Storing and reading whole recipes: the RECIPE row with its ingredient and direction lines.

#include "recipedata.h"

#include <QStringList>

// The INSERT statements that store the recipe under the identifier, in order.
QStringList RecipeInsertStatements(const RecipeData &recipe, qint32 id);
// Stores the recipe under the identifier, and its new cabinet names in the cabinet; with replace, the stored recipe of
// that identifier (and so its lines) is deleted first. All or nothing: the stored recipe is read back before the
// commit, and when any statement failed or any text differs from the recipe given, nothing is kept, false is returned
// and problem (when given) says which text and why. Identifier 0 stores a new recipe under the next free identifier,
// taken inside the same commit so that no other writer can take it meanwhile; storedId says which it was. A caller that
// stores many recipes in one batch may add the cabinet names once, at its end.
bool StoreRecipe(const RecipeData &recipe, qint32 id, bool replace, QString *problem = nullptr,
                 qint32 *storedId = nullptr, bool addCabinetNames = true);
// Why a recipe cannot be stored as it stands, naming the text; "" when nothing is known.
// An apostrophe that touches a comma or a parenthesis is taken for the end of its text.
QString UnstorableText(const RecipeData &recipe);
// Reads a stored recipe; a missing one reads as empty fields and no lines.
RecipeData LoadRecipe(qint32 id);
// The same for an identifier as the menu tree's keys spell it, put into the statements as it
// stands; one that is no number is reported as the database refuses it, and reads as no recipe.
RecipeData LoadRecipe(const QString &identifier);
// Deletes the recipe with its lines, all or nothing. False when it was not deleted; problem
// (when given) then says why in the household's words, or is empty after a failure that the
// database has already reported.
bool DeleteRecipe(qint32 id, QString *problem = nullptr);
