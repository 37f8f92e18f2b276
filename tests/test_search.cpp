// Finding recipes: the query text, the cabinet filter, and the search window's actions.

#include "cabinet/modcabinet.h"
#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "core/db/schema.h"
#include "recipes/searchindexes.h"
#include "recipes/cabinetnames.h"
#include "recipes/frmadd2.h"
#include "recipes/reciperepository.h"
#include "reports/recipeprinter.h"
#include "search/frmsearch.h"
#include "search/searchquery.h"
#include "support/testsupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTest>
#include <QTreeWidget>

namespace {

void store(qint32 id, const QString &title, const QString &type = QStringLiteral("Food"),
           const QString &prep = QStringLiteral("00:30"), const QString &rating = QString(),
           const QStringList &cabinets = {}, const QString &category = QStringLiteral("Desserts"))
{
    QStringList lines;
    for (const QString &cabinet : cabinets)
        lines << QStringLiteral("1|cup|%1, chopped|%1").arg(cabinet);
    RecipeData r = TestRecipe(title, lines, {}, type);
    r.category = category;
    r.prepTime = prep;
    r.cookTime = QStringLiteral("01:00");
    r.rating = rating;
    StoreTestRecipe(r, id);
}

QStringList listed(const frmSearch &s, int column = 1)
{
    return ColumnTexts(s.lvwRecipes, column);
}

// The identifiers a query answers, in its order.
QList<qint64> ids(const QString &sql)
{
    QList<qint64> found;
    for (Recordset rs = ExecuteSQL(sql); rs && !rs.eof(); rs.MoveNext())
        found << rs.integer(0);
    return found;
}

void selectRows(frmSearch &s, const QList<int> &rows)
{
    s.lvwRecipes->clearSelection();
    for (int row : rows)
        s.lvwRecipes->topLevelItem(row)->setSelected(true);
    if (!rows.isEmpty())
        s.lvwRecipes->setCurrentItem(s.lvwRecipes->topLevelItem(rows.first()), 0, QItemSelectionModel::NoUpdate);
}

} // namespace

class TestSearch : public SessionTest
{
    Q_OBJECT

    QList<RecipePrinter> m_previews;

    std::unique_ptr<frmSearch> window()
    {
        auto s = std::make_unique<frmSearch>();
        s->show();
        return s;
    }

private Q_SLOTS:
    void init()
    {
        SessionTest::init();
        m_previews.clear();
        SetPrintPreviewSink([this](const RecipePrinter &p) { m_previews.append(p); });
    }
    void cleanup()
    {
        SetPrintPreviewSink(nullptr);
        SessionTest::cleanup();
    }

