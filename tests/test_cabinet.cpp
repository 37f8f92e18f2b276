// The cabinet: the window's ticks, items and listing, the tools that keep it in step with the
// recipes, and the search for what can be made from it.

#include "cabinet/cabinettools.h"
#include "cabinet/stem.h"
#include "cabinet/frmcabinet.h"
#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "recipes/cabinetnames.h"
#include "recipes/reciperepository.h"
#include "reports/recipeprinter.h"
#include "search/frmsearch.h"
#include "core/platform/modini.h"
#include "quantities/measures.h"
#include "support/testsupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QTest>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

// Puts the item in the cabinet, or marks the one a recipe's save put there.
void addItem(const char *item, const char *type, bool available = false)
{
    const QString where =
        QStringLiteral(" WHERE item = '%1' AND type = '%2'").arg(QLatin1String(item), QLatin1String(type));
    if (QueryNumber(QStringLiteral("SELECT count(*) FROM CABINET") + where) > 0)
        ExecuteSQL(QStringLiteral("UPDATE CABINET SET available = %1").arg(available ? 1 : 0) + where);
    else
        ExecuteSQL(QStringLiteral("INSERT INTO CABINET VALUES ('%1', '%2', %3)")
                       .arg(QLatin1String(item), QLatin1String(type))
                       .arg(available ? 1 : 0));
}

// The cabinet of a type as "item" or "item*" (available), in item order.
QStringList cabinet(const char *type)
{
    QStringList items;
    for (Recordset rs = ExecuteSQL(QStringLiteral("SELECT item, available FROM CABINET WHERE type = '%1' ORDER BY item")
                                       .arg(QLatin1String(type)));
         rs && !rs.eof(); rs.MoveNext())
        items.append(rs.text(0) + (rs.integer(1) ? QStringLiteral("*") : QString()));
    return items;
}

QStringList shown(const frmCabinet &w)
{
    QStringList items;
    for (int i = 0; i < w.lvwCabinet->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *item = w.lvwCabinet->topLevelItem(i);
        items.append(item->text(0) + (item->checkState(0) == Qt::Checked ? QStringLiteral("*") : QString()));
    }
    return items;
}

void selectItems(frmCabinet &w, const QStringList &names)
{
    w.lvwCabinet->clearSelection();
    for (int i = 0; i < w.lvwCabinet->topLevelItemCount(); ++i) {
        QTreeWidgetItem *item = w.lvwCabinet->topLevelItem(i);
        if (names.contains(item->text(0))) {
            item->setSelected(true);
            w.lvwCabinet->setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
        }
    }
}

void storeRecipe(qint32 id, const char *type, const QStringList &lines)
{
    StoreTestRecipe(TestRecipe(QStringLiteral("Recipe %1").arg(id), lines, {}, QLatin1String(type)), id);
}

} // namespace

class TestCabinet : public SessionTest
{
    Q_OBJECT

    QList<RecipePrinter> m_printed;

private Q_SLOTS:
    void init()
    {
        SessionTest::init();
        m_printed.clear();
        SetPrintPreviewSink([this](const RecipePrinter &p) { m_printed.append(p); });
    }
    void cleanup()
    {
        SetPrintPreviewSink(nullptr);
        SessionTest::cleanup();
    }

