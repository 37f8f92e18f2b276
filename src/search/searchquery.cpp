#include "searchquery.h"

#include "core/db/database.h"
#include "core/platform/platform.h"

#include <cmath>

QString PrepareSearchText(QString &text)
{
    text = Trim(text);
    QString prepared = text;
    prepared.replace(u'\'', QStringLiteral("''"));
    return prepared.toUpper();
}

QString AddMinutesToTime(int minutes, const QString &time)
{
    double hours = Val(time.mid(0, 2));
    double total = std::nearbyint(Val(time.mid(3, 2)) + minutes);
    if (total < 0) {
        hours -= 1;
        total += 60;
    } else if (total >= 60) {
        hours += 1;
        total -= 60;
    }
    if (hours < 0) {
        hours = 0;
        total = 0;
    }
    return Format(qint64(hours), QStringLiteral("00")) + u':' + Format(qint64(total), QStringLiteral("00"));
}

QString BuildSearchSql(SearchCriteria c, const SearchContext &context)
{
    QString sql;
    if (!c.ingredient.isEmpty()) {
        sql = QStringLiteral("SELECT DISTINCT id, title FROM RECIPE A, ") +
              QStringLiteral("INGREDIENTS B WHERE A.id = B.recipe_id AND ") +
              QStringLiteral("UCASE(b.ingredient) LIKE '%") + PrepareSearchText(c.ingredient) + QStringLiteral("%' ");
    } else {
        sql = QStringLiteral("SELECT DISTINCT id, title FROM RECIPE A WHERE TRUE ");
    }
    if (!c.title.isEmpty())
        sql += QStringLiteral("AND UCASE(A.title) LIKE '%") + PrepareSearchText(c.title) + QStringLiteral("%' ");
    if (!c.category.isEmpty())
        sql += QStringLiteral("AND UCASE(A.category) LIKE '%") + PrepareSearchText(c.category) + QStringLiteral("%' ");
    // Times compare as text, which works because they keep two-digit hours; five minutes of
    // slack let a recipe just over the limit through.
    if (!c.prepTime.isEmpty())
        sql += QStringLiteral("AND A.prep_time <= '") + AddMinutesToTime(5, c.prepTime.remove(u'\'')) + u'\'';
    if (!c.cookTime.isEmpty())
        sql += QStringLiteral("AND A.cook_time <= '") + AddMinutesToTime(5, c.cookTime.remove(u'\'')) + u'\'';
    if (context.onlyNewRecipes)
        sql += QStringLiteral(" AND A.id > ") + QString::number(context.maxRecipeId);
    sql += QStringLiteral(" AND rating LIKE '") + c.rating.remove(u'\'') + QStringLiteral("%'");
    sql += QStringLiteral(" AND type = '") + context.recipeType.left(1) + QStringLiteral("' ORDER BY A.title");
    return sql;
}