    void searchesOnARealDatabase()
    {
        store(1, QStringLiteral("Apple Pie"), QStringLiteral("Food"), QStringLiteral("00:30"), QStringLiteral("***"),
              {"apple", "butter"});
        store(2, QStringLiteral("banana bread"), QStringLiteral("Food"), QStringLiteral("01:10"), QString(),
              {"banana", "apple"});
        store(3, QStringLiteral("Mom's Cherry Pie"), QStringLiteral("Food"), QStringLiteral("00:34"),
              QStringLiteral("*"), {"cherry"});
        store(4, QStringLiteral("Pie Punch"), QStringLiteral("Drink"), QStringLiteral("00:00"), QString(), {"apple"});
        store(5, QStringLiteral("50% Whole Wheat_Loaf"), QStringLiteral("Food"), QStringLiteral("00:20"), QString(), {},
              QStringLiteral("Breads"));
        store(6, QStringLiteral("Борщ"), QStringLiteral("Food"), QStringLiteral("02:00"), QString(), {"beet"},
              QStringLiteral("Soups"));
        auto s = window();
        s->cmdSearch_Click();
        QCOMPARE(listed(*s),
                 (QStringList {"50% Whole Wheat_Loaf", "Apple Pie", "banana bread", "Mom's Cherry Pie", "Борщ"}));
        QCOMPARE(listed(*s, 0).first(), QStringLiteral("0000005"));
        QCOMPARE(s->lblResults->text(), QStringLiteral("Results: 5"));

        s->txtTitle->setText(QStringLiteral("pie"));
        s->txtPrepTime->setText(QStringLiteral("00:30"));
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), (QStringList {"Apple Pie", "Mom's Cherry Pie"})); // 00:34 is within the slack
        s->txtTitle->setText(QStringLiteral("mom's"));
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), QStringList {QStringLiteral("Mom's Cherry Pie")});
        // Enter in a time box searches with the time as the box will show it: "30" is 00:30.
        s->txtTitle->clear();
        s->txtPrepTime->setFocus();
        s->txtPrepTime->setText(QStringLiteral("30"));
        QTest::keyClick(s->txtPrepTime, Qt::Key_Return);
        QCOMPARE(s->txtPrepTime->text(), QStringLiteral("00:30"));
        QCOMPARE(listed(*s), (QStringList {"50% Whole Wheat_Loaf", "Apple Pie", "Mom's Cherry Pie"}));
        s->cmdClear_Click();
        QCOMPARE(s->lblResults->text(), QStringLiteral("Results"));
        QCOMPARE(s->lvwRecipes->topLevelItemCount(), 0);

        s->txtIngredient->setText(QStringLiteral("APPLE"));
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), (QStringList {"Apple Pie", "banana bread"}));
        s->txtIngredient->clear();
        s->cboCategory->setCurrentText(QStringLiteral("bread"));
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), QStringList {QStringLiteral("50% Whole Wheat_Loaf")});
        s->cboCategory->setCurrentText(QString());
        s->cboRating->setCurrentText(QStringLiteral("*"));
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), (QStringList {"Apple Pie", "Mom's Cherry Pie"}));
        s->cboRating->setCurrentText(QString());
        s->txtTitle->setText(QStringLiteral("50%"));
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), QStringList {QStringLiteral("50% Whole Wheat_Loaf")});
        s->txtTitle->setText(QStringLiteral("Борщ"));
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), QStringList {QStringLiteral("Борщ")});
        s->txtTitle->setText(QStringLiteral("x' OR '1'='1"));
        s->cmdSearch_Click();
        QCOMPARE(s->lvwRecipes->topLevelItemCount(), 0);
        QVERIFY(m_boxes->boxes.isEmpty());
    }

    void onlyNewRecipesTellsWhenNothingIsFound()
    {
        store(1, QStringLiteral("Old favourite"));
        store(2, QStringLiteral("New dish"));
        gSettings.OnlyNewRecipes = true;
        gMaxRecipeID = 1;
        auto s = window();
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), QStringList {QStringLiteral("New dish")});
        gMaxRecipeID = 2;
        s->cmdSearch_Click();
        QCOMPARE(
            m_boxes->prompts(),
            QStringList {QStringLiteral(
                "You have the setting checked off to limit the results to only recipes entered after installation.")});
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Confirmation"));
        QCOMPARE(s->lblResults->text(), QStringLiteral("Results: 0"));
    }

    // What the database keeps for the searches answers what walking every line answers, after
    // any mix of saves, imports, deletions, ticks, new, renamed and removed items, repaired lines
    // and changed texts: the recipes the cabinet can make, and those an ingredient text finds.
    void keptIndexesAgreeWithTheirWalks()
    {
        QVERIFY(SearchIndexesAreKept());
        QRandomGenerator random(31);
        const QStringList names {"salt", "SALT", "Flour", "flour", "Épices", "épices", "egg", "", "milk", "oil"};
        const QStringList texts {"Straße Salz", "ſalt flakes",     "SALT, coarse", "Crème fraîche",
                                 "Mom's jam",   "1/2 \"big\" egg", "épices",       "oil"};
        const QStringList types {"F", "D", "O"};
        const auto pick = [&](const QStringList &from) { return from[random.bounded(int(from.size()))]; };
        const auto line = [&] { return QStringLiteral("1|cup|%1|%2").arg(pick(texts), pick(names)); };
        const auto item = [&] { return QStringLiteral("item = '%1' AND type = '%2'").arg(pick(names), pick(types)); };
        int far = 0;
        for (int round = 0; round < 400; ++round) {
            if (far && random.bounded(5) == 0)
                ExecuteSQL(QStringLiteral("UPDATE INGREDIENTS SET ingred_id = ingred_id - 3000 WHERE ingred_id > "
                                          "2000 AND recipe_id = %1")
                               .arg(std::exchange(far, 0)));
            switch (random.bounded(10)) {
            case 9: { // lines renumbered; now and then beyond what the ingredient index holds, for some rounds
                const int id = 1 + random.bounded(40);
                QString shift = QStringLiteral("CASE WHEN ingred_id < 100 THEN 100 ELSE -100 END");
                if (!far && random.bounded(2) == 0) {
                    far = id;
                    shift = QStringLiteral("3000");
                }
                ExecuteSQL(QStringLiteral("UPDATE INGREDIENTS SET ingred_id = ingred_id + %1 WHERE recipe_id = %2")
                               .arg(shift)
                               .arg(id));
                break;
            }
            case 8:
                ExecuteSQL(QStringLiteral("UPDATE INGREDIENTS SET ingredient = '%1' WHERE recipe_id = %2")
                               .arg(pick(texts).replace(u'\'', QStringLiteral("''")))
                               .arg(1 + random.bounded(40)));
                break;
            case 7: { // an import's way: the lines counted at its end, its new names added before
                StatementBatch batch;
                SearchIndexesBulk counted;
                CabinetNames added;
                for (int n = random.bounded(3); n >= 0; --n) {
                    const RecipeData r = TestRecipe(QStringLiteral("I"), {line()});
                    QVERIFY(StoreRecipe(r, 0, false, nullptr, nullptr, false));
                    added.add(r);
                }
                QVERIFY(AddCabinetItems(added).isEmpty() && counted.finish() && batch.commit());
                ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE WHERE ID > 40"));
                break;
            }
            case 0:
            case 1: {
                QStringList lines;
                for (int n = random.bounded(5); n > 0; --n)
                    lines << line();
                const int id = 1 + random.bounded(40);
                ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE WHERE ID = %1").arg(id)); // saved over
                StoreTestRecipe(TestRecipe(QStringLiteral("R"), lines, {}, QStringList {"Food", "Drink"}[round % 2]),
                                id);
                break;
            }
            case 2:
                ExecuteSQL(QStringLiteral("DELETE * FROM RECIPE WHERE ID = %1").arg(1 + random.bounded(40)));
                break;
            case 3:
                ExecuteSQL(QStringLiteral("UPDATE CABINET SET available = %1 WHERE ").arg(random.bounded(2)) + item());
                break;
            case 4:
                ExecuteSQL(QStringLiteral("DELETE * FROM CABINET WHERE ") + item());
                break;
            case 5:
                ExecuteSQL(QStringLiteral("UPDATE CABINET SET item = '%1', available = %2 WHERE ")
                               .arg(pick(names))
                               .arg(random.bounded(2)) +
                           item());
                break;
            default:
                ExecuteSQL(QStringLiteral("UPDATE INGREDIENTS SET cabinet = '%1' WHERE cabinet = '%2'")
                               .arg(pick(names), pick(names)));
            }
            for (const QString &type : types)
                QCOMPARE(KeptAvailableRecipes(type).value(), WalkAvailableRecipes(type));
            // The index narrows the search; written so that it cannot, the search walks the lines.
            const QString text = pick(texts);
            const qsizetype from = random.bounded(int(text.size()));
            SearchCriteria criteria;
            criteria.ingredient = text.mid(from, 1 + random.bounded(int(text.size() - from)));
            if (round % 3 == 0)
                criteria.ingredient = criteria.ingredient.toUpper();
            if (round % 5 == 0) // every recipe of the type
                criteria.ingredient.clear();
            SearchContext context;
            context.recipeType = QStringList {"Food", "Drink"}[round % 2];
            const QString sql = BuildSearchSql(criteria, context);
            const QString walked =
                QString(sql).replace(QStringLiteral("UCASE(b.ingredient)"), QStringLiteral("(b.ingredient || '')"));
            QCOMPARE(ids(sql), ids(walked));
            // The cabinet filter's search reads the recipes kept as available alone: the rows are
            // the search's that walking the lines finds available.
            QList<qint64> narrowed;
            {
                const SearchNarrowing kept(KeptAvailabilityCondition(context.recipeType));
                narrowed = ids(sql);
            }
            const QList<qint32> available = WalkAvailableRecipes(context.recipeType);
            QList<qint64> filtered = ids(walked);
            filtered.removeIf([&](qint64 id) { return !IsRecipeAvailable(available, qint32(id)); });
            QCOMPARE(narrowed, filtered);
        }
    }

    // A collection whose search indexes an earlier version made in another shape has them made
    // again, its old triggers gone with them: one left behind would fail every changed line.
    void indexesOfAnEarlierShapeAreMadeAgain()
    {
        if (gConn().driverName() != u"QSQLITE")
            QSKIP("a server keeps its indexes as they are");
        store(7, QStringLiteral("Paella"), QStringLiteral("Food"), QStringLiteral("00:30"), QString(), {"saffron"});
        QSqlQuery q(gConn());
        QVERIFY(DropSearchIndexes(q));
        for (const char *old :
             {"CREATE TABLE CABINET_AVAILABILITY_PAUSE (from_id INTEGER NOT NULL)",
              "CREATE VIRTUAL TABLE INGREDIENTS_TRIGRAMS USING fts5(lines, tokenize = 'trigram', detail = none)",
              "CREATE TRIGGER INGREDIENTS_TRIGRAMS_line_changed AFTER UPDATE OF ingredient ON INGREDIENTS BEGIN "
              "DELETE FROM INGREDIENTS_TRIGRAMS WHERE rowid IN (SELECT from_id FROM CABINET_AVAILABILITY_PAUSE); END"})
            QVERIFY2(q.exec(QString::fromLatin1(old)), old);
        QVERIFY(!SearchIndexesAreKept());
        QVERIFY(KeepSearchIndexes());
        QVERIFY(SearchIndexesAreKept());
        QVERIFY(q.exec(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name LIKE 'INGREDIENTS_TRIGRAMS%'")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 0);
        SearchCriteria criteria;
        criteria.ingredient = QStringLiteral("Saffron");
        SearchContext context;
        context.recipeType = QStringLiteral("Food");
        QCOMPARE(ids(BuildSearchSql(criteria, context)), QList<qint64> {7});
        QVERIFY(!ExecuteSQL(QStringLiteral("UPDATE INGREDIENTS SET ingredient = 'rice' WHERE recipe_id = 7")).failed());
        QCOMPARE(ids(BuildSearchSql(criteria, context)), QList<qint64> {});
    }

    void cabinetFilter()
    {
        ExecuteSQL("INSERT INTO CABINET VALUES ('apple', 'F', 1)");
        ExecuteSQL("INSERT INTO CABINET VALUES ('butter', 'F', 1)");
        ExecuteSQL("INSERT INTO CABINET VALUES ('banana', 'F', 0)");
        ExecuteSQL("INSERT INTO CABINET VALUES ('cherry', 'D', 1)");
        store(1, QStringLiteral("Apple Pie"), QStringLiteral("Food"), QStringLiteral("00:30"), QString(),
              {"apple", "butter", "", "unknown thing"});
        store(2, QStringLiteral("Banana Bread"), QStringLiteral("Food"), QStringLiteral("00:30"), QString(),
              {"banana", "apple"});
        store(3, QStringLiteral("Cherry Pie"), QStringLiteral("Food"), QStringLiteral("00:30"), QString(), {"cherry"});
        store(4, QStringLiteral("Apple Tart"), QStringLiteral("Food"), QStringLiteral("00:30"), QString(), {"Apple"});
        // Saving put the new names in the cabinet, as not at hand.
        QCOMPARE(BuildAvailableRecipeList(QStringLiteral("Food")), (QList<qint32> {4}));
        // Names the household took out of the cabinet do not keep a recipe out.
        ExecuteSQL("DELETE * FROM CABINET WHERE item = 'unknown thing' OR item = ''");
        QCOMPARE(BuildAvailableRecipeList(QStringLiteral("Food")), (QList<qint32> {1, 4}));
        QVERIFY(IsRecipeAvailable({1, 4, 9}, 4));
        QVERIFY(!IsRecipeAvailable({1, 4, 9}, 5));
        QVERIFY(!IsRecipeAvailable({}, 1));

        // Two cabinet rows for one ingredient: satisfied when either is available.
        ExecuteSQL("INSERT INTO CABINET VALUES ('banana', 'D', 1)");
        QCOMPARE(BuildAvailableRecipeList(QStringLiteral("Food")), (QList<qint32> {1, 4}));
        auto s = window();
        s->chkCabinet->setChecked(true);
        s->cmdSearch_Click();
        QCOMPARE(listed(*s), (QStringList {"Apple Pie", "Apple Tart"}));
        QCOMPARE(s->lblResults->text(), QStringLiteral("Results: 2"));
    }

    void typesCategoriesAndTimes()
    {
        auto s = window();
        QCOMPARE(gSubWindows, qint16(1));
        QCOMPARE(s->windowTitle(), QStringLiteral("Food - Recipe Search"));
        QVERIFY(s->txtPrepTime->isEnabled());
        s->cboRecipeType->setCurrentText(QStringLiteral("Other"));
        s->cboRecipeType_Click();
        QCOMPARE(gRecipeType, QStringLiteral("Other"));
        QCOMPARE(s->windowTitle(), QStringLiteral("Other - Recipe Search"));
        QVERIFY(s->cboCategory->findText(QStringLiteral("Cocktails")) >= 0); // the drink categories
        QVERIFY(!s->txtPrepTime->isEnabled());
        QVERIFY(!s->txtCookTime->isEnabled());
        s->txtCookTime->setText(QStringLiteral("130"));
        s->txtCookTime_LostFocus();
        QCOMPARE(s->txtCookTime->text(), QStringLiteral("01:30"));
        s->txtPrepTime->setText(QStringLiteral("soon"));
        s->txtPrepTime_LostFocus();
        QCOMPARE(s->txtPrepTime->text(), QStringLiteral("00:00"));
        s->txtPrepTime->clear();
        s->txtPrepTime_LostFocus();
        QCOMPARE(s->txtPrepTime->text(), QString()); // no limit stays no limit
        s->close();
        QCOMPARE(gSubWindows, qint16(0));
    }

    void orderAndIncrementalFind()
    {
        store(3, QStringLiteral("Cake"));
        store(1, QStringLiteral("Bread"));
        store(2, QStringLiteral("Apple Pie"));
        store(4, QStringLiteral("Dumplings"));
        for (int i = 10; i < 50; ++i) // enough to scroll
            store(i, QStringLiteral("Zucchini %1").arg(i));
        auto s = window();
        s->resize(600, 300);
        s->cmdSearch_Click();
        QCOMPARE(listed(*s).mid(0, 5), (QStringList {"Apple Pie", "Bread", "Cake", "Dumplings", "Zucchini 10"}));
        s->lvwRecipes_ColumnClick();
        QCOMPARE(listed(*s).mid(0, 4), (QStringList {"Bread", "Apple Pie", "Cake", "Dumplings"}));
        QCOMPARE(s->lvwRecipes->headerItem()->text(1),
                 QStringLiteral("Recipe Title: Ordered recipes were entered (click to change)"));
        s->lvwRecipes_ColumnClick();
        QCOMPARE(listed(*s).mid(0, 4), (QStringList {"Apple Pie", "Bread", "Cake", "Dumplings"}));
        QCOMPARE(s->lvwRecipes->headerItem()->text(1),
                 QStringLiteral("Recipe Title: Alphabetical order (click to change)"));

        // The complete title of an item brings the following one to the top.
        s->txtFind->setText(QStringLiteral("bread"));
        QCOMPARE(s->lvwRecipes->itemAt(2, 2)->text(1), QStringLiteral("Cake"));
        s->txtFind->setText(QStringLiteral("a"));
        QCOMPARE(s->lvwRecipes->itemAt(2, 2)->text(1), QStringLiteral("Apple Pie"));
        SaveScreenshot(s.get(), QStringLiteral("frmSearch"));
    }

    void deletingTheFirstAndThirdOfThree()
    {
        store(1, QStringLiteral("A one"), QStringLiteral("Food"), QStringLiteral("00:30"), QString(), {"x"});
        store(2, QStringLiteral("B two"), QStringLiteral("Food"), QStringLiteral("00:30"), QString(), {"y"});
        store(3, QStringLiteral("C three"), QStringLiteral("Food"), QStringLiteral("00:30"), QString(), {"z"});
        auto s = window();
        s->cmdSearch_Click();
        s->cmdDelete_Click();
        QCOMPARE(m_boxes->prompts(), QStringList {QStringLiteral("You must select a recipe to Delete!")});
        m_boxes->clear();
        selectRows(*s, {0, 1, 2});
        m_boxes->answer(MsgResult::Yes);
        m_boxes->answer(MsgResult::No);
        m_boxes->answer(MsgResult::Yes);
        s->cmdDelete_Click();
        QCOMPARE(m_boxes->prompts().first(),
                 QStringLiteral("Are you sure you want to permanently delete 'A one' from the Pantrio?"));
        QVERIFY(m_boxes->boxes.first().style.defaultNo);
        QCOMPARE(listed(*s), QStringList {QStringLiteral("B two")});
        QCOMPARE(s->lblResults->text(), QStringLiteral("Results: 1"));
        const Recordset rs = ExecuteSQL("SELECT count(*) FROM RECIPE");
        QCOMPARE(rs.value(0).toInt(), 1);
        QCOMPARE(ExecuteSQL("SELECT count(*) FROM INGREDIENTS").value(0).toInt(), 1);
        QCOMPARE(ExecuteSQL("SELECT recipe_id FROM INGREDIENTS").value(0).toInt(), 2);

        // Declining every confirmation changes nothing.
        selectRows(*s, {0});
        m_boxes->answer(MsgResult::No);
        s->cmdDelete_Click();
        QCOMPARE(listed(*s), QStringList {QStringLiteral("B two")});
    }

    void selectionModeHandsBackTheChosenRecipes()
    {
        store(7, QStringLiteral("Soup"));
        store(12, QStringLiteral("Salad"));
        store(30, QStringLiteral("Stew"));
        m_boxes->onModal([](QDialog *d) {
            auto *s = static_cast<frmSearch *>(d);
            QCOMPARE(s->cmdClose->text(), QStringLiteral("S&elect"));
            QVERIFY(s->cmdEdit->isHidden() && s->cmdView->isHidden() && s->cmdDelete->isHidden());
            s->cmdSearch_Click();
            selectRows(*s, {0, 2});
            s->lvwRecipes_DblClick(); // a double-click selects in this mode
        });
        QCOMPARE(ChooseRecipes(), (QStringList {"0000012", "0000030"}));
        QCOMPARE(gSubWindows, qint16(0));
    }

    void viewEditAndDoubleClick()
    {
        store(2, QStringLiteral("Bread"));
        auto s = window();
        s->cmdSearch_Click();
        s->cmdView_Click();
        s->cmdEdit_Click();
        QCOMPARE(m_boxes->prompts(),
                 (QStringList {"You must select a recipe to View/Print!", "You must select a recipe to Edit/Copy!"}));
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Error"));
        selectRows(*s, {0});
        s->lvwRecipes_DblClick(); // RecipeView is on: view
        QCOMPARE(m_previews.size(), 1);
        QCOMPARE(m_previews[0].lines().first().text(), QStringLiteral("Bread"));
        gSettings.RecipeView = false;
        s->lvwRecipes_DblClick(); // off: edit
        frmAdd2 *editor = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *e = qobject_cast<frmAdd2 *>(w))
                editor = e;
        QVERIFY(editor);
        QVERIFY(editor->EditMode);
        QCOMPARE(editor->RecipeID, 2);
        QCOMPARE(editor->windowTitle().isEmpty(), false);
        QCOMPARE(gSubWindows, qint16(2));
        editor->close();
    }
};

QTEST_MAIN(TestSearch)
#include "test_search.moc"
