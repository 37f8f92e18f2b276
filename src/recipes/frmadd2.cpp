#include "frmadd2.h"
#include "reciperepository.h"

#include "core/platform/appstate.h"
#include "core/ui/controls.h"
#include "core/ui/guard.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"
#include "core/platform/programdir.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QFrame>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTimer>
#include <QTreeWidget>

namespace {

const QString kEraseQuestion = QStringLiteral("Are you sure you want to erase all data for the current recipe?");
const QString kCloseQuestion =
    QStringLiteral("Closing the New Recipe Entry Form will cause you to lose all unsaved data.\n\n"
                   "Do you wish to close anyway?");
const QString kConfirmation = QStringLiteral("Confirmation");

bool seekCategories()
{
    return gSettings.Seek;
}

bool seekAmounts()
{
    return gSettings.SeekAmount;
}

} // namespace

frmAdd2::frmAdd2(QWidget *parent) : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("frmAdd2"));
    setWindowTitle(QStringLiteral("Recipe Entry"));
    createControls();
    connectHandlers();
    AllowAnyLength(this);
}

frmAdd2::~frmAdd2()
{
    m_life.unload();
}

void frmAdd2::connectHandlers()
{
    auto changed = [this] { markChanged(); };
    for (QLineEdit *box : {txtTitle, txtServings, txtPrepTime, txtCookTime, txtItem, txtDirection})
        connect(box, &QLineEdit::textChanged, this, changed);
    connect(txtNotes, &QPlainTextEdit::textChanged, this, changed);
    for (QComboBox *combo : {cboCategory, cboRating, cboCabinet, cboAmount, cboMeasure})
        connect(combo, &QComboBox::currentTextChanged, this, changed);
    connect(cboAmount, &QComboBox::activated, this, changed);
    connect(cboMeasure, &QComboBox::activated, this, changed);

    InstallSeek(cboCategory, &seekCategories);
    InstallSeek(cboAmount, &seekAmounts);

    connect(cboRecipeType, &QComboBox::activated, this, [this] { Guarded([this] { cboRecipeType_Click(); }); });
    connect(tabRecipe, &QTabBar::tabBarClicked, this, [this](int index) {
        m_tabClickedWithMouse = true;
        if (index == tabRecipe->currentIndex())
            tabRecipe_Click();
    });
    connect(tabRecipe, &QTabBar::currentChanged, this, &frmAdd2::tabRecipe_Click);

    connect(cmdIngAdd, &QPushButton::clicked, this, &frmAdd2::cmdIngAdd_Click);
    connect(cmdIngRemove, &QPushButton::clicked, this, &frmAdd2::cmdIngRemove_Click);
    connect(cmdClearIng, &QPushButton::clicked, this, &frmAdd2::cmdClearIng_Click);
    connect(lvwIngredients, &QTreeWidget::itemClicked, this, &frmAdd2::lvwIngredients_Click);
    connect(cmdDirAdd, &QPushButton::clicked, this, &frmAdd2::cmdDirAdd_Click);
    connect(cmdDirRemove, &QPushButton::clicked, this, &frmAdd2::cmdDirRemove_Click);
    connect(cmdClearDir, &QPushButton::clicked, this, &frmAdd2::cmdClearDir_Click);
    connect(lvwDirections, &QTreeWidget::itemClicked, this, &frmAdd2::lvwDirections_Click);
    connect(cmdSave, &QPushButton::clicked, this, &frmAdd2::cmdSave_Click);
    connect(cmdSaveAs, &QPushButton::clicked, this, &frmAdd2::cmdSaveAs_Click);
    connect(cmdResize, &QPushButton::clicked, this, &frmAdd2::cmdResize_Click);
    connect(cmdView, &QPushButton::clicked, this, &frmAdd2::cmdView_Click);
    connect(cmdCook, &QPushButton::clicked, this, &frmAdd2::cmdCook_Click);
    connect(cmdClear, &QPushButton::clicked, this, &frmAdd2::cmdClear_Click);
    connect(cmdClose, &QPushButton::clicked, this, &frmAdd2::cmdClose_Click);

    // Focus, leaving and Enter are watched for the controls of the entry.
    const QList<QWidget *> watched = {txtTitle,   cboCategory, txtServings,  txtPrepTime, txtCookTime,
                                      cboRating,  txtNotes,    cboAmount,    cboMeasure,  txtItem,
                                      cboCabinet, txtStep,     txtDirection, cmdClearIng, cmdClearDir};
    for (QWidget *w : watched) {
        w->installEventFilter(this);
        if (auto *combo = qobject_cast<QComboBox *>(w); combo && combo->lineEdit())
            combo->lineEdit()->installEventFilter(this);
    }
}

