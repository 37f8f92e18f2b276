// The editor's controls and its two arrangements: the tabbed view shows the general fields,
// the ingredients and the directions one at a time; the one-page view shows them all.

#include "frmadd2.h"

#include "core/ui/controls.h"

#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QTreeWidget *newList(QWidget *parent, const char *name)
{
    auto *list = Named(new QTreeWidget(parent), name);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->header()->setStretchLastSection(true);
    list->header()->setSectionsMovable(false);
    return list;
}

QLabel *buddyLabel(const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text, buddy->parentWidget());
    label->setBuddy(buddy);
    return label;
}

} // namespace

void frmAdd2::createControls()
{
    for (int i = 0; i < 3; ++i) {
        fraRecipe[i] = new QFrame(this);
        fraRecipe[i]->setObjectName(QStringLiteral("fraRecipe%1").arg(i));
    }
    QFrame *general = fraRecipe[0];
    cboRecipeType = Named(new QComboBox(general), "cboRecipeType");
    txtTitle = Named(new QLineEdit(general), "txtTitle");
    cboCategory = NewEditableCombo(general, "cboCategory");
    txtServings = Named(new QLineEdit(general), "txtServings");
    txtPrepTime = Named(new QLineEdit(general), "txtPrepTime");
    txtCookTime = Named(new QLineEdit(general), "txtCookTime");
    cboRating = NewEditableCombo(general, "cboRating");
    txtNotes = Named(new QPlainTextEdit(general), "txtNotes");
    txtNotes->setTabChangesFocus(true);
    txtNotes->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (QLineEdit *time : {txtPrepTime, txtCookTime}) {
        time->setMaximumWidth(90);
        time->setToolTip(QStringLiteral("Hours and minutes: 130 or 1:30 is an hour and a half"));
    }

    QFrame *ingredients = fraRecipe[1];
    lvwIngredients = newList(ingredients, "lvwIngredients");
    cboAmount = NewEditableCombo(ingredients, "cboAmount");
    cboMeasure = NewEditableCombo(ingredients, "cboMeasure");
    txtItem = Named(new QLineEdit(ingredients), "txtItem");
    cboCabinet = NewEditableCombo(ingredients, "cboCabinet");
    cmdIngAdd = Named(new QPushButton(QStringLiteral("&Add"), ingredients), "cmdIngAdd");
    cmdIngRemove = Named(new QPushButton(QStringLiteral("Re&move"), ingredients), "cmdIngRemove");
    cmdClearIng = Named(new QPushButton(QStringLiteral("Clear Entry"), ingredients), "cmdClearIng");

    QFrame *directions = fraRecipe[2];
    lvwDirections = newList(directions, "lvwDirections");
    txtStep = Named(new QLineEdit(directions), "txtStep");
    txtStep->setMaximumWidth(50);
    txtDirection = Named(new QLineEdit(directions), "txtDirection");
    cmdDirAdd = Named(new QPushButton(QStringLiteral("Add Step"), directions), "cmdDirAdd");
    cmdDirRemove = Named(new QPushButton(QStringLiteral("Remove Step"), directions), "cmdDirRemove");
    cmdClearDir = Named(new QPushButton(QStringLiteral("Clear Te&xt"), directions), "cmdClearDir");

    cmdSave = Named(new QPushButton(QStringLiteral("&Save"), this), "cmdSave");
    cmdSaveAs = Named(new QPushButton(QStringLiteral("Save As"), this), "cmdSaveAs");
    cmdView = Named(new QPushButton(QStringLiteral("&View"), this), "cmdView");
    cmdResize = Named(new QPushButton(QStringLiteral("&Resize Recipe"), this), "cmdResize");
    // Every letter of its name is another control's access key here: F11, as full screen is.
    cmdCook = Named(new QPushButton(QStringLiteral("Cooking Mode (F11)"), this), "cmdCook");
    cmdCook->setShortcut(Qt::Key_F11);
    cmdClear = Named(new QPushButton(QStringLiteral("C&lear"), this), "cmdClear");
    cmdClose = Named(new QPushButton(QStringLiteral("&Close"), this), "cmdClose");
    for (QPushButton *button : findChildren<QPushButton *>())
        button->setAutoDefault(false);

    tabRecipe = Named(new QTabBar(this), "tabRecipe");
    tabRecipe->addTab(QStringLiteral("&1 Recipe"));
    tabRecipe->addTab(QStringLiteral("&2 Ingredients"));
    tabRecipe->addTab(QStringLiteral("&3 Directions"));
    tabRecipe->setExpanding(false);

    // Each frame's own layout is the same in both arrangements.
    auto *form = new QFormLayout(general);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(buddyLabel(QStringLiteral("Recipe t&ype:"), cboRecipeType), cboRecipeType);
    form->addRow(buddyLabel(QStringLiteral("&Title:"), txtTitle), txtTitle);
    form->addRow(buddyLabel(QStringLiteral("Cate&gory:"), cboCategory), cboCategory);
    form->addRow(buddyLabel(QStringLiteral("Servi&ngs:"), txtServings), txtServings);
    form->addRow(buddyLabel(QStringLiteral("&Prep time:"), txtPrepTime), txtPrepTime);
    form->addRow(buddyLabel(QStringLiteral("Coo&k time:"), txtCookTime), txtCookTime);
    form->addRow(buddyLabel(QStringLiteral("Rating:"), cboRating), cboRating);
    form->addRow(buddyLabel(QStringLiteral("Not&es:"), txtNotes), txtNotes);

    auto *ingredientLayout = new QGridLayout(ingredients);
    ingredientLayout->addWidget(lvwIngredients, 0, 0, 1, 4);
    ingredientLayout->addWidget(buddyLabel(QStringLiteral("Am&ount"), cboAmount), 1, 0);
    ingredientLayout->addWidget(buddyLabel(QStringLiteral("Meas&ure"), cboMeasure), 1, 1);
    ingredientLayout->addWidget(buddyLabel(QStringLiteral("Ingre&dient"), txtItem), 1, 2);
    ingredientLayout->addWidget(buddyLabel(QStringLiteral("In the ca&binet as..."), cboCabinet), 1, 3);
    ingredientLayout->addWidget(cboAmount, 2, 0);
    ingredientLayout->addWidget(cboMeasure, 2, 1);
    ingredientLayout->addWidget(txtItem, 2, 2);
    ingredientLayout->addWidget(cboCabinet, 2, 3);
    ingredientLayout->setColumnStretch(0, 2);
    ingredientLayout->setColumnStretch(1, 2);
    ingredientLayout->setColumnStretch(2, 6);
    ingredientLayout->setColumnStretch(3, 4);
    auto *ingredientButtons = new QHBoxLayout;
    ingredientButtons->addStretch();
    ingredientButtons->addWidget(cmdIngAdd);
    ingredientButtons->addWidget(cmdIngRemove);
    ingredientButtons->addWidget(cmdClearIng);
    ingredientLayout->addLayout(ingredientButtons, 3, 0, 1, 4);
    ingredientLayout->setRowStretch(0, 1);

    auto *directionLayout = new QGridLayout(directions);
    directionLayout->addWidget(lvwDirections, 0, 0, 1, 2);
    directionLayout->addWidget(buddyLabel(QStringLiteral("Step"), txtStep), 1, 0);
    directionLayout->addWidget(buddyLabel(QStringLiteral("D&irection"), txtDirection), 1, 1);
    directionLayout->addWidget(txtStep, 2, 0);
    directionLayout->addWidget(txtDirection, 2, 1);
    auto *directionButtons = new QHBoxLayout;
    directionButtons->addStretch();
    directionButtons->addWidget(cmdDirAdd);
    directionButtons->addWidget(cmdDirRemove);
    directionButtons->addWidget(cmdClearDir);
    directionLayout->addLayout(directionButtons, 3, 0, 1, 2);
    directionLayout->setRowStretch(0, 1);
    directionLayout->setColumnStretch(1, 1);
}

void frmAdd2::arrangeLayout()
{
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {cmdSave, cmdSaveAs, cmdView, cmdResize, cmdCook, cmdClear})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(cmdClose);

    auto *page = new QGridLayout;
    if (TabbedView) {
        // The frames share one place; the tab strip shows one of them.
        for (QFrame *frame : fraRecipe) {
            frame->setFrameShape(QFrame::StyledPanel);
            page->addWidget(frame, 0, 0);
        }
        FitToScreen(this, 720, 480);
    } else {
        tabRecipe->hide();
        for (QFrame *frame : fraRecipe)
            frame->setFrameShape(QFrame::StyledPanel);
        page->addWidget(fraRecipe[0], 0, 0, 2, 1);
        page->addWidget(fraRecipe[1], 0, 1);
        page->addWidget(fraRecipe[2], 1, 1);
        page->setColumnStretch(0, 2);
        page->setColumnStretch(1, 3);
        page->setRowStretch(0, 3);
        page->setRowStretch(1, 2);
        FitToScreen(this, 1080, 640);
    }
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(0);
    if (TabbedView)
        layout->addWidget(tabRecipe);
    layout->addLayout(page, 1);
    layout->addSpacing(8);
    layout->addLayout(buttons);
    tabRecipe_Click();
}
