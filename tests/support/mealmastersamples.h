#pragma once
// What the MealMaster tests share: a sample file in the format's common layout and the recipe
// as the reader makes it.

#include "testhome.h"
#include "transfer/mealmaster.h"

// A recipe as the reader makes it: Food, no times, cabinet names from the ingredient.
inline RecipeData imported(const QString &title, const QStringList &lines, const QStringList &steps)
{
    RecipeData r = TestRecipe(title, lines, steps);
    r.prepTime = r.cookTime = QStringLiteral("00:00");
    for (IngredientLine &line : r.ingredients)
        line.cabinet = MealMasterCabinetName(line.ingredient);
    return r;
}

inline const char kPie[] = "MMMMM----- Recipe via Meal-Master (tm) v8.05\n"
                           "\n"
                           "      Title: Apple Pie\n"
                           " Categories: Desserts, Pies\n"
                           "      Yield: 8 servings\n"
                           "\n"
                           "      2 c  Flour, sifted\n"
                           "  1 1/2 ts Salt\n"
                           "    1/2 lb Butter; cold and cut into\n"
                           "           -small pieces\n"
                           "      6    Apples\n"
                           "      1    clove Garlic\n"
                           "           Cinnamon\n"
                           "\n"
                           "MMMMM---------------------------TOPPING-------------------------------\n"
                           "    1-2 zz Sugar\n"
                           "\n"
                           "  Rub the butter into the flour\n"
                           "  and salt.\n"
                           "\n"
                           "  Bake at 190 C.\n"
                           "\n"
                           "MMMMM\n";