bool frmAdd2::event(QEvent *event)
{
    if (event->type() == QEvent::Show && !m_life.loaded())
        Guarded([this] { Form_Load(); });
    else if (event->type() == QEvent::WindowDeactivate)
        // Where the user went: a message box or the resize dialog, another program (no
        // Mirepan window is active then), or another Mirepan window.
        m_leftForModal = QApplication::activeModalWidget() != nullptr || QApplication::activeWindow() == nullptr;
    else if (event->type() == QEvent::WindowActivate && m_life.loaded()) {
        // Only coming from another Mirepan window is an activation. Back from a question the
        // user stays on the tab it was about; back from another program (with ingredients
        // copied from a web page) on the tab and in the field they left.
        if (!m_leftForModal)
            Form_Activate();
        m_leftForModal = false;
    }
    return QWidget::event(event);
}

void frmAdd2::Form_Load()
{
    if (!m_life.load())
        return;
    FillRecipeTypes(cboRecipeType);
    cboRecipeType->setCurrentText(RecipeType);
    LoadLists();
    if (!EditMode)
        cmdSaveAs->setEnabled(false);
    ResetForm();
    SetupColumns();
    setNextStep();
    arrangeLayout();
    RecipeChange = false;
}

void frmAdd2::Form_Activate()
{
    if (TabbedView)
        selectTab(1);
}

void frmAdd2::LoadLists()
{
    cboRating->clear();
    cboCategory->clear();
    cboMeasure->clear();
    cboAmount->clear();
    LoadIniList(cboRating, QStringLiteral("Rating"));
    if (RecipeType == u"Food") {
        LoadIniList(cboCategory, QStringLiteral("Category_Food"));
        LoadIniList(cboMeasure, QStringLiteral("Measure_Food"));
        LoadIniList(cboAmount, QStringLiteral("Amount_Food"));
        // The time fields are not enabled again: a window switched back to Food keeps them grey.
        txtCookTime->setText(QStringLiteral("00:00"));
        txtPrepTime->setText(QStringLiteral("00:00"));
        return;
    }
    DisableControl(txtCookTime);
    DisableControl(txtPrepTime);
    const QString suffix = RecipeType == u"Drink" ? QStringLiteral("Drink") : QStringLiteral("Other");
    LoadIniList(cboCategory, QStringLiteral("Category_") + suffix);
    LoadIniList(cboMeasure, QStringLiteral("Measure_") + suffix);
    LoadIniList(cboAmount, QStringLiteral("Amount_") + suffix);
}

void frmAdd2::SetupColumns()
{
    // Widths in twips, 15 to the pixel. The ingredient number is kept but not shown.
    lvwIngredients->setHeaderLabels({QStringLiteral("ID"), QStringLiteral("Amount"), QStringLiteral("Measure"),
                                     QStringLiteral("Ingredient"), QStringLiteral("In the cabinet as...")});
    // A heading is never cut off, whatever the font.
    auto fit = [](QTreeWidget *list, int column, int twips) {
        const int heading = list->fontMetrics().horizontalAdvance(list->headerItem()->text(column)) + 14;
        list->setColumnWidth(column, std::max(twips / 15, heading));
    };
    const int ingredientWidths[] = {0, 800, 800, 3500, 2200};
    for (int c = 1; c < 5; ++c)
        fit(lvwIngredients, c, ingredientWidths[c]);
    lvwIngredients->setColumnHidden(0, true);
    lvwDirections->setHeaderLabels({QStringLiteral("Step"), QStringLiteral("Direction")});
    fit(lvwDirections, 0, 600);
    fit(lvwDirections, 1, 6700);
}

void frmAdd2::ResetForm()
{
    cboRating->setCurrentIndex(0);
    txtTitle->clear();
    cboCategory->setCurrentText(QString());
    txtServings->clear();
    txtNotes->clear();
    txtPrepTime->setText(QStringLiteral("00:00"));
    txtCookTime->setText(QStringLiteral("00:00"));
    lvwIngredients->clear();
    cboAmount->setCurrentText(kUnset);
    cboMeasure->setCurrentText(kUnset);
    cboMeasure->setCurrentIndex(0);
    txtItem->clear();
    cboCabinet->setCurrentText(QString());
    lvwDirections->clear();
    txtStep->setText(QStringLiteral("01"));
    txtDirection->clear();
    SelectedIngredient = -1;
    setDefaultButton(cmdIngAdd);
    RecipeChange = false;
}

