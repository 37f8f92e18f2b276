#pragma once
// Realistic recipe databases for the benchmarks.

#include <QString>

// Creates the database file from the shipped schema and fills it with n recipes of 4 to 16
// ingredients and 3 to 10 directions each, plus the cabinet rows their ingredients name.
void GenerateRecipeDatabase(const QString &path, int recipes);

// Prints one figure as "name: value unit", with the goal when there is one.
void PrintFigure(const char *name, double value, const char *unit, const char *goal = nullptr);
// The median of a list of samples.
double Median(QList<double> samples);
