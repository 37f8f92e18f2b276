// The menu planner: the tree of groups, days, meals and recipes, stored and loaded; the
// shopping list and the needed amounts made from it.

#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "menus/frmmenu.h"
#include "menus/shoppinglist.h"
#include "recipes/frmcook.h"
#include "recipes/reciperepository.h"
#include "reports/recipeprinter.h"
#include "search/frmsearch.h"
#include "support/testsupport.h"
#include "transfer/transfercommands.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QLocale>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

// A recipe of ingredient lines, each "amount|measure|cabinet".
qint32 storeRecipe(const QString &title, const QStringList &lines)
{
    return StoreTestRecipe(TestRecipe(title, lines));
}

// Every node as "parent > key = text", in the tree's order.
QStringList shape(MenuTree &tree)
{
    QStringList nodes;
    for (const QTreeWidgetItem *node : tree.nodes())
        nodes << MenuTree::parentKeyOf(node) + QStringLiteral(" > ") + MenuTree::keyOf(node) + QStringLiteral(" = ") +
                     node->text(0);
    return nodes;
}

void insertRows(const QStringList &rows)
{
    for (const QString &row : rows)
        ExecuteSQL(QStringLiteral("INSERT INTO MENU VALUES (") + row + u')');
}

} // namespace

class TestMenu : public SessionTest
{
    Q_OBJECT

    QList<RecipePrinter> m_printed;
    std::unique_ptr<frmMenu> m_menu;

    frmMenu &openMenu()
    {
        m_menu = std::make_unique<frmMenu>();
        m_menu->Form_Load();
        return *m_menu;
    }
    void select(const QString &key) { m_menu->tvMenu->setCurrentItem(m_menu->tree().find(key)); }
    void chooseAll()
    {
        m_boxes->onModal([](QDialog *dialog) {
            auto *search = static_cast<frmSearch *>(dialog);
            search->cmdSearch_Click();
            search->lvwRecipes->selectAll();
            search->cmdClose_Click();
        });
    }
    // The preview's text of the last document, one entry per line.
    QStringList printedLines() const { return m_printed.last().plainText().split(u'\n'); }

private Q_SLOTS:
    void init()
    {
        SessionTest::init();
        SetPrintPreviewSink([this](const RecipePrinter &p) { m_printed.append(p); });
    }
    void cleanup()
    {
        if (m_menu) {
            m_boxes->answer(MsgResult::Yes); // leave without saving when asked
            m_menu->close();
            if (!m_menu->dataChanged())
                m_boxes->clear();
            m_menu.reset();
        }
        SetPrintPreviewSink(nullptr);
        m_printed.clear();
        SessionTest::cleanup();
    }

    // Without a database every database command of the planner, its documents and the transfer
    // commands say only that, and nothing else happens.
    void withoutADatabaseEveryCommandSaysSo()
    {
        CloseDatabase();
        frmMenu &menu = openMenu();
        menu.cmdShop_Click(0);
        menu.cmdShop_Click(1);
        menu.cmdPrintAll_Click();
        menu.cmdAddRecipes_Click();
        menu.cmdSave_Click();
        ImportTransfer();
        ExportTransfer();
        const QString notice =
            QStringLiteral("Because you were not able to connect to the database, this function has been disabled.");
        QCOMPARE(m_boxes->prompts(), QStringList(8, notice));
        for (const RecordedBox &box : m_boxes->boxes)
            QCOMPARE(box.title, QStringLiteral("Message"));
        m_boxes->clear();
    }