void frmAdd2::PopulateForm()
{
    Form_Load();
    if (EditMode) {
        const RecipeData recipe = LoadRecipe(RecipeID);
        txtTitle->setText(recipe.title);
        cboCategory->setCurrentText(recipe.category);
        txtServings->setText(recipe.servings);
        txtPrepTime->setText(recipe.prepTime);
        txtCookTime->setText(recipe.cookTime);
        txtNotes->setPlainText(recipe.notes);
        cboRating->setCurrentText(recipe.rating);
        QList<QTreeWidgetItem *> ingredients;
        for (const IngredientLine &line : recipe.ingredients)
            ingredients.append(
                new QTreeWidgetItem({line.number, line.amount, line.measure, line.ingredient, line.cabinet}));
        lvwIngredients->addTopLevelItems(ingredients);
        QList<QTreeWidgetItem *> directions;
        for (const DirectionLine &line : recipe.directions)
            directions.append(new QTreeWidgetItem({line.step, line.direction}));
        lvwDirections->addTopLevelItems(directions);
        setNextStep();
    }
    RecipeChange = false;
}

RecipeData frmAdd2::CurrentRecipe() const
{
    RecipeData recipe;
    recipe.recipeType = RecipeType;
    recipe.servings = txtServings->text();
    recipe.category = cboCategory->currentText();
    recipe.title = txtTitle->text();
    recipe.prepTime = txtPrepTime->text();
    recipe.cookTime = txtCookTime->text();
    recipe.notes = txtNotes->toPlainText();
    recipe.rating = cboRating->currentText();
    for (int i = 0; i < lvwIngredients->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *item = lvwIngredients->topLevelItem(i);
        recipe.ingredients.append({item->text(0), item->text(1), item->text(2), item->text(3), item->text(4)});
    }
    for (int i = 0; i < lvwDirections->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *item = lvwDirections->topLevelItem(i);
        recipe.directions.append({item->text(0), item->text(1)});
    }
    return recipe;
}

void frmAdd2::cboRecipeType_Click()
{
    gRecipeType = cboRecipeType->currentText();
    RecipeType = gRecipeType;
    LoadLists();
}

void frmAdd2::markChanged()
{
    RecipeChange = true;
}

void frmAdd2::txtPrepTime_LostFocus()
{
    txtPrepTime->setText(NormaliseTimeText(txtPrepTime->text()));
}

void frmAdd2::txtCookTime_LostFocus()
{
    txtCookTime->setText(NormaliseTimeText(txtCookTime->text()));
}

void frmAdd2::cboCategory_LostFocus()
{
    // The completion's memory is the typed text; leaving the box forgets it.
    if (QLineEdit *edit = cboCategory->lineEdit())
        Q_EMIT edit->editingFinished();
}

void frmAdd2::cmdClear_Click()
{
    if (MsgBox(kEraseQuestion, Msg::QuestionDefaultNo, kConfirmation) != MsgResult::Yes)
        return;
    ResetForm();
    if (TabbedView)
        selectTab(1);
    txtTitle->setFocus();
}

void frmAdd2::cmdClose_Click()
{
    if (RecipeChange && MsgBox(kCloseQuestion, Msg::QuestionDefaultNo, kConfirmation) != MsgResult::Yes)
        return;
    close();
}

void frmAdd2::closeEvent(QCloseEvent *event)
{
    // Closing by the frame asks nothing.
    m_life.unload();
    event->accept();
}

void frmAdd2::setDefaultButton(QPushButton *button)
{
    if (m_defaultButton)
        m_defaultButton->setDefault(false);
    m_defaultButton = button;
    m_defaultButton->setDefault(true);
}

int frmAdd2::selectedTab() const
{
    return tabRecipe->currentIndex() + 1;
}

bool frmAdd2::ingredientTabShown() const
{
    return !TabbedView || selectedTab() == 2;
}

bool frmAdd2::directionTabShown() const
{
    return !TabbedView || selectedTab() == 3;
}

void frmAdd2::selectTab(int tab)
{
    if (!TabbedView)
        return;
    m_tabClickedWithMouse = false;
    if (tabRecipe->currentIndex() == tab - 1)
        tabRecipe_Click();
    else
        tabRecipe->setCurrentIndex(tab - 1);
}