    void stems_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("stem");
        QTest::newRow("comma") << u"onion, chopped"_s << u"onion"_s;
        QTest::newRow("parenthesis") << u"tomatoes (canned)"_s << u"tomatoes"_s;
        QTest::newRow("or") << u"salt or pepper"_s << u"salt"_s;
        QTest::newRow("OR in any case") << u"bread OR rolls"_s << u"bread"_s;
        QTest::newRow("too short a stem") << u"1-2 eggs"_s << u"1-2 eggs"_s;
        QTest::newRow("slash, trimmed") << u"  rice / beans"_s << u"rice"_s;
        QTest::newRow("the first delimiter counts") << u"flour (plain), sifted"_s << u"flour"_s;
        QTest::newRow("delimiter at the end") << u"garlic-"_s << u"garlic-"_s;
        QTest::newRow("no delimiter") << u"  Crème fraîche "_s << u"Crème fraîche"_s;
    }
    void stems()
    {
        QFETCH(QString, text);
        QFETCH(QString, stem);
        QCOMPARE(StripToDelimiter(text), stem);
    }

    void ticksAreSavedAndSurviveATypeSwitch()
    {
        addItem("salt", "F");
        addItem("pepper", "F", true);
        addItem("lime", "D");
        frmCabinet w;
        w.show();
        QCOMPARE(gSubWindows, qint16(1));
        QCOMPARE(w.cboRecipeType->currentText(), QStringLiteral("Food"));
        QCOMPARE(shown(w), (QStringList {"pepper*", "salt"}));
        SaveScreenshot(&w, QStringLiteral("frmCabinet"));
        w.lvwCabinet->topLevelItem(1)->setCheckState(0, Qt::Checked); // by the user
        QVERIFY(w.changed());
        w.cboRecipeType->setCurrentIndex(1);
        w.cboRecipeType_Click();
        QCOMPARE(cabinet("F"), (QStringList {"pepper*", "salt*"}));
        QCOMPARE(shown(w), QStringList {QStringLiteral("lime")});
        QCOMPARE(gRecipeType, QStringLiteral("Drink"));
        QVERIFY(!w.changed());
        w.close(); // nothing unsaved: no question
        QCOMPARE(gSubWindows, qint16(0));
    }

    // The window keeps its own type: the main window switching to Drink meanwhile changes
    // nothing here.
    void theWindowWorksOnItsOwnType()
    {
        frmCabinet w;
        w.show();
        gRecipeType = QStringLiteral("Drink");
        m_boxes->answerInput(QStringLiteral("basil"));
        w.cmdAdd_Click();
        w.lvwCabinet->topLevelItem(0)->setCheckState(0, Qt::Checked);
        w.cmdSave_Click();
        QCOMPARE(cabinet("F"), QStringList {QStringLiteral("basil*")});
        QCOMPARE(cabinet("D"), QStringList());
        // Clean from the window asks before it saves unsaved ticks; No leaves them unsaved.
        w.lvwCabinet->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
        m_boxes->answer(MsgResult::No);
        w.cmdClean_Click();
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("You have not saved your changes.\n\nSave them before the cabinet is cleaned?"));
        QCOMPARE(cabinet("F"), QStringList {QStringLiteral("basil*")});
        QVERIFY(w.changed());
        m_boxes->answer(MsgResult::Yes); // close without saving
        w.close();
    }

    // Two computers on one collection: each save writes only the ticks changed in its own
    // window, so neither undoes the other's.
    void aSaveWritesOnlyTheTicksChangedHere()
    {
        for (const char *item : {"a", "b", "c"})
            addItem(item, "F");
        frmCabinet w;
        w.show();
        // Another computer (another process on the same collection) ticks b.
        QVERIFY(RunElsewhere({QStringLiteral("UPDATE CABINET SET available = TRUE WHERE item = 'b' AND type = 'F'")}));
        w.lvwCabinet->topLevelItem(0)->setCheckState(0, Qt::Checked); // a, here
        w.cmdSave_Click();
        QCOMPARE(cabinet("F"), (QStringList {"a*", "b*", "c"}));
        QVERIFY(RunElsewhere({QStringLiteral("UPDATE CABINET SET available = TRUE WHERE item = 'c' AND type = 'F'")}));
        w.cmdSave_Click(); // nothing changed here since: nothing written
        QCOMPARE(cabinet("F"), (QStringList {"a*", "b*", "c*"}));
        w.close();
    }

    void tickButtons()
    {
        for (const char *item : {"a", "b", "c", "d"})
            addItem(item, "F");
        frmCabinet w;
        w.show();
        w.cmdAll_Click();
        QCOMPARE(shown(w), (QStringList {"a*", "b*", "c*", "d*"}));
        selectItems(w, {"b", "c"});
        w.cmdClearSelected_Click();
        QCOMPARE(shown(w), (QStringList {"a*", "b", "c", "d*"}));
        selectItems(w, {"a", "b"});
        w.cmdToggle_Click();
        QCOMPARE(shown(w), (QStringList {"a", "b*", "c", "d*"}));
        w.cmdNone_Click();
        selectItems(w, {"c"});
        w.cmdSelected_Click();
        QCOMPARE(shown(w), (QStringList {"a", "b", "c*", "d"}));
        QVERIFY(w.changed());
        m_boxes->answer(MsgResult::No); // keep the window
        w.cmdClose_Click();
        QCOMPARE(m_boxes->prompts(),
                 QStringList {QStringLiteral(
                     "You have not saved your changes.\n\nWould you like to close your Cabinet without saving?")});
        QVERIFY(w.isVisible());
        w.cmdSave_Click();
        QCOMPARE(cabinet("F"), (QStringList {"a", "b", "c*", "d"}));
        w.cmdPrint_Click();
        QCOMPARE(m_printed.size(), 1);
        QCOMPARE(m_printed[0].fileName(), m_home->path("cabinet.txt"));
        QStringList lines;
        for (const PrintLine &line : m_printed[0].lines())
            lines.append(line.text());
        QCOMPARE(lines, (QStringList {"Food Cabinet", "", "   a", "   b", " * c", "   d"}));
        w.cmdClose_Click();
        QVERIFY(!w.isVisible());
    }

    // The weight of a cup of an item, given in the cabinet, is kept in the settings file under
    // the item's name in capitals; an empty answer forgets it, a wrong one is named.
    void theWeightOfACup()
    {
        addItem("Flour", "F");
        frmCabinet w;
        w.show();
        selectItems(w, {"Flour"});
        m_boxes->answerInput(QStringLiteral("127.5"));
        w.cmdDensity_Click();
        QCOMPARE(GetIniValue(m_home->iniPath(), "Densities", "FLOUR"), QStringLiteral("127.5"));
        QCOMPARE(Densities::fromSettings(m_home->iniPath()).gramsPerCup(QStringLiteral("flour"))->num, 255);
        m_boxes->answerInput(QStringLiteral("a lot"));
        w.cmdDensity_Click();
        QCOMPARE(m_boxes->inputDefaults.last(), QStringLiteral("127.5"));
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("a lot is no weight in grams: give a number, such as 125 or 127.5."));
        m_boxes->answerInput(QStringLiteral(" "));
        w.cmdDensity_Click();
        QVERIFY(!Densities::fromSettings(m_home->iniPath()).gramsPerCup(QStringLiteral("Flour")));
        m_boxes->clear();
    }

    void addingAndDeletingItems()
    {
        addItem("mint", "F");
        addItem("mint", "D");
        addItem("sugar", "D");
        frmCabinet w;
        w.show();
        // Added exactly as typed, whatever the letters; the window is then changed.
        for (const QString &item :
             {QStringLiteral("Crème fraîche"), QStringLiteral("Mom's 100% jam"), QString(10000, u'z')}) {
            m_boxes->answerInput(item);
            w.cmdAdd_Click();
        }
        QCOMPARE(m_boxes->inputPrompts.first(), QStringLiteral("What item do you wish to add to the Cabinet?"));
        QCOMPARE(cabinet("F"), (QStringList {"Crème fraîche", "mint", "Mom's 100% jam", QString(10000, u'z')}));
        QVERIFY(w.changed());
        // A name the statement cannot carry is refused by name, and nothing else changes.
        m_boxes->answerInput(QStringLiteral("Salt (coarse')"));
        w.cmdAdd_Click();
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("The item \"Salt (coarse')\" cannot be stored as it stands: an apostrophe next to a "
                                "comma or a parenthesis would end it there."));
        QCOMPARE(cabinet("F").size(), 4);
        // Deleting removes the selected items from this cabinet only; unsaved ticks stay.
        w.lvwCabinet->topLevelItem(0)->setCheckState(0, Qt::Checked); // Crème fraîche, not saved
        m_boxes->answer(MsgResult::Yes);
        w.lvwCabinet->clearSelection();
        w.lvwCabinet->setCurrentItem(nullptr);
        w.cmdDelete_Click();
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("You must select an item!"));
        selectItems(w, {"mint"});
        m_boxes->answer(MsgResult::Yes);
        w.cmdDelete_Click();
        QCOMPARE(cabinet("F").size(), 3);
        QCOMPARE(cabinet("D"), (QStringList {QStringLiteral("mint"), QStringLiteral("sugar")}));
        QCOMPARE(w.lvwCabinet->topLevelItem(0)->checkState(0), Qt::Checked);
        // Several at once, after one question naming how many.
        selectItems(w, {"Crème fraîche", QString(10000, u'z')});
        m_boxes->answer(MsgResult::Yes);
        w.cmdDelete_Click();
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("Are you sure you want to remove these 2 items from the Cabinet?"));
        QCOMPARE(cabinet("F"), QStringList {QStringLiteral("Mom's 100% jam")});
        // A name with an apostrophe is ticked, saved and removed like any other.
        w.cmdAll_Click();
        w.cmdSave_Click();
        QCOMPARE(cabinet("F"), QStringList {QStringLiteral("Mom's 100% jam*")});
        selectItems(w, {"Mom's 100% jam"});
        m_boxes->answer(MsgResult::Yes);
        w.cmdDelete_Click();
        QCOMPARE(cabinet("F"), QStringList());
        w.close();
    }

    void cleanDeletesOnlyUnusedItemsAndAsksForEach()
    {
        storeRecipe(1, "Food", {"1|cup|Salt|salt"});
        addItem("salt", "F");
        addItem("saffron", "F");
        addItem("saffron", "D");
        addItem("thyme", "F");
        addItem("Mom's jam", "F"); // its name ends early in the statements: passed over, named
        m_boxes->answer(MsgResult::Yes); // clean
        m_boxes->answerChoice(0); // saffron: Yes
        m_boxes->answerChoice(1); // thyme: No
        CleanCabinet();
        const QString choices = QStringLiteral("\n[&Yes] [&No] [Yes to &All] [N&o to All] [Cancel]");
        QCOMPARE(
            m_boxes->prompts(),
            (QStringList {"Cleaning the Cabinet will attempt to remove any ingredients from the cabinet that are not "
                          "specified as ingredients in the collection of recipes.\n\nWould you like to continue?",
                          "Would you like to remove saffron from the cabinet?" + choices,
                          "Would you like to remove thyme from the cabinet?" + choices,
                          "These names could not be checked, as an apostrophe in a name ends it in the database's "
                          "statements; change them in their recipes:\n\nMom's jam",
                          "The cabinet has been cleaned!"}));
        QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Information"));
        QCOMPARE(cabinet("F"), (QStringList {"Mom's jam", "salt", "thyme"}));
        QCOMPARE(cabinet("D"), QStringList());

        // A long list is answered once: No to All keeps every item, Cancel stops at once.
        addItem("sage", "F");
        addItem("dill", "F");
        for (const int answer : {3, 4}) {
            m_boxes->clear();
            m_boxes->answer(MsgResult::Yes);
            m_boxes->answerChoice(answer);
            CleanCabinet();
            QCOMPARE(m_boxes->prompts().filter(QStringLiteral("Would you like to remove")).size(), 1);
            QCOMPARE(cabinet("F"), (QStringList {"dill", "Mom's jam", "sage", "salt", "thyme"}));
        }
        m_boxes->clear();
    }

    // A save puts the names the cabinet of the recipe's type does not know yet into it, not at hand.
    void savesKeepTheCabinetInStep()
    {
        addItem("salt", "F", true);
        storeRecipe(1, "Food", {"1|cup|Salt|SALT", "1|cup|Saffron|saffron", "1|cup|Saffron threads|Saffron"});
        storeRecipe(2, "Drink", {"1|cup|Salt|salt"});
        QCOMPARE(cabinet("F"), (QStringList {"saffron", "salt*"}));
        QCOMPARE(cabinet("D"), QStringList {"salt"});
        QVERIFY(m_boxes->boxes.isEmpty());
    }

    // An import gathers its recipes' names: each once a type, in its first spelling.
    void namesAreGatheredOnceATypeAcrossRecipes()
    {
        CabinetNames names;
        for (const auto &[type, name] : {std::pair {"Food", "Saffron"}, {"Food", "SAFFRON"}, {"Drink", "Saffron"}}) {
            RecipeData recipe;
            recipe.recipeType = QString::fromLatin1(type);
            recipe.ingredients.append({{}, {}, {}, {}, QString::fromLatin1(name)});
            names.add(recipe);
        }
        QCOMPARE(names.items(), (QList<std::pair<QString, QString>> {{"Saffron", "F"}, {"Saffron", "D"}}));
    }

    void refreshAddsExactlyTheMissingPairs()
    {
        storeRecipe(1, "Food", {"1|cup|Salt|salt", "1|cup|Onion, chopped|onion"});
        storeRecipe(2, "Drink", {"1|cup|Lime juice|lime", "1|cup|Salt|salt"});
        ExecuteSQL(QStringLiteral("INSERT INTO INGREDIENTS VALUES (2, 3, '1', 'cup', 'Water', '')")); // no name
        ExecuteSQL(QStringLiteral("DELETE * FROM CABINET")); // a cabinet kept before saves filled it
        addItem("Salt", "F", true);
        m_boxes->answer(MsgResult::Yes);
        RefreshCabinet();
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("The cabinet has been refreshed!"));
        QCOMPARE(m_boxes->boxes.last().style.icon, MsgIcon::Information);
        QCOMPARE(m_boxes->boxes.size(), 2); // no failure box for the pair already there
        QCOMPARE(cabinet("F"), (QStringList {"onion", "Salt*"}));
        QCOMPARE(cabinet("D"), (QStringList {"", "lime", "salt"}));
    }

    void repairProposesStemsAndRenamesEveryRow()
    {
        // A cabinet name that holds the stem already is found as its own suggestion: left.
        storeRecipe(1, "Food",
                    {"1|cup|scallions, sliced|green onion sliced", "1|cup|tomatoes (canned)|tomatoes canned"});
        storeRecipe(2, "Food", {"1|cup|scallions, sliced|green onion sliced", "1|cup|basil|basil"});
        m_boxes->answer(MsgResult::Yes); // repair
        m_boxes->answerChoice(0); // the change: Yes
        RepairCabinet();
        QVERIFY(m_boxes->prompts().at(1).startsWith(
            QStringLiteral("Change the following?\n\nIngredient: scallions, sliced\nCurrently in cabinet as: "
                           "green onion sliced\nNew cabinet suggestion: scallions\n[&Yes]")));
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("The cabinet is in order!"));
        QCOMPARE(m_boxes->boxes.size(), 3);
        QCOMPARE(QueryNumber("SELECT count(*) FROM INGREDIENTS WHERE cabinet = 'scallions'"), 2);
        QCOMPARE(QueryNumber("SELECT count(*) FROM INGREDIENTS WHERE cabinet = 'tomatoes canned'"), 1);
        QCOMPARE(QueryNumber("SELECT count(*) FROM INGREDIENTS WHERE cabinet = 'basil'"), 1);
    }

    void toolsDeclinedOrUnconnectedDoNothing()
    {
        addItem("thyme", "F");
        for (auto tool : {&CleanCabinet, &RefreshCabinet, &RepairCabinet}) {
            m_boxes->answer(MsgResult::No);
            tool();
        }
        QCOMPARE(m_boxes->boxes.size(), 3);
        QCOMPARE(cabinet("F"), QStringList {QStringLiteral("thyme")});
        CloseDatabase();
        m_boxes->answer(MsgResult::Yes);
        RefreshCabinet();
        QCOMPARE(
            m_boxes->prompts().last(),
            QStringLiteral("Because you were not able to connect to the database, all cabinet tools were disabled."));
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Message"));
    }

    void searchFindsWhatTheCabinetCanMake()
    {
        storeRecipe(1, "Food", {"1|cup|Salt|salt", "1|cup|Onion|onion"});
        storeRecipe(2, "Food", {"1|cup|Salt|salt"});
        frmSearch s;
        s.show();
        s.chkCabinet->setChecked(true);
        s.cmdSearch_Click(); // nothing in the cabinet yet: nothing can be made
        QCOMPARE(s.lblResults->text(), QStringLiteral("Results: 0"));
        QCOMPARE(s.lvwRecipes->topLevelItemCount(), 0);
        addItem("salt", "F", true);
        addItem("onion", "F");
        s.cmdSearch_Click();
        QCOMPARE(s.lblResults->text(), QStringLiteral("Results: 1"));
        QCOMPARE(s.lvwRecipes->topLevelItem(0)->text(1), QStringLiteral("Recipe 2"));
        s.close();
    }
};

QTEST_MAIN(TestCabinet)
#include "test_cabinet.moc"