    // Another computer saves its menu while this window is open: the save here asks, and only
    // the user's choice throws anything away.
    void aMenuChangedElsewhereIsAskedAbout_data()
    {
        QTest::addColumn<int>("choice");
        QTest::addColumn<QString>("stored"); // the group stored afterwards
        QTest::addColumn<QString>("shown"); // the group the window shows afterwards
        QTest::newRow("reload") << 0 << u"Their week"_s << u"Their week"_s;
        QTest::newRow("keep mine") << 1 << u"My week"_s << u"My week"_s;
        QTest::newRow("cancel") << 2 << u"Their week"_s << u"My week"_s;
    }
    void aMenuChangedElsewhereIsAskedAbout()
    {
        QFETCH(int, choice);
        QFETCH(QString, stored);
        QFETCH(QString, shown);
        frmMenu &menu = openMenu();
        // Another computer (another process on the same collection): the same empty menu, a
        // group added and saved.
        QVERIFY(RunElsewhere({QStringLiteral("INSERT INTO MENU VALUES (0, '', 'Root', 'All Menus')"),
                              QStringLiteral("INSERT INTO MENU VALUES (1, 'Root', 'Title: 1', 'Their week')")}));
        m_boxes->answerInput(QStringLiteral("My week"));
        menu.cmdNewGroup_Click();
        m_boxes->answerChoice(choice);
        menu.cmdSave_Click();
        QVERIFY(m_boxes->prompts().join(u'\n').contains(QStringLiteral("Another computer has saved the menus")));
        QTreeWidget view;
        MenuTree now(&view);
        LoadMenu(now);
        QCOMPARE(shape(now).last(), QStringLiteral("Root > Title: 1 = ") + stored);
        QCOMPARE(shape(menu.tree()).last(), QStringLiteral("Root > Title: 1 = ") + shown);
        m_boxes->clear();
    }

    void emptyTableLoadsTheRoot()
    {
        frmMenu &menu = openMenu();
        QCOMPARE(shape(menu.tree()), QStringList {" > Root = All Menus"});
        QCOMPARE(menu.nextNodeNumber(), 1);
        QCOMPARE(gSubWindows, qint16(1));
    }

    // Move Up and Down reorder a node among its siblings, with what is below it; the order is saved.
    void nodesMoveAndTheOrderIsSaved()
    {
        frmMenu &menu = openMenu();
        MenuTree &tree = menu.tree();
        tree.add(kRootKey, QStringLiteral("Title: 1"), QStringLiteral("Week 1"));
        tree.add(QStringLiteral("Title: 1"), QStringLiteral("Day: 3"), QStringLiteral("Monday"));
        tree.add(kRootKey, QStringLiteral("Title: 2"), QStringLiteral("Week 2"));
        tree.add(QStringLiteral("Title: 2"), QStringLiteral("Day: 4"), QStringLiteral("Tuesday"));
        select(QStringLiteral("Title: 2"));
        QTest::mouseClick(menu.cmdMoveUp, Qt::LeftButton);
        QTest::mouseClick(menu.cmdMoveUp, Qt::LeftButton); // first already: nothing moves
        select(QStringLiteral("Day: 3"));
        QTest::mouseClick(menu.cmdMoveDown, Qt::LeftButton); // last of its group already
        const QStringList moved {"Root > Title: 2 = Week 2", "Title: 2 > Day: 4 = Tuesday", "Root > Title: 1 = Week 1",
                                 "Title: 1 > Day: 3 = Monday"};
        QCOMPARE(shape(tree).mid(1), moved);
        QVERIFY(menu.dataChanged());
        menu.cmdSave_Click();
        QTreeWidget view;
        MenuTree loaded(&view);
        LoadMenu(loaded);
        QCOMPARE(shape(loaded).mid(1), moved);
        QCOMPARE(view.topLevelItem(0)->child(0)->text(0), QStringLiteral("Week 2"));
    }

