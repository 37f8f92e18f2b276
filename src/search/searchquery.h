#pragma once
// The recipe query built from the search window's criteria.

#include <QString>

struct SearchCriteria {
    QString title;
    QString category;
    QString ingredient;
    QString prepTime; // the longest preparation time, hh:mm
    QString cookTime;
    QString rating; // a rating prefix
};

struct SearchContext {
    QString recipeType = QStringLiteral("Food");
    bool onlyNewRecipes = false;
    qint32 maxRecipeId = 0;
};

// A search criterion made ready for a LIKE pattern: trimmed (the caller's text too), its
// apostrophes doubled, in upper case.
QString PrepareSearchText(QString &text);
// The query text, clause by clause in the window's fixed order.
QString BuildSearchSql(SearchCriteria criteria, const SearchContext &context);
// Adds minutes to a time hh:mm with one carry of the hour ("00:58" plus 5 is "01:03",
// "99:58" plus 5 is "100:03"); a time before midnight becomes "00:00".
QString AddMinutesToTime(int minutes, const QString &time);
