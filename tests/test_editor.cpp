// The recipe editor: loading, lists, the change flag, ingredient and direction entry.

#include "core/platform/appstate.h"
#include "core/db/database.h"
#include "core/ui/controls.h"
#include "core/ui/desktopsession.h"
#include "quantities/frmresize.h"
#include "recipes/cabinetsuggestion.h"
#include "recipes/cookingtimes.h"
#include "recipes/frmadd2.h"
#include "recipes/frmcook.h"
#include "recipes/reciperepository.h"
#include "support/testsupport.h"

#include <QApplication>
#include <QComboBox>
#include <QScopeGuard>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QListWidget>
#include <QTest>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

void typeIngredient(frmAdd2 &e, const QString &amount, const QString &measure, const QString &item,
                    const QString &cabinet)
{
    e.cboAmount->setCurrentText(amount);
    e.cboMeasure->setCurrentText(measure);
    e.txtItem->setText(item);
    e.cboCabinet->setCurrentText(cabinet);
}

void addIngredient(frmAdd2 &e, const QString &item)
{
    typeIngredient(e, QStringLiteral("1"), QStringLiteral("cup"), item, item.toLower());
    e.cmdIngAdd_Click();
}

void addStep(frmAdd2 &e, const QString &text)
{
    e.txtDirection->setText(text);
    e.cmdDirAdd_Click();
}

void select(QTreeWidget *list, int row)
{
    list->setCurrentItem(list->topLevelItem(row));
}

} // namespace

// The desktop as cooking mode sees it: what it was asked to do.
class RecordingDesktop : public DesktopSession
{
public:
    QStringList calls;
    quint32 inhibitScreenSaver(const QString &reason) override
    {
        calls << QStringLiteral("inhibit ") + reason;
        return 7;
    }
    void releaseScreenSaver(quint32 cookie) override { calls << QStringLiteral("release %1").arg(cookie); }
    void notify(const QString &summary, const QString &body) override { calls << summary + u'/' + body; }
};

class TestEditor : public SessionTest
{
    Q_OBJECT

    std::unique_ptr<frmAdd2> onePage(const QString &type = QStringLiteral("Food"))
    {
        auto e = std::make_unique<frmAdd2>();
        e->TabbedView = false;
        e->RecipeType = type;
        e->show();
        return e;
    }

private Q_SLOTS:
    void newEditorOpensEmptyAndCountsItself()
    {
        {
            auto e = onePage();
            QCOMPARE(gSubWindows, qint16(1));
            QVERIFY(!e->cmdSaveAs->isEnabled());
            QCOMPARE(e->txtStep->text(), QStringLiteral("01"));
            QCOMPARE(e->txtPrepTime->text(), QStringLiteral("00:00"));
            QCOMPARE(e->cboAmount->currentText(), QStringLiteral("---"));
            QCOMPARE(e->cboMeasure->currentText(), QStringLiteral("---")); // the list's first entry
            QCOMPARE(e->cboCategory->itemText(1), QStringLiteral("Appetizers"));
            QCOMPARE(e->cboRating->itemText(2), QStringLiteral("**"));
            QVERIFY(!e->RecipeChange);
            QCOMPARE(e->defaultButton(), e->cmdIngAdd);
            QVERIFY(e->lvwIngredients->isColumnHidden(0));
            QCOMPARE(e->lvwIngredients->headerItem()->text(4), QStringLiteral("In the cabinet as..."));
            auto second = onePage();
            QCOMPARE(gSubWindows, qint16(2));
            second->close(); // by the frame: no question
            QCOMPARE(gSubWindows, qint16(1));
        }
        QCOMPARE(gSubWindows, qint16(0));
    }

    void drinkRecipesHaveNoTimesAndFoodDoesNotGiveThemBack()
    {
        auto e = onePage(QStringLiteral("Drink"));
        QVERIFY(!e->txtPrepTime->isEnabled());
        QVERIFY(!e->txtCookTime->isEnabled());
        QCOMPARE(e->cboMeasure->findText(QStringLiteral("jigger")) >= 0, true);
        e->cboRecipeType->setCurrentText(QStringLiteral("Food"));
        e->cboRecipeType_Click();
        QCOMPARE(gRecipeType, QStringLiteral("Food"));
        QCOMPARE(e->RecipeType, QStringLiteral("Food"));
        QCOMPARE(e->cboMeasure->findText(QStringLiteral("jigger")), -1);
        QCOMPARE(e->txtCookTime->text(), QStringLiteral("00:00"));
        QVERIFY(!e->txtCookTime->isEnabled()); // kept as it always was
    }