    // The chooser keeps to the type the planner was opened with, whatever the main window shows.
    void theChooserKeepsThePlannersType()
    {
        storeRecipe(QStringLiteral("Soup"), {"1|cup|onion"});
        frmMenu &menu = openMenu(); // opened on Food
        gRecipeType = QStringLiteral("Drink");
        QString chosenOn;
        m_boxes->onModal([&chosenOn](QDialog *dialog) {
            chosenOn = gRecipeType;
            static_cast<frmSearch *>(dialog)->cmdClose_Click();
        });
        menu.cmdAddRecipes_Click();
        QCOMPARE(chosenOn, QStringLiteral("Food"));
        QCOMPARE(gRecipeType, QStringLiteral("Drink"));
        // Cooking mode opens on the selected recipe, and asks for one elsewhere.
        menu.cmdCook_Click();
        QCOMPARE(m_boxes->prompts(), QStringList {QStringLiteral("You must select a recipe to cook!")});
        m_menu->tree().add(kRootKey, QStringLiteral("Root, ID: 1"), QStringLiteral("Soup"));
        select(QStringLiteral("Root, ID: 1"));
        menu.cmdCook_Click();
        frmCook *cook = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            cook = cook ? cook : qobject_cast<frmCook *>(w);
        QVERIFY(cook);
        QCOMPARE(cook->windowTitle(), QStringLiteral("Cooking: Soup"));
        cook->close();
    }

