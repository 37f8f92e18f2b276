// The recipe query built from the search criteria, clause by clause.

#include "search/searchquery.h"
#include "support/testhome.h"

#include <QTest>

class TestSearchQuery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exampleQueryText()
    {
        SearchCriteria c;
        c.title = QStringLiteral("pie");
        c.prepTime = QStringLiteral("00:30");
        QCOMPARE(BuildSearchSql(c, SearchContext()),
                 QStringLiteral("SELECT DISTINCT id, title FROM RECIPE A WHERE TRUE AND UCASE(A.title) LIKE '%PIE%' "
                                "AND A.prep_time <= '00:35' AND rating LIKE '%' AND type = 'F' ORDER BY A.title"));
    }

    void everyClauseInOrder()
    {
        SearchCriteria c;
        c.ingredient = QStringLiteral(" baker's yeast ");
        c.title = QStringLiteral("Mom's");
        c.category = QStringLiteral("bread");
        c.prepTime = QStringLiteral("00:58");
        c.cookTime = QStringLiteral("99:58");
        c.rating = QStringLiteral("'**");
        SearchContext ctx;
        ctx.recipeType = QStringLiteral("Drink");
        ctx.onlyNewRecipes = true;
        ctx.maxRecipeId = 120;
        QCOMPARE(
            BuildSearchSql(c, ctx),
            QStringLiteral("SELECT DISTINCT id, title FROM RECIPE A, INGREDIENTS B WHERE A.id = B.recipe_id AND "
                           "UCASE(b.ingredient) LIKE '%BAKER''S YEAST%' AND UCASE(A.title) LIKE '%MOM''S%' "
                           "AND UCASE(A.category) LIKE '%BREAD%' AND A.prep_time <= '01:03'AND A.cook_time <= '100:03' "
                           "AND A.id > 120 AND rating LIKE '**%' AND type = 'D' ORDER BY A.title"));
    }

    void minutesAndSearchText()
    {
        QCOMPARE(AddMinutesToTime(5, QStringLiteral("00:58")), QStringLiteral("01:03"));
        QCOMPARE(AddMinutesToTime(5, QStringLiteral("99:58")), QStringLiteral("100:03"));
        QCOMPARE(AddMinutesToTime(5, QStringLiteral("01:10")), QStringLiteral("01:15"));
        QCOMPARE(AddMinutesToTime(-15, QStringLiteral("01:10")), QStringLiteral("00:55"));
        QCOMPARE(AddMinutesToTime(-15, QStringLiteral("00:10")), QStringLiteral("00:00"));
        QCOMPARE(AddMinutesToTime(5, QStringLiteral("ab:cd")), QStringLiteral("00:05"));
        QString text = QStringLiteral("  Mom's pie ");
        QCOMPARE(PrepareSearchText(text), QStringLiteral("MOM''S PIE"));
        QCOMPARE(text, QStringLiteral("Mom's pie"));
    }
};

QTEST_MAIN(TestSearchQuery)
#include "test_searchquery.moc"