    // The editor takes the desktop's palette, light or dark: a box greyed and enabled again is
    // back on the desktop's colours, never forced white.
    void theDesktopsPaletteLightOrDark()
    {
        const QPalette light = QApplication::palette();
        const QPalette dark = DarkDesktopPalette();
        const auto restore = qScopeGuard([&] { QApplication::setPalette(light); });
        for (const bool isDark : {false, true}) {
            QApplication::setPalette(isDark ? dark : light);
            auto e = onePage();
            e->show();
            QVERIFY(QTest::qWaitForWindowExposed(e.get()));
            QCoreApplication::sendPostedEvents(); // laid out before the picture
            DisableControl(e->txtTitle);
            EnableControl(e->txtTitle);
            const QColor base = (isDark ? dark : light).color(QPalette::Base);
            QCOMPARE(e->txtTitle->palette().color(QPalette::Base), base);
            const QImage shot = e->grab().toImage();
            const QPoint inside = e->txtTitle->mapTo(e.get(), e->txtTitle->rect().center());
            QCOMPARE(qGray(shot.pixel(inside)) < 128, isDark);
            SaveScreenshot(e.get(), isDark ? QStringLiteral("frmAdd2-dark") : QStringLiteral("frmAdd2-light"));
            e->close();
        }
    }

    void changeFlagAndClosing()
    {
        auto e = onePage();
        QTest::keyClicks(e->txtStep, QStringLiteral("5"));
        QVERIFY(!e->RecipeChange);
        e->cmdClose_Click(); // unchanged: no question
        QVERIFY(!e->isVisible());
        QVERIFY(m_boxes->boxes.isEmpty());

        auto f = onePage();
        QTest::keyClicks(f->txtTitle, QStringLiteral("Soup"));
        QVERIFY(f->RecipeChange);
        m_boxes->answer(MsgResult::No);
        f->cmdClose_Click();
        QVERIFY(f->isVisible());
        QCOMPARE(m_boxes->boxes[0].prompt, QStringLiteral("Closing the New Recipe Entry Form will cause you to lose "
                                                          "all unsaved data.\n\nDo you wish to close anyway?"));
        m_boxes->answer(MsgResult::Yes);
        f->cmdClose_Click();
        QVERIFY(!f->isVisible());
    }

    void clearAsksAndKeepsTheStoredRecipe()
    {
        auto e = onePage();
        e->EditMode = true;
        e->RecipeID = 9;
        e->txtTitle->setText(QStringLiteral("Soup"));
        addIngredient(*e, QStringLiteral("Salt"));
        m_boxes->answer(MsgResult::No);
        e->cmdClear_Click();
        QCOMPARE(e->txtTitle->text(), QStringLiteral("Soup"));
        m_boxes->answer(MsgResult::Yes);
        e->cmdClear_Click();
        QCOMPARE(e->txtTitle->text(), QString());
        QCOMPARE(e->lvwIngredients->topLevelItemCount(), 0);
        QVERIFY(!e->RecipeChange);
        QVERIFY(e->EditMode);
        QCOMPARE(e->RecipeID, 9);
        QCOMPARE(m_boxes->boxes[0].prompt,
                 QStringLiteral("Are you sure you want to erase all data for the current recipe?"));
    }