    void planAWeekSaveAndLoadItBack()
    {
        const qint32 soup = storeRecipe(QStringLiteral("Soup"), {"1|cup|onion"});
        const qint32 noLines = storeRecipe(QStringLiteral("No lines"), {});
        frmMenu &menu = openMenu();
        m_boxes->answerInput(QStringLiteral("  Week 1 "));
        menu.cmdNewGroup_Click();
        QCOMPARE(MenuTree::keyOf(menu.tvMenu->currentItem()), QStringLiteral("Title: 1")); // selected, ready for dates
        menu.dtDate->setDate(QDate(2026, 11, 22)); // a Sunday
        menu.cmdSelectDate_Click();
        menu.dtDate->setDate(QDate(2026, 11, 23));
        menu.cmdSelectDate_Click();
        menu.chkMeal[0]->setChecked(true);
        menu.chkMeal[2]->setChecked(true);
        select(QStringLiteral("Root"));
        m_boxes->answer(MsgResult::Yes); // to every day below, after asking
        menu.cmdMealAdd_Click();
        select(QStringLiteral("Day: 2, Meal: B"));
        chooseAll();
        menu.cmdAddRecipes_Click(); // the recipe without lines is passed over
        chooseAll();
        menu.cmdAddRecipes_Click(); // already there: passed over
        // The household's date order, the year in full.
        QString format = QLocale().dateFormat(QLocale::ShortFormat);
        if (!format.contains(QLatin1String("yyyy")))
            format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
        const QString date = QLocale().toString(QDate(2026, 11, 22), format);
        QVERIFY(date.contains(QStringLiteral("2026")));
        const QStringList planned {" > Root = All Menus",
                                   "Root > Title: 1 = Week 1",
                                   "Title: 1 > Day: 2 = " + date + " - Sunday",
                                   "Title: 1 > Day: 3 = " + QLocale().toString(QDate(2026, 11, 23), format) +
                                       " - Monday",
                                   "Day: 2 > Day: 2, Meal: B = Breakfast",
                                   "Day: 2 > Day: 2, Meal: D = Dinner",
                                   "Day: 3 > Day: 3, Meal: B = Breakfast",
                                   "Day: 3 > Day: 3, Meal: D = Dinner",
                                   "Day: 2, Meal: B > Day: 2, Meal: B, ID: " + SevenDigits(soup) + " = Soup"};
        QCOMPARE(shape(menu.tree()), planned);
        QVERIFY(menu.dataChanged());
        menu.cmdSave_Click();
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("The Menus and Recipe Groups have been saved!"));
        QVERIFY(!menu.dataChanged());
        // Adding what is there already changes nothing, so closing asks nothing; what cannot be
        // added is named.
        select(QStringLiteral("Day: 2, Meal: B"));
        chooseAll();
        menu.cmdAddRecipes_Click();
        QVERIFY(!menu.dataChanged());
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("These recipes were not added:\n\nRecipe ") +
                                                SevenDigits(noLines) + QStringLiteral(": it has no ingredient lines"));

        frmMenu &again = openMenu();
        QCOMPARE(shape(again.tree()), planned);
        QCOMPARE(again.nextNodeNumber(), 4);
    }

    void nextNumberFollowsTheLargestKey()
    {
        insertRows({"0, '', 'Root', 'All Menus'", "1, 'Root', 'Title: 3', 'Party'", "2, 'Title: 3', 'Day: 7', 'Sat'",
                    "3, 'Day: 7', 'Day: 7, Meal: L', 'Lunch'"});
        frmMenu &menu = openMenu();
        m_boxes->answerInput(QStringLiteral("Next"));
        menu.cmdNewGroup_Click();
        QVERIFY(menu.tree().find(QStringLiteral("Title: 8")));
        select(QStringLiteral("Day: 7, Meal: L"));
        menu.cmdSelectDate_Click();
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("Please select the Recipe Group!"));
    }

    void rowsWithoutTheirParentAreNamed()
    {
        insertRows({"0, '', 'Root', 'All Menus'", "1, 'Title: 9', 'Day: 2', 'Lost day'",
                    "2, 'Root', 'Title: 1', 'Kept'", "3, 'Root', 'Title: 1', 'Twice'"});
        frmMenu &menu = openMenu();
        QCOMPARE(shape(menu.tree()), (QStringList {" > Root = All Menus", "Root > Title: 1 = Kept"}));
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("These menu entries were not loaded, as the entry they belong under is missing:\n\n"
                                "Lost day\nTwice"));
        QCOMPARE(menu.nextNodeNumber(), 2);
    }

    void deleteAsksAndRemoves()
    {
        insertRows({"0, '', 'Root', 'All Menus'", "1, 'Root', 'Title: 1', 'Week'", "2, 'Title: 1', 'Day: 2', 'Mon'"});
        frmMenu &menu = openMenu();
        select(QStringLiteral("Title: 1"));
        m_boxes->answer(MsgResult::Yes);
        menu.cmdDelete_Click(); // has children: emptied, kept
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("Are you sure you want to remove all sub entries for Week?"));
        QCOMPARE(shape(menu.tree()), (QStringList {" > Root = All Menus", "Root > Title: 1 = Week"}));
        m_boxes->answer(MsgResult::No);
        menu.cmdDelete_Click();
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("Are you sure you want to remove the entry for Week?"));
        QVERIFY(menu.tree().find(QStringLiteral("Title: 1")));
        m_boxes->answer(MsgResult::Yes);
        menu.cmdDelete_Click();
        QVERIFY(!menu.tree().find(QStringLiteral("Title: 1")));
        select(QStringLiteral("Root"));
        m_boxes->answer(MsgResult::Yes);
        menu.cmdDelete_Click();
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("Are you sure you want to remove the entry for All Menus (including all sub nodes)?"));
        QCOMPARE(shape(menu.tree()), QStringList {" > Root = All Menus"});
    }

    void savingWhatCannotBeStoredKeepsTheStoredMenu()
    {
        const qint32 id = storeRecipe(QStringLiteral("Stew"), {"1|cup|beans"});
        frmMenu &menu = openMenu();
        m_boxes->answerInput(QStringLiteral("Mom's week"));
        menu.cmdNewGroup_Click();
        menu.cmdSave_Click();
        frmMenu &again = openMenu();
        QCOMPARE(again.tree().find(QStringLiteral("Title: 1"))->text(0), QStringLiteral("Mom's week"));

        // A chain of sub recipes longer than a key can hold: the old menu stays whole.
        QString key = QStringLiteral("Title: 1");
        while (key.size() <= 255) {
            const QString next = key + QStringLiteral(", ID: ") + SevenDigits(id);
            again.tree().add(key, next, QStringLiteral("Stew"));
            key = next;
        }
        m_boxes->answerInput(QStringLiteral("Extra"));
        again.cmdNewGroup_Click();
        again.cmdSave_Click();
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Error Saving Menu"));
        QCOMPARE(
            m_boxes->prompts().last(),
            QStringLiteral("There was an error trying to save Stew.  This is most likely the result of putting too "
                           "many levels of sub recipes under other recipes."));
        QVERIFY(again.dataChanged());
        QCOMPARE(QueryNumber(QStringLiteral("SELECT COUNT(*) FROM MENU")), 2);

        m_boxes->clear();
        again.tree().find(QStringLiteral("Title: 1"))->setText(0, QStringLiteral("Mom', s"));
        again.cmdSave_Click();
        QVERIFY(m_boxes->prompts().last().contains(QStringLiteral("The menu was not saved: in \"Mom', s\"")));
        QCOMPARE(QueryNumber(QStringLiteral("SELECT COUNT(*) FROM MENU")), 2);
        m_boxes->clear();
    }

    void subRecipesRenameViewAndClose()
    {
        const qint32 soup = storeRecipe(QStringLiteral("Soup"), {"1|cup|onion"});
        insertRows({"0, '', 'Root', 'All Menus'", "1, 'Root', 'Title: 1', 'Week'",
                    "2, 'Title: 1', 'Title: 1, ID: " + SevenDigits(soup) + "', 'Soup'"});
        frmMenu &menu = openMenu();
        const QString soupKey = "Title: 1, ID: " + SevenDigits(soup);
        select(soupKey);
        m_boxes->answer(MsgResult::No);
        chooseAll();
        menu.cmdAddRecipes_Click();
        QCOMPARE(m_boxes->prompts().last(), QStringLiteral("Are you sure you want to put sub recipes on: Soup?"));
        QCOMPARE(menu.tree().nodes().size(), 3);
        m_boxes->answer(MsgResult::Yes);
        chooseAll();
        menu.cmdAddRecipes_Click();
        QVERIFY(menu.tree().find(soupKey + ", ID: " + SevenDigits(soup)));

        menu.tvMenu_DblClick(); // a recipe: its report
        QCOMPARE(m_printed.size(), 1);
        QVERIFY(m_printed.last().plainText().contains(QStringLiteral("Soup")));
        // A sub recipe hands on all after the first "ID: ", a statement the database cannot
        // read: the report is shown without a recipe, and a command-text error stays silent.
        select(soupKey + ", ID: " + SevenDigits(soup));
        m_boxes->clear();
        menu.tvMenu_DblClick();
        QCOMPARE(m_printed.size(), 2);
        QVERIFY(!m_printed.last().plainText().contains(QStringLiteral("Soup")));
        QVERIFY(m_boxes->boxes.isEmpty());
        select(soupKey);
        select(QStringLiteral("Title: 1"));
        menu.cmdPrintAll_Click(); // the group's recipes, not the sub recipe
        QCOMPARE(m_printed.size(), 3);
        QCOMPARE(m_printed.last().plainText().count(QStringLiteral("Soup")), 1);

        m_boxes->answerInput(QStringLiteral("Holiday"));
        menu.tvMenu_DblClick();
        QCOMPARE(m_boxes->inputPrompts.last(), QStringLiteral("Enter the new name for Week"));
        QCOMPARE(m_boxes->inputDefaults.last(), QStringLiteral("Week"));
        QCOMPARE(menu.tree().find(QStringLiteral("Title: 1"))->text(0), QStringLiteral("Holiday"));

        menu.show();
        m_boxes->answer(MsgResult::No);
        menu.cmdClose_Click();
        QVERIFY(menu.isVisible());
        QCOMPARE(m_boxes->prompts().last(),
                 QStringLiteral("You have changed data for a menu or Recipe Group without saving!\n\n"
                                "Would you like to exit without saving your changes?"));
        m_boxes->answer(MsgResult::Yes);
        menu.cmdClose_Click();
        QVERIFY(!menu.isVisible());
        QCOMPARE(gSubWindows, qint16(0));
        m_menu.reset();
    }

    void theWalkGathersRecipesButNotTheirSubRecipes()
    {
        insertRows({"0, '', 'Root', 'All Menus'", "1, 'Root', 'Title: 1', 'A'",
                    "2, 'Title: 1', 'Title: 1, ID: 5', 'R5'", "3, 'Title: 1, ID: 5', 'Title: 1, ID: 5, ID: 6', 'R6'",
                    "4, 'Root', 'Title: 2', 'B'", "5, 'Title: 2', 'Day: 3', 'D'",
                    "6, 'Day: 3', 'Day: 3, ID: 7', 'R7'"});
        frmMenu &menu = openMenu();
        QCOMPARE(GatherRecipeIds(menu.tree().find(QStringLiteral("Root"))), (QStringList {" 5", " 7"}));
        QCOMPARE(GatherRecipeIds(menu.tree().find(QStringLiteral("Title: 2"))), QStringList {" 7"});
        QCOMPARE(IdListText({" 5", " 7"}), QStringLiteral(" 5,  7"));
        QCOMPARE(IdListText({}), QStringLiteral("-1"));
        menu.cmdExpand_Click(0);
        QVERIFY(menu.tree().find(QStringLiteral("Root"))->isExpanded());
        QVERIFY(!menu.tree().find(QStringLiteral("Title: 2"))->isExpanded());
        menu.cmdExpand_Click(1);
        QVERIFY(menu.tree().find(QStringLiteral("Title: 2"))->isExpanded());
        QVERIFY(!menu.tree().find(QStringLiteral("Day: 3"))->isExpanded());
        SaveScreenshot(&menu, QStringLiteral("frmMenu"));
    }

    void measuresGroup_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<bool>("same");
        QTest::newRow("cup, Cups") << "cup"
                                   << "Cups" << true;
        QTest::newRow("c., cup") << "c."
                                 << "cup" << true;
        QTest::newRow("cup(s), CUP") << "cup(s)"
                                     << "CUP" << true;
        QTest::newRow("empty matches any") << ""
                                           << "tsp" << true;
        QTest::newRow("tsp, Tbsp") << "tsp"
                                   << "Tbsp" << false;
        QTest::newRow("unset, cup") << "---"
                                    << "cup" << false;
    }
    void measuresGroup()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(bool, same);
        QCOMPARE(SameMeasure(a, b), same);
        QCOMPARE(SameMeasure(b, a), same);
    }

    void neededAmountsSumPerMeasureAndMarkWhatIsOut()
    {
        const qint32 bread = storeRecipe(QStringLiteral("Bread"), {"1/2|cup|flour", "2|tsp|salt", "1|---|Water"});
        const qint32 cake = storeRecipe(QStringLiteral("Cake"), {"1/4|Cups|Flour", "1|Tbsp|salt", "2|---|eggs"});
        // The saves put every name in the cabinet, not at hand.
        ExecuteSQL(QStringLiteral("UPDATE CABINET SET available = 1 WHERE item = 'flour'"));
        ExecuteSQL(QStringLiteral("DELETE * FROM CABINET WHERE item = 'eggs' OR item = 'Water'"));
        // At hand for drinks only: out for these Food recipes, as the shopping list judges.
        ExecuteSQL(QStringLiteral("INSERT INTO CABINET VALUES ('Water', 'D', 1)"));
        ExecuteSQL(QStringLiteral("INSERT INTO CABINET VALUES ('salt', 'D', 1)"));
        ShowNeededAmounts(QStringLiteral("Week"), {u' ' + QString::number(bread), u' ' + QString::number(cake)});
        // One line per item (its text, then an empty line's end); the legend ends in CR LF.
        QCOMPARE(
            printedLines(),
            (QStringList {"Needed Ingredient Amounts for Week:", "", "  *  eggs  -  (N/A) *",
                          "  *  Flour  -  (3/4 Cups)", "  *  salt  -  (2 tsp + 1 Tbsp) *", "  *  Water  -  (N/A) *",
                          "* Bold, Italic, Red Amounts mean you are out of this item!\r", "", ""}));
        const PrintRun flour = m_printed.last().lines()[3].runs[1];
        const PrintRun salt = m_printed.last().lines()[4].runs[1];
        QVERIFY(!flour.bold && flour.rgb == 0);
        QVERIFY(salt.bold && salt.italic && salt.rgb == 255);

        ShowShoppingList(QStringLiteral("Week"), {u' ' + QString::number(bread), u' ' + QString::number(cake)});
        QCOMPARE(printedLines(), (QStringList {"Shopping List for Week:", "", "  *  salt", ""}));
    }

    // Names that differ in the case of any letter are one item in both documents.
    void everyLetterIgnoresCaseInTheDocuments()
    {
        const qint32 bread = storeRecipe(QStringLiteral("Bread"), {"1|tsp|épices", "2|---|äpfel"});
        const qint32 cake = storeRecipe(QStringLiteral("Cake"), {"2|tsp|Épices", "1|---|ÄPFEL"});
        ExecuteSQL(QStringLiteral("UPDATE CABINET SET available = 1 WHERE item = 'ÄPFEL'"));
        const QStringList ids {u' ' + QString::number(bread), u' ' + QString::number(cake)};
        ShowNeededAmounts(QStringLiteral("Week"), ids);
        QCOMPARE(printedLines().mid(2, 2), (QStringList {"  *  äpfel  -  (N/A)", "  *  épices  -  (3 tsp) *"}));
        ShowShoppingList(QStringLiteral("Week"), ids);
        QCOMPARE(printedLines().filter(QStringLiteral("pices")).size(), 1);
        QCOMPARE(printedLines().filter(QStringLiteral("pfel")).size(), 0);
    }

    // Asked for in the settings, measures that convert into one another are summed into one.
    void measuresCombineWhenAsked()
    {
        const qint32 id = storeRecipe(QStringLiteral("Brine"), {"1 1/2|tsp|salt", "1|Tbsp|salt", "1|pinch|salt"});
        gSettings.CombineMeasures = true;
        ShowNeededAmounts(QStringLiteral("Day"), {u' ' + QString::number(id)});
        gSettings.CombineMeasures = false;
        QCOMPARE(printedLines().at(2), QStringLiteral("  *  salt  -  (1 1/2 Tbsp + 1 pinch) *"));
    }

    void listsWithNothingToShowSaySo()
    {
        ShowNeededAmounts(QStringLiteral("Empty"), {});
        ExecuteSQL(QStringLiteral("INSERT INTO CABINET VALUES ('rice', 'F', 1)"));
        const qint32 rice = storeRecipe(QStringLiteral("Rice"), {"1|cup|rice"});
        ShowShoppingList(QStringLiteral("Rice day"), {u' ' + QString::number(rice)});
        QCOMPARE(m_boxes->prompts(),
                 (QStringList {"There are no ingredients in the recipes of the group Empty!",
                               "You have all necessary ingredients for Rice day available in your cabinet!"}));
        QVERIFY(m_printed.isEmpty());
    }

    void zeroDenominatorShowsTheFractionsMessageAndGoesOn()
    {
        const qint32 id = storeRecipe(QStringLiteral("Odd"), {"1/0|cup|sugar", "1|cup|tea"});
        ShowNeededAmounts(QStringLiteral("Odd"), {u' ' + QString::number(id)});
        QCOMPARE(m_boxes->prompts().first(), QStringLiteral("Error parsing string to create fraction!"));
        QVERIFY(printedLines().contains(QStringLiteral("  *  tea  -  (1 cup) *")));
        m_boxes->clear();
    }
};

QTEST_MAIN(TestMenu)
#include "test_menu.moc"
