#pragma once
// One recipe as the editor holds it and the database stores it.

#include <QList>
#include <QString>

// An amount or measure left empty; reports and sums leave it out.
inline const QString kUnset = QStringLiteral("---");

struct IngredientLine {
    QString number; // two digits, the line's position
    QString amount;
    QString measure;
    QString ingredient;
    QString cabinet;
};

struct DirectionLine {
    QString step; // two digits, the step's position
    QString direction;
};

struct RecipeData {
    bool exists = true; // false for an identifier with no stored recipe
    QString recipeType; // "Food", "Drink" or "Other"
    QString servings;
    QString category;
    QString title;
    QString prepTime;
    QString cookTime;
    QString notes;
    QString rating;
    QList<IngredientLine> ingredients;
    QList<DirectionLine> directions;
};