    void timesAreNormalisedOnLeaving_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("hours and minutes") << u"130"_s << u"01:30"_s;
        QTest::newRow("with colon") << u"1:30"_s << u"01:30"_s;
        QTest::newRow("minutes only") << u"5"_s << u"00:05"_s;
        QTest::newRow("no range check") << u"7:5"_s << u"00:75"_s;
        QTest::newRow("many hours") << u"12345"_s << u"123:45"_s;
        QTest::newRow("empty") << u""_s << u"00:00"_s;
        QTest::newRow("words") << u"soon"_s << u"00:00"_s;
    }
    void timesAreNormalisedOnLeaving()
    {
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        auto e = onePage();
        e->txtPrepTime->setText(typed);
        e->txtPrepTime_LostFocus();
        QCOMPARE(e->txtPrepTime->text(), shown);
        e->txtCookTime->setText(typed);
        e->txtCookTime_LostFocus();
        QCOMPARE(e->txtCookTime->text(), shown);
    }

    void ingredientValidation()
    {
        auto e = onePage();
        const QList<std::pair<QStringList, QString>> cases = {
            {{"", "cup", "Salt", "salt"}, "Please Enter an amount!"},
            {{"1", "", "Salt", "salt"}, "Please Enter a measurement!"},
            {{"---", "---", "", "salt"}, "Please Enter an item!"},
            {{"---", "---", "Salt", ""}, "Please Enter a Short Cabinet Name!"},
        };
        for (const auto &[fields, message] : cases) {
            m_boxes->clear();
            typeIngredient(*e, fields[0], fields[1], fields[2], fields[3]);
            e->cmdIngAdd_Click();
            QCOMPARE(m_boxes->prompts(), QStringList {message});
            QCOMPARE(m_boxes->boxes[0].title, QStringLiteral("Information Required"));
            QCOMPARE(m_boxes->boxes[0].style.icon, MsgIcon::None);
        }
        QCOMPARE(e->lvwIngredients->topLevelItemCount(), 0);
        typeIngredient(*e, QStringLiteral("---"), QStringLiteral("---"), QStringLiteral("Salt"),
                       QStringLiteral("salt"));
        e->cmdIngAdd_Click(); // "---" is filled
        QCOMPARE(ColumnTexts(e->lvwIngredients, 1), QStringList {QStringLiteral("---")});
        QCOMPARE(e->cboAmount->currentText(), QStringLiteral("---"));
        QCOMPARE(e->txtItem->text(), QString());
        QCOMPARE(e->SelectedIngredient, -1);
    }

    void ingredientOverwriteInsertAndRemove()
    {
        auto e = onePage();
        for (const char *item : {"Flour", "Sugar", "Eggs", "Milk", "Salt"})
            addIngredient(*e, QLatin1String(item));
        QCOMPARE(ColumnTexts(e->lvwIngredients, 0), (QStringList {"01", "02", "03", "04", "05"}));

        // Clicking a line and adding it unchanged still asks; No overwrites (the default).
        select(e->lvwIngredients, 1);
        e->lvwIngredients_Click();
        QCOMPARE(e->txtItem->text(), QStringLiteral("Sugar"));
        e->txtItem->setText(QStringLiteral("Brown sugar"));
        m_boxes->answer(MsgResult::No);
        e->cmdIngAdd_Click();
        QCOMPARE(m_boxes->boxes.last().prompt,
                 QStringLiteral("You have attempted to change an ingredient.  The default process will Overwrite the "
                                "old Ingredient.\n\nWould you like to Insert the new ingredient instead?"));
        QVERIFY(m_boxes->boxes.last().style.defaultNo);
        QCOMPARE(ColumnTexts(e->lvwIngredients, 3), (QStringList {"Flour", "Brown sugar", "Eggs", "Milk", "Salt"}));

        // Inserting before line 1 renumbers every line.
        select(e->lvwIngredients, 0);
        e->lvwIngredients_Click();
        e->txtItem->setText(QStringLiteral("Butter"));
        m_boxes->answer(MsgResult::Yes);
        e->cmdIngAdd_Click();
        QCOMPARE(ColumnTexts(e->lvwIngredients, 3),
                 (QStringList {"Butter", "Flour", "Brown sugar", "Eggs", "Milk", "Salt"}));
        QCOMPARE(ColumnTexts(e->lvwIngredients, 0), (QStringList {"01", "02", "03", "04", "05", "06"}));

        // Removing line 3 renumbers the rest.
        select(e->lvwIngredients, 2);
        m_boxes->answer(MsgResult::Yes);
        e->cmdIngRemove_Click();
        QCOMPARE(ColumnTexts(e->lvwIngredients, 3), (QStringList {"Butter", "Flour", "Eggs", "Milk", "Salt"}));
        QCOMPARE(ColumnTexts(e->lvwIngredients, 0), (QStringList {"01", "02", "03", "04", "05"}));

        e->lvwIngredients->setCurrentItem(nullptr);
        e->cmdIngRemove_Click();
        QCOMPARE(m_boxes->boxes.last().prompt, QStringLiteral("There are no items to remove!"));
        QCOMPARE(m_boxes->boxes.last().title, QStringLiteral("Message"));
    }

    void stepNumbersOnLeaving_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("beyond the end") << u"9"_s << u"04"_s;
        QTest::newRow("zero") << u"0"_s << u"04"_s;
        QTest::newRow("negative") << u"-2"_s << u"02"_s;
        QTest::newRow("words") << u"x"_s << u"04"_s;
        QTest::newRow("within") << u"3"_s << u"03"_s;
        QTest::newRow("one digit") << u"2"_s << u"02"_s;
    }
    void stepNumbersOnLeaving()
    {
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        auto e = onePage();
        for (const char *step : {"Mix", "Bake", "Serve"})
            addStep(*e, QLatin1String(step));
        e->txtStep->setText(typed);
        e->txtStep_LostFocus();
        QCOMPARE(e->txtStep->text(), shown);

        // Added without leaving the box (Alt+S straight after typing): the same rule, so an
        // existing step is asked about instead of stored twice.
        e->txtStep->setText(typed);
        const bool existing = shown != u"04";
        if (existing)
            m_boxes->answer(MsgResult::No); // overwrite
        addStep(*e, QStringLiteral("Rest"));
        const QStringList numbers = existing ? QStringList {"01", "02", "03"} : QStringList {"01", "02", "03", "04"};
        QCOMPARE(ColumnTexts(e->lvwDirections, 0), numbers);
        QCOMPARE(ColumnTexts(e->lvwDirections, 1).at(shown.toInt() - 1), QStringLiteral("Rest"));
    }

    void directionsAddInsertOverwriteRemove()
    {
        auto e = onePage();
        e->cmdDirAdd_Click();
        QCOMPARE(m_boxes->prompts(), QStringList {QStringLiteral("Please enter the direction!")});
        QCOMPARE(e->lvwDirections->topLevelItemCount(), 0);
        for (const char *step : {"Mix", "Bake", "Serve"})
            addStep(*e, QLatin1String(step));
        QCOMPARE(e->txtStep->text(), QStringLiteral("04"));
        QCOMPARE(e->txtDirection->text(), QString());

        e->txtStep->setText(QStringLiteral("02"));
        m_boxes->answer(MsgResult::Yes);
        addStep(*e, QStringLiteral("Rest"));
        QCOMPARE(m_boxes->boxes.last().prompt,
                 QStringLiteral("You have entered a duplicate step.  The default process will Overwrite the old "
                                "step.\n\nWould you like to Insert the new step instead?"));
        QCOMPARE(ColumnTexts(e->lvwDirections, 1), (QStringList {"Mix", "Rest", "Bake", "Serve"}));
        QCOMPARE(ColumnTexts(e->lvwDirections, 0), (QStringList {"01", "02", "03", "04"}));
        QCOMPARE(e->txtStep->text(), QStringLiteral("05"));

        select(e->lvwDirections, 3);
        e->lvwDirections_Click();
        QCOMPARE(e->txtStep->text(), QStringLiteral("04"));
        m_boxes->answer(MsgResult::No);
        addStep(*e, QStringLiteral("Serve warm"));
        QCOMPARE(ColumnTexts(e->lvwDirections, 1), (QStringList {"Mix", "Rest", "Bake", "Serve warm"}));

        for (int i = 0; i < 4; ++i) {
            select(e->lvwDirections, 0);
            m_boxes->answer(MsgResult::Yes);
            e->cmdDirRemove_Click();
        }
        QCOMPARE(e->lvwDirections->topLevelItemCount(), 0);
        QCOMPARE(e->txtStep->text(), QStringLiteral("01"));
    }

    void enterAddsTheEntryBeingTyped()
    {
        auto e = onePage();
        e->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(e.get()));
        e->txtDirection->setFocus();
        QCOMPARE(e->defaultButton(), e->cmdDirAdd);
        QTest::keyClicks(e->txtDirection, QStringLiteral("Whisk"));
        QTest::keyClick(e->txtDirection, Qt::Key_Return);
        QCOMPARE(ColumnTexts(e->lvwDirections, 1), QStringList {QStringLiteral("Whisk")});
        e->txtItem->setFocus();
        QCOMPARE(e->defaultButton(), e->cmdIngAdd);
        typeIngredient(*e, QStringLiteral("2"), QStringLiteral("cup"), QStringLiteral("Rice"), QStringLiteral("rice"));
        QTest::keyClick(e->txtItem, Qt::Key_Return);
        QCOMPARE(ColumnTexts(e->lvwIngredients, 3), QStringList {QStringLiteral("Rice")});
    }

    void tabbedViewAddsOnlyOnItsTab()
    {
        frmAdd2 e;
        e.TabbedView = true;
        e.show();
        e.Form_Activate();
        QCOMPARE(e.tabRecipe->currentIndex(), 0);
        QVERIFY(e.fraRecipe[0]->isVisible());
        QVERIFY(!e.fraRecipe[1]->isVisible());
        typeIngredient(e, QStringLiteral("1"), QStringLiteral("cup"), QStringLiteral("Rice"), QStringLiteral("rice"));
        e.cmdIngAdd_Click(); // tab 1 is shown: nothing happens
        QCOMPARE(e.lvwIngredients->topLevelItemCount(), 0);
        e.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&e));
        e.cboAmount->setFocus(); // focus on the amount brings its tab forward
        QCOMPARE(e.tabRecipe->currentIndex(), 1);
        QVERIFY(e.fraRecipe[1]->isVisible());
        QVERIFY(!e.fraRecipe[0]->isVisible());
        e.cmdIngAdd_Click();
        QCOMPARE(e.lvwIngredients->topLevelItemCount(), 1);
    }

    void onlyAnotherMirepanWindowCountsAsActivation()
    {
        frmAdd2 e;
        e.TabbedView = true;
        e.show();
        QWidget other; // another Mirepan window
        other.show();
        e.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&e));
        e.tabRecipe->setCurrentIndex(2);
        e.txtDirection->setFocus();
        QCoreApplication::processEvents();
        e.txtDirection->setText(QStringLiteral("Stir the soup"));
        e.txtDirection->setCursorPosition(4);
        // To another program and back: the tab, the field and the caret stay, nothing selected,
        // so a paste goes where the caret was.
        QApplication::setActiveWindow(nullptr);
        QApplication::setActiveWindow(&e);
        QCoreApplication::processEvents();
        QCOMPARE(e.tabRecipe->currentIndex(), 2);
        QCOMPARE(QApplication::focusWidget(), e.txtDirection);
        QVERIFY(!e.txtDirection->hasSelectedText());
        QCOMPARE(e.txtDirection->cursorPosition(), 4);
        // To another Mirepan window and back: the window's activation shows tab 1.
        QApplication::setActiveWindow(&other);
        QApplication::setActiveWindow(&e);
        QCOMPARE(e.tabRecipe->currentIndex(), 0);
    }

    void tabClicksMoveTheFocusOnlyWithTheMouse()
    {
        frmAdd2 e;
        e.TabbedView = true;
        e.show();
        e.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&e));
        e.cmdSave->setFocus();
        e.tabRecipe->setCurrentIndex(2); // by the program: the focus stays
        QVERIFY(e.fraRecipe[2]->isVisible());
        QCOMPARE(QApplication::focusWidget(), e.cmdSave);
        QTest::mouseClick(e.tabRecipe, Qt::LeftButton, {}, e.tabRecipe->tabRect(1).center());
        QCOMPARE(e.tabRecipe->currentIndex(), 1);
        QVERIFY(e.cboAmount->hasFocus());
        QTest::mouseClick(e.tabRecipe, Qt::LeftButton, {}, e.tabRecipe->tabRect(2).center());
        QCOMPARE(QApplication::focusWidget(), e.txtDirection);
    }

    void categoriesCompleteAsTyped()
    {
        gSettings.Seek = true;
        auto e = onePage();
        e->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(e.get()));
        e->cboCategory->setFocus();
        QTest::keyClicks(e->cboCategory, QStringLiteral("des"));
        QCOMPARE(e->cboCategory->currentText(), QStringLiteral("desserts"));
        QCOMPARE(e->cboCategory->lineEdit()->selectedText(), QStringLiteral("serts"));
        QTest::keyClick(e->cboCategory, Qt::Key_Backspace); // deleting never completes
        QCOMPARE(e->cboCategory->currentText(), QStringLiteral("des"));
        gSettings.Seek = false;
        e->cboCategory->setCurrentText(QString());
        QTest::keyClicks(e->cboCategory, QStringLiteral("Sou"));
        QCOMPARE(e->cboCategory->currentText(), QStringLiteral("Sou"));
    }

    void mainWindowOpensEditorsOfTheCurrentType()
    {
        gRecipeType = QStringLiteral("Drink");
        gSettings.StandardAdd = true;
        QPointer<frmAdd2> e = OpenNewRecipeEditor();
        QVERIFY(e->isVisible());
        QVERIFY(!e->TabbedView);
        QCOMPARE(e->RecipeType, QStringLiteral("Drink"));
        QCOMPARE(e->cboRecipeType->currentText(), QStringLiteral("Drink"));
        QVERIFY(!e->EditMode);
        e->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(e.isNull());
        QCOMPARE(gSubWindows, qint16(0));
    }

    void cabinetSuggestions()
    {
        QCOMPARE(CabinetSearchForms(QStringLiteral("Onions, chopped")), (QStringList {"Onions", "Onion", "chopped"}));
        QCOMPARE(CabinetSearchForms(QStringLiteral("berries")), (QStringList {"berries", "berry"}));
        QCOMPARE(CabinetSearchForms(QStringLiteral("tomatoes")), (QStringList {"tomatoes", "tomato"}));
        QCOMPARE(CabinetSearchForms(QStringLiteral("of an egg")), QStringList {QStringLiteral("egg")});
        QCOMPARE(CabinetSearchForms(QStringLiteral("an ox, to go")), QStringList());
        QCOMPARE(CabinetSuggestionSql({QStringLiteral("Onions"), QStringLiteral("Onion")}, QStringLiteral("F")),
                 QStringLiteral("SELECT DISTINCT item, type FROM CABINET WHERE ('%' & item & '%' LIKE '%Onions%' OR "
                                "'%' & item & '%' LIKE '%Onion%') AND type = 'F'"));

        ExecuteSQL("INSERT INTO CABINET VALUES ('onion', 'F', 0)");
        ExecuteSQL("INSERT INTO CABINET VALUES ('red onion', 'F', 1)");
        ExecuteSQL("INSERT INTO CABINET VALUES ('onion', 'D', 0)");
        ExecuteSQL("INSERT INTO CABINET VALUES ('garlic', 'F', 0)");
        auto e = onePage();
        e->txtItem->setText(QStringLiteral("Onions, chopped"));
        e->txtItem_LostFocus();
        QStringList offered;
        for (int i = 0; i < e->cboCabinet->count(); ++i)
            offered << e->cboCabinet->itemText(i);
        offered.sort();
        QCOMPARE(offered, (QStringList {"onion", "red onion"}));
        QCOMPARE(e->cboCabinet->currentText(), QStringLiteral("onion"));

        // A typed cabinet name is kept; two-letter words look nothing up.
        e->cboCabinet->setCurrentText(QStringLiteral("shallot"));
        e->txtItem_LostFocus();
        QCOMPARE(e->cboCabinet->currentText(), QStringLiteral("shallot"));
        e->cboCabinet->setCurrentText(QString());
        e->txtItem->setText(QStringLiteral("an ox"));
        e->txtItem_LostFocus();
        QCOMPARE(e->cboCabinet->count(), 0);
        QCOMPARE(e->cboCabinet->currentText(), QString());
    }

    void populateLoadsAStoredRecipe()
    {
        ExecuteSQL("INSERT INTO RECIPE (id, servings, type, title, prep_time, cook_time) VALUES (3, '4 Servings', 'F', "
                   "'Stew', '00:20', '02:00')");
        ExecuteSQL("INSERT INTO INGREDIENTS VALUES (3, 2, '1', 'lb', 'Beef', 'beef')");
        ExecuteSQL("INSERT INTO INGREDIENTS VALUES (3, 1, '2', '---', 'Onions', 'onion')");
        ExecuteSQL("INSERT INTO DIRECTIONS VALUES (3, 1, 'Brown the beef.')");
        frmAdd2 e;
        e.TabbedView = false;
        e.EditMode = true;
        e.RecipeID = 3;
        e.PopulateForm();
        QCOMPARE(gSubWindows, qint16(1));
        QCOMPARE(e.txtTitle->text(), QStringLiteral("Stew"));
        QCOMPARE(e.cboCategory->currentText(), QString()); // NULL reads as empty
        QCOMPARE(e.txtNotes->toPlainText(), QString());
        QCOMPARE(e.txtCookTime->text(), QStringLiteral("02:00"));
        QCOMPARE(ColumnTexts(e.lvwIngredients, 3), (QStringList {"Onions", "Beef"}));
        QCOMPARE(ColumnTexts(e.lvwIngredients, 0), (QStringList {"01", "02"}));
        QCOMPARE(e.txtStep->text(), QStringLiteral("02"));
        QVERIFY(e.cmdSaveAs->isEnabled());
        QVERIFY(!e.RecipeChange);
        e.show();
        QCOMPARE(gSubWindows, qint16(1)); // loaded once
    }

    void cookingTimesAreFound()
    {
        const auto times = [](const char *direction) {
            QStringList found;
            for (const CookingTime &t : FindCookingTimes(QString::fromUtf8(direction)))
                found << t.written + u'=' + QString::number(t.seconds);
            return found;
        };
        QCOMPARE(times("Bake 25 minutes, then rest 5 min."), (QStringList {"25 minutes=1500", "5 min=300"}));
        QCOMPARE(times("Simmer for 1 1/2 hours."), QStringList {"1 1/2 hours=5400"});
        QCOMPARE(times("Roast 10-15 min or 1.5 hrs, turn after 30 seconds"),
                 (QStringList {"10-15 min=600", "1.5 hrs=5400", "30 seconds=30"}));
        QCOMPARE(times("Use 2 minced onions and 350°F."), QStringList());
        QCOMPARE(times("Chill overnight, or at least 1 hour and 20 minutes."),
                 (QStringList {"1 hour=3600", "20 minutes=1200"}));
        QCOMPARE(times("Cook 3 to 4 minutes per side; 1/2 hour more."),
                 (QStringList {"3 to 4 minutes=180", "1/2 hour=1800"}));
    }

    // Cooking mode: the keyboard moves through the steps, the step reached is kept for the
    // session, times become timers that ring until acknowledged.
    void cookingModeAtTheStove()
    {
        StoreTestRecipe(TestRecipe(QStringLiteral("Stew"), {"2|cup|Beans|beans", "---|---|Salt|salt"},
                                   {"Soak overnight.", "Simmer 1 1/2 hours, stirring every 10 minutes.", "Serve."}),
                        1);
        RecordingDesktop desktop;
        SetDesktopSession(&desktop);
        const auto restore = qScopeGuard([] { SetDesktopSession(nullptr); });
        auto *cook = new frmCook(LoadRecipe(1), 1);
        cook->show();
        cook->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(cook));
        QCOMPARE(desktop.calls, QStringList {"inhibit Cooking from a recipe"});
        QCOMPARE(cook->lstIngredients->count(), 2);
        QCOMPARE(cook->lstIngredients->item(0)->text(), QStringLiteral("2 cup Beans"));
        QTest::keyClick(cook, Qt::Key_Space);
        QCOMPARE(cook->lblStep->text(), QStringLiteral("Step 2 of 3"));
        const QList<QPushButton *> timers = cook->findChildren<QPushButton *>();
        QCOMPARE(timers.size(), 2);
        QTest::keyClick(cook, Qt::Key_End);
        QTest::keyClick(cook, Qt::Key_Right); // the last step stays
        QCOMPARE(cook->step(), 2);
        QTest::keyClick(cook, Qt::Key_Left);
        QTest::mouseClick(cook->findChildren<QPushButton *>().last(), Qt::LeftButton); // 10 minutes
        QTest::keyClick(cook, Qt::Key_Home); // timers are seen from any step
        QCOMPARE(cook->lstTimers->item(0)->text(), QStringLiteral("Step 2, 10 minutes: 10:00"));
        cook->tick(600);
        QVERIFY(cook->ringing());
        QVERIFY(cook->lstTimers->item(0)->text().endsWith(QStringLiteral("done! (Enter or click to stop)")));
        cook->tick(5); // it goes on ringing
        QVERIFY(cook->ringing());
        QCOMPARE(desktop.calls.size(), 1); // the cook is at the window: nothing more to tell
        cook->startTimer(QStringLiteral("1 min"), 60);
        cook->hide();
        cook->tick(60);
        QCOMPARE(desktop.calls.last(), QStringLiteral("Timer done: Step 1, 1 min/Stew"));
        cook->show();
        QTest::keyClick(cook, Qt::Key_Return);
        QVERIFY(!cook->ringing());
        QCOMPARE(cook->lstTimers->count(), 0);
        const int size = cook->fontSize();
        QTest::keyClick(cook, Qt::Key_Plus, Qt::ControlModifier);
        QCOMPARE(cook->fontSize(), size + 4);
        QTest::keyClick(cook, Qt::Key_D, Qt::ControlModifier);
        QVERIFY(!cook->dark());
        for (const QSize size : {QSize(800, 600), QSize(1600, 1000)}) {
            cook->resize(size);
            QCoreApplication::sendPostedEvents(); // the layout follows the new type
            SaveScreenshot(cook, QStringLiteral("frmCook-%1").arg(size.width()));
        }
        QTest::keyClick(cook, Qt::Key_Right);
        QTest::keyClick(cook, Qt::Key_Escape); // leaves; the step reached is kept
        QCOMPARE(desktop.calls.last(), QStringLiteral("release 7"));
        auto *again = new frmCook(LoadRecipe(1), 1);
        QCOMPARE(again->step(), 1);
        again->close();

        // From the editor: the recipe as it stands there, resized amounts included.
        auto editor = onePage();
        editor->EditMode = true;
        editor->RecipeID = 1;
        editor->PopulateForm();
        editor->txtServings->setText(QStringLiteral("4"));
        m_boxes->onModal([](QDialog *dialog) {
            static_cast<frmResize *>(dialog)->txtNewServings->setText(QStringLiteral("8"));
            static_cast<frmResize *>(dialog)->cmdResize_Click();
        });
        m_boxes->answerInput(QStringLiteral("8"));
        editor->cmdResize_Click();
        editor->cmdCook_Click();
        frmCook *fromEditor = nullptr;
        for (QWidget *window : QApplication::topLevelWidgets())
            if (auto *found = qobject_cast<frmCook *>(window); found && found->isVisible())
                fromEditor = found;
        QVERIFY(fromEditor);
        QCOMPARE(fromEditor->lstIngredients->item(0)->text(), QStringLiteral("4 cup Beans"));
        QCOMPARE(fromEditor->step(), 1);
        fromEditor->close();
    }

    void screenshotsOfBothArrangements()
    {
        RecipeData recipe = TestRecipe(QStringLiteral("Grandmother's Apple Pie"),
                                       {"2 1/2|cup|Flour, sifted|flour", "1|cup|Butter, cold|butter",
                                        "6|---|Apples, peeled and sliced|apple", "3/4|cup|Sugar|sugar",
                                        "1|tsp|Cinnamon|cinnamon", "---|pinch|Salt|salt"},
                                       {"Rub the butter into the flour and salt; add cold water to make a dough.",
                                        "Toss the apples with sugar and cinnamon.",
                                        "Fill the lined dish, cover, and bake at 190 C for 45 minutes."});
        recipe.category = QStringLiteral("Desserts");
        recipe.servings = QStringLiteral("8 Servings");
        recipe.prepTime = QStringLiteral("00:30");
        recipe.cookTime = QStringLiteral("00:45");
        recipe.notes = QStringLiteral("Serve warm with cream.");
        recipe.rating = QStringLiteral("****");
        StoreTestRecipe(recipe, 1);
        for (bool tabbed : {true, false}) {
            frmAdd2 e;
            e.TabbedView = tabbed;
            e.EditMode = true;
            e.RecipeID = 1;
            e.PopulateForm();
            e.show();
            if (tabbed) {
                SaveScreenshot(&e, QStringLiteral("frmAdd2-tabbed-recipe"));
                e.tabRecipe->setCurrentIndex(1);
                SaveScreenshot(&e, QStringLiteral("frmAdd2-tabbed-ingredients"));
                e.tabRecipe->setCurrentIndex(2);
                SaveScreenshot(&e, QStringLiteral("frmAdd2-tabbed-directions"));
            } else {
                SaveScreenshot(&e, QStringLiteral("frmAdd2-onepage"));
            }
            QCOMPARE(e.lvwIngredients->topLevelItemCount(), 6);
        }
    }
};

QTEST_MAIN(TestEditor)
#include "test_editor.moc"