void frmAdd2::tabRecipe_Click()
{
    const int index = tabRecipe->currentIndex();
    if (TabbedView) {
        for (int i = 0; i < 3; ++i)
            fraRecipe[i]->setVisible(i == index);
    }
    if (!m_tabClickedWithMouse)
        return;
    m_tabClickedWithMouse = false;
    QWidget *first[] = {txtTitle, cboAmount, txtDirection};
    first[index]->setFocus();
}

bool frmAdd2::eventFilter(QObject *watched, QEvent *event)
{
    // A combo box's line edit speaks for its combo box.
    QWidget *control = qobject_cast<QWidget *>(watched);
    if (auto *edit = qobject_cast<QLineEdit *>(watched); edit && qobject_cast<QComboBox *>(edit->parentWidget()))
        control = edit->parentWidget();

    switch (event->type()) {
    case QEvent::FocusIn: {
        // Back from another program (or a box), the caret and selection stay as the user left
        // them: a paste must not replace a whole text the user never selected.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
            break;
        // The whole text is selected, after the click that gave the focus has placed the cursor.
        QLineEdit *box = qobject_cast<QLineEdit *>(control);
        if (control == cboAmount || control == cboCabinet)
            box = static_cast<QComboBox *>(control)->lineEdit();
        if (box)
            QTimer::singleShot(0, box, [box] { SelectAllText(box); });
        if (control == txtNotes)
            txtNotes->selectAll();
        if (TabbedView) {
            if (control == txtTitle || control == txtNotes)
                selectTab(1);
            else if (control == cboAmount || control == cmdClearIng)
                selectTab(2);
            else if (control == txtStep || control == cmdClearDir)
                selectTab(3);
        }
        if (control == cboAmount || control == cboMeasure || control == txtItem)
            setDefaultButton(cmdIngAdd);
        else if (control == txtStep || control == txtDirection)
            setDefaultButton(cmdDirAdd);
        break;
    }
    case QEvent::FocusOut: {
        auto *focus = static_cast<QFocusEvent *>(event);
        if (focus->reason() == Qt::PopupFocusReason || watched != control)
            break; // the combo box's own line edit; its combo box reports the leaving
        leave(control, false);
        break;
    }
    case QEvent::KeyPress: {
        auto *key = static_cast<QKeyEvent *>(event);
        if ((key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) || control == txtNotes || !m_defaultButton)
            break;
        // Enter adds the entry being typed, as if the field had been left first.
        leave(control, true);
        if (m_defaultButton->isEnabled())
            m_defaultButton->click();
        return true;
    }
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void frmAdd2::leave(QWidget *control, bool byEnter)
{
    // What leaving a box does; Enter in the category leaves nothing, as it adds no entry.
    const struct {
        QWidget *control;
        void (frmAdd2::*handler)();
        bool onEnter;
    } handlers[] = {
        {txtPrepTime, &frmAdd2::txtPrepTime_LostFocus, true},  {txtCookTime, &frmAdd2::txtCookTime_LostFocus, true},
        {cboCategory, &frmAdd2::cboCategory_LostFocus, false}, {txtItem, &frmAdd2::txtItem_LostFocus, true},
        {txtStep, &frmAdd2::txtStep_LostFocus, true},
    };
    for (const auto &h : handlers) {
        if (h.control == control && (h.onEnter || !byEnter)) {
            Guarded([&] { (this->*h.handler)(); });
            return;
        }
    }
}

void frmAdd2::setNextStep()
{
    txtStep->setText(Format(lvwDirections->topLevelItemCount() + 1, QStringLiteral("00")));
}

void frmAdd2::renumber(QTreeWidget *list)
{
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        list->topLevelItem(i)->setText(0, Format(i + 1, QStringLiteral("00")));
}

namespace {

frmAdd2 *newEditor(const QString &recipeType)
{
    auto *editor = new frmAdd2;
    editor->setAttribute(Qt::WA_DeleteOnClose);
    editor->TabbedView = !gSettings.StandardAdd;
    editor->RecipeType = recipeType;
    return editor;
}

} // namespace

frmAdd2 *OpenNewRecipeEditor()
{
    frmAdd2 *editor = newEditor(gRecipeType);
    editor->show();
    return editor;
}

frmAdd2 *OpenRecipeEditor(qint32 recipeId, const QString &recipeType)
{
    frmAdd2 *editor = newEditor(recipeType);
    editor->EditMode = true;
    editor->RecipeID = recipeId;
    editor->PopulateForm();
    editor->show();
    return editor;
}
