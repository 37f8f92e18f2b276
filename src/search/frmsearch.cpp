#include "frmsearch.h"

#include "recipes/frmcook.h"

#include "searchquery.h"

#include "cabinet/modcabinet.h"
#include "core/platform/appstate.h"
#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/ui/guard.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "recipes/reciperepository.h"
#include "recipes/searchindexes.h"
#include "core/ui/periphery.h"
#include "core/platform/platform.h"
#include "settings/frmsettings.h"
#include "recipes/frmadd2.h"
#include "reports/recipereport.h"
#include "core/ui/voicewindows.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QString kTitleOrder = QStringLiteral("Recipe Title: Alphabetical order (click to change)");
const QString kEntryOrder = QStringLiteral("Recipe Title: Ordered recipes were entered (click to change)");
const QString kOnlyNew =
    QStringLiteral("You have the setting checked off to limit the results to only recipes entered after installation.");
const QString kCloseCaption = QStringLiteral("&Close");
const QString kSelectCaption = QStringLiteral("S&elect");

// Titles sort without regard to case, as the household reads them.
class RecipeItem : public QTreeWidgetItem
{
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem &other) const override
    {
        const int column = treeWidget() ? treeWidget()->sortColumn() : 1;
        return text(column).compare(other.text(column), Qt::CaseInsensitive) < 0;
    }
};

bool seekCategories()
{
    return gSettings.Seek;
}

} // namespace

frmSearch::frmSearch(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSearch"));
    buildLayout();
    SearchRecipeType = gRecipeType;

    connect(cboRecipeType, &QComboBox::activated, this, &frmSearch::cboRecipeType_Click);
    connect(cmdSearch, &QPushButton::clicked, this, &frmSearch::cmdSearch_Click);
    connect(cmdClear, &QPushButton::clicked, this, &frmSearch::cmdClear_Click);
    connect(cmdEdit, &QPushButton::clicked, this, &frmSearch::cmdEdit_Click);
    connect(cmdView, &QPushButton::clicked, this, &frmSearch::cmdView_Click);
    connect(cmdDelete, &QPushButton::clicked, this, &frmSearch::cmdDelete_Click);
    connect(cmdCook, &QPushButton::clicked, this, &frmSearch::cmdCook_Click);
    connect(cmdClose, &QPushButton::clicked, this, &frmSearch::cmdClose_Click);
    connect(mnuClose, &QAction::triggered, this, &QWidget::close);
    connect(mnuSettings, &QAction::triggered, this, [] { Guarded([] { ShowSettings(); }); });
    connect(mnuAbout, &QAction::triggered, this, [] { ShowAbout(); });
    connect(mnuContact, &QAction::triggered, this, [] { ShowContact(); });
    connect(lvwRecipes->header(), &QHeaderView::sectionClicked, this, &frmSearch::lvwRecipes_ColumnClick);
    connect(lvwRecipes, &QTreeWidget::itemDoubleClicked, this, &frmSearch::lvwRecipes_DblClick);
    connect(txtFind, &QLineEdit::textChanged, this, &frmSearch::txtFind_Change);
    txtPrepTime->installEventFilter(this);
    txtCookTime->installEventFilter(this);
    InstallSeek(cboCategory, &seekCategories);
}

frmSearch::~frmSearch()
{
    m_life.unload();
}

void frmSearch::buildLayout()
{
    cboRecipeType = Named(new QComboBox(this), "cboRecipeType");
    txtTitle = Named(new QLineEdit(this), "txtTitle");
    cboCategory = NewEditableCombo(this, "cboCategory");
    txtIngredient = Named(new QLineEdit(this), "txtIngredient");
    txtPrepTime = Named(new QLineEdit(this), "txtPrepTime");
    txtCookTime = Named(new QLineEdit(this), "txtCookTime");
    for (QLineEdit *time : {txtPrepTime, txtCookTime}) {
        time->setMaximumWidth(90);
        time->setPlaceholderText(QStringLiteral("hh:mm"));
    }
    cboRating = NewEditableCombo(this, "cboRating");
    chkCabinet = Named(new QCheckBox(QStringLiteral("Only recipes I can make from my ca&binet"), this), "chkCabinet");

    lvwRecipes = Named(new QTreeWidget(this), "lvwRecipes");
    lvwRecipes->setRootIsDecorated(false);
    lvwRecipes->setUniformRowHeights(true);
    lvwRecipes->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lvwRecipes->setHeaderLabels({QStringLiteral("ID"), kTitleOrder});
    lvwRecipes->setColumnWidth(1, 5250 / 15);
    lvwRecipes->setColumnHidden(0, true);
    lvwRecipes->header()->setSectionsClickable(true);
    lvwRecipes->header()->setStretchLastSection(true);
    lblResults = Named(new QLabel(QStringLiteral("Results"), this), "lblResults");
    txtFind = Named(new QLineEdit(this), "txtFind");

    cmdSearch = Named(new QPushButton(QStringLiteral("&Search"), this), "cmdSearch");
    cmdSearch->setDefault(true);
    cmdClear = Named(new QPushButton(QStringLiteral("C&lear"), this), "cmdClear");
    cmdEdit = Named(new QPushButton(QStringLiteral("&Edit/Copy"), this), "cmdEdit");
    cmdView = Named(new QPushButton(QStringLiteral("&View/Print"), this), "cmdView");
    cmdDelete = Named(new QPushButton(QStringLiteral("&Delete"), this), "cmdDelete");
    cmdCook = Named(new QPushButton(QStringLiteral("Cooking &Mode"), this), "cmdCook");
    cmdClose = Named(new QPushButton(kCloseCaption, this), "cmdClose");
    for (QPushButton *button : {cmdClear, cmdEdit, cmdView, cmdDelete, cmdCook, cmdClose})
        button->setAutoDefault(false);

    auto *menuBar = new QMenuBar(this);
    QMenu *file = menuBar->addMenu(QStringLiteral("&File"));
    mnuClose = file->addAction(QStringLiteral("&Close"));
    mnuClose->setObjectName(QStringLiteral("mnuClose"));
    QMenu *tools = menuBar->addMenu(QStringLiteral("T&ools"));
    mnuSettings = tools->addAction(QStringLiteral("&Settings"));
    mnuSettings->setObjectName(QStringLiteral("mnuSettings"));
    QMenu *help = menuBar->addMenu(QStringLiteral("&Help"));
    mnuAbout = help->addAction(QStringLiteral("&About"));
    mnuAbout->setObjectName(QStringLiteral("mnuAbout"));
    mnuContact = help->addAction(QStringLiteral("&Contact Information"));
    mnuContact->setObjectName(QStringLiteral("mnuContact"));

    auto *criteria = new QFormLayout;
    criteria->addRow(QStringLiteral("Recipe t&ype:"), cboRecipeType);
    criteria->addRow(QStringLiteral("&Title:"), txtTitle);
    criteria->addRow(QStringLiteral("Cate&gory:"), cboCategory);
    criteria->addRow(QStringLiteral("&Ingredient:"), txtIngredient);
    criteria->addRow(QStringLiteral("&Prep time at most:"), txtPrepTime);
    criteria->addRow(QStringLiteral("Coo&k time at most:"), txtCookTime);
    criteria->addRow(QStringLiteral("&Rating:"), cboRating);
    criteria->addRow(QString(), chkCabinet);
    auto *criteriaButtons = new QHBoxLayout;
    criteriaButtons->addStretch();
    criteriaButtons->addWidget(cmdSearch);
    criteriaButtons->addWidget(cmdClear);
    auto *left = new QVBoxLayout;
    left->addLayout(criteria);
    left->addLayout(criteriaButtons);
    left->addStretch();

    auto *findRow = new QHBoxLayout;
    auto *findLabel = new QLabel(QStringLiteral("Fi&nd:"), this);
    findLabel->setBuddy(txtFind);
    findRow->addWidget(findLabel);
    findRow->addWidget(txtFind, 1);
    findRow->addWidget(lblResults);
    auto *actions = new QHBoxLayout;
    actions->addWidget(cmdEdit);
    actions->addWidget(cmdView);
    actions->addWidget(cmdDelete);
    actions->addWidget(cmdCook);
    actions->addStretch();
    actions->addWidget(cmdClose);
    auto *right = new QVBoxLayout;
    right->addLayout(findRow);
    right->addWidget(lvwRecipes, 1);
    right->addLayout(actions);

    auto *columns = new QHBoxLayout;
    columns->addLayout(left, 2);
    columns->addSpacing(12);
    columns->addLayout(right, 3);
    auto *layout = new QVBoxLayout(this);
    layout->setMenuBar(menuBar);
    layout->addLayout(columns);
    FitToScreen(this, 900, 520);
}

bool frmSearch::event(QEvent *event)
{
    if (event->type() == QEvent::Show && !m_life.loaded())
        Guarded([this] { Form_Load(); });
    return QDialog::event(event);
}

void frmSearch::Form_Load()
{
    if (!m_life.load())
        return;
    FillRecipeTypes(cboRecipeType);
    cboRecipeType->setCurrentText(gRecipeType);
    LoadIniList(cboRating, QStringLiteral("Rating"));
    cboRating->setCurrentIndex(0);
    prepareForType();
}

void frmSearch::ApplySearchRecipeType()
{
    gRecipeType = SearchRecipeType;
}

void frmSearch::prepareForType()
{
    cboCategory->clear();
    lvwRecipes->clear();
    m_upperTitles.clear();
    const QString type = cboRecipeType->currentText();
    setWindowTitle(type + QStringLiteral(" - Recipe Search"));
    if (type == u"Food") {
        LoadIniList(cboCategory, QStringLiteral("Category_Food"));
        EnableControl(txtPrepTime);
        EnableControl(txtCookTime);
    } else {
        // Drink and Other share the drink categories.
        LoadIniList(cboCategory, QStringLiteral("Category_Drink"));
        DisableControl(txtPrepTime);
        DisableControl(txtCookTime);
    }
}

void frmSearch::cboRecipeType_Click()
{
    gRecipeType = cboRecipeType->currentText();
    prepareForType();
}

bool frmSearch::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut) {
        if (watched == txtPrepTime)
            Guarded([this] { txtPrepTime_LostFocus(); });
        else if (watched == txtCookTime)
            Guarded([this] { txtCookTime_LostFocus(); });
    }
    return QDialog::eventFilter(watched, event);
}

namespace {
// An empty box means no limit; anything typed becomes hours and minutes.
void normaliseLimit(QLineEdit *box)
{
    QString digits = box->text();
    digits.remove(u':');
    if (!digits.trimmed().isEmpty())
        box->setText(NormaliseTimeText(digits));
}
} // namespace

void frmSearch::txtPrepTime_LostFocus()
{
    normaliseLimit(txtPrepTime);
}

void frmSearch::txtCookTime_LostFocus()
{
    normaliseLimit(txtCookTime);
}

void frmSearch::cmdSearch_Click()
{
    Guarded([this] {
        if (ReportNotConnected())
            return;
        // Enter in a time box searches before the box is left: its text is read as it will
        // be shown.
        txtPrepTime_LostFocus();
        txtCookTime_LostFocus();
        txtFind->clear();
        lvwRecipes->clear();
        m_upperTitles.clear();
        WaitCursor busy;
        const bool cabinetOnly = chkCabinet->isChecked();
        QList<qint32> available;
        if (cabinetOnly) // an empty cabinet makes nothing: the list stays empty, "Results: 0"
            available = BuildAvailableRecipeList(gRecipeType);

        SearchCriteria criteria;
        criteria.title = txtTitle->text();
        criteria.category = cboCategory->currentText();
        criteria.ingredient = txtIngredient->text();
        criteria.prepTime = txtPrepTime->text();
        criteria.cookTime = txtCookTime->text();
        criteria.rating = cboRating->currentText();
        SearchContext context;
        context.recipeType = gRecipeType;
        context.onlyNewRecipes = gSettings.OnlyNewRecipes;
        context.maxRecipeId = gMaxRecipeID;
        gSQL = BuildSearchSql(criteria, context);
        {
            // Where the database keeps which recipes are available, the search reads those alone.
            const SearchNarrowing kept(cabinetOnly ? KeptAvailabilityCondition(gRecipeType) : QString());
            gRS = ExecuteSQL(gSQL);
        }

        if (gRS.eof() && context.onlyNewRecipes)
            MsgBox(kOnlyNew, Msg::Information, QStringLiteral("Confirmation"));
        QList<QTreeWidgetItem *> items;
        for (; !gRS.eof(); gRS.MoveNext()) {
            const qint32 id = qint32(gRS.integer(0));
            if (cabinetOnly && !IsRecipeAvailable(available, id))
                continue;
            items.append(new RecipeItem({Format(id, QStringLiteral("0000000")), gRS.text(1)}));
        }
        gRS = Recordset();
        lvwRecipes->addTopLevelItems(items);
        // The query answers in title order; entry order is kept when that was chosen.
        if (!m_sortedByTitle)
            lvwRecipes->sortItems(0, Qt::AscendingOrder);
        lblResults->setText(QStringLiteral("Results: ") + QString::number(items.size()));
        txtTitle->setFocus();
    });
}

void frmSearch::cmdClear_Click()
{
    txtCookTime->clear();
    txtIngredient->clear();
    txtPrepTime->clear();
    txtTitle->clear();
    txtFind->clear();
    cboCategory->setCurrentText(QString());
    lblResults->setText(QStringLiteral("Results"));
    lvwRecipes->clear();
    m_upperTitles.clear();
    txtTitle->setFocus();
}

void frmSearch::lvwRecipes_ColumnClick()
{
    m_sortedByTitle = !m_sortedByTitle;
    lvwRecipes->sortItems(m_sortedByTitle ? 1 : 0, Qt::AscendingOrder);
    lvwRecipes->headerItem()->setText(1, m_sortedByTitle ? kTitleOrder : kEntryOrder);
    m_upperTitles.clear();
}

void frmSearch::txtFind_Change()
{
    const int count = lvwRecipes->topLevelItemCount();
    if (count == 0)
        return;
    lvwRecipes->scrollToItem(lvwRecipes->topLevelItem(count - 1));
    const QString find = txtFind->text().toUpper();
    if (find.isEmpty())
        return;
    // The titles are upper-cased once per listing, not on every keystroke.
    if (m_upperTitles.size() != count) {
        m_upperTitles.clear();
        m_upperTitles.reserve(count);
        for (int i = 0; i < count; ++i)
            m_upperTitles.append(lvwRecipes->topLevelItem(i)->text(1).toUpper());
    }
    for (int i = 0; i < count; ++i) {
        if (m_upperTitles[i] > find) {
            lvwRecipes->scrollToItem(lvwRecipes->topLevelItem(i), QAbstractItemView::PositionAtTop);
            txtFind->setFocus();
            return;
        }
    }
}

QList<QTreeWidgetItem *> frmSearch::selectedInListOrder() const
{
    QList<QTreeWidgetItem *> selected;
    for (int i = 0; i < lvwRecipes->topLevelItemCount(); ++i) {
        if (lvwRecipes->topLevelItem(i)->isSelected())
            selected.append(lvwRecipes->topLevelItem(i));
    }
    return selected;
}

void frmSearch::lvwRecipes_DblClick()
{
    if (m_mode == Mode::Choose)
        cmdClose_Click();
    else if (gSettings.RecipeView)
        cmdView_Click();
    else
        cmdEdit_Click();
}

void frmSearch::cmdEdit_Click()
{
    QTreeWidgetItem *item = lvwRecipes->currentItem();
    if (!item || !item->isSelected()) {
        const QList<QTreeWidgetItem *> selected = selectedInListOrder();
        item = selected.isEmpty() ? nullptr : selected.first();
    }
    if (!item) {
        MsgBox(QStringLiteral("You must select a recipe to Edit/Copy!"), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    Guarded([&] {
        WaitCursor busy;
        OpenRecipeEditor(item->text(0).toInt(), gRecipeType);
    });
}

void frmSearch::cmdView_Click()
{
    const QList<QTreeWidgetItem *> selected = selectedInListOrder();
    if (selected.isEmpty()) {
        MsgBox(QStringLiteral("You must select a recipe to View/Print!"), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    QList<qint32> ids;
    for (const QTreeWidgetItem *item : selected)
        ids.append(item->text(0).toInt());
    Guarded([&] { PrintRecipes(ids); });
}

void frmSearch::cmdCook_Click()
{
    const QList<QTreeWidgetItem *> selected = selectedInListOrder();
    if (selected.isEmpty()) {
        MsgBox(QStringLiteral("You must select a recipe to cook!"), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    Guarded([&] { ShowCookingMode(selected.first()->text(0).toInt()); });
}

void frmSearch::cmdDelete_Click()
{
    const QList<QTreeWidgetItem *> selected = selectedInListOrder();
    if (selected.isEmpty()) {
        MsgBox(QStringLiteral("You must select a recipe to Delete!"), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    QList<int> positions; // 1-based, in list order
    for (QTreeWidgetItem *item : selected) {
        if (MsgBox(QStringLiteral("Are you sure you want to permanently delete '") + item->text(1) +
                       QStringLiteral("' from the Pantrio?"),
                   Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
            continue;
        if (QString problem; !DeleteRecipe(item->text(0).toInt(), &problem)) {
            // Kept, and still listed: the database said why, or says it now.
            if (!problem.isEmpty())
                MsgBox(problem, Msg::Critical, QStringLiteral("Error"));
            continue;
        }
        positions.append(lvwRecipes->indexOfTopLevelItem(item) + 1);
    }
    // Each removal moves the later items up by one.
    for (int k = 0; k < positions.size(); ++k)
        delete lvwRecipes->takeTopLevelItem(positions[k] - 1 - k);
    m_upperTitles.clear();
    if (!positions.isEmpty())
        lblResults->setText(QStringLiteral("Results: ") + QString::number(lvwRecipes->topLevelItemCount()));
}

void frmSearch::SetSelectionMode()
{
    m_mode = Mode::Choose;
    cmdClose->setText(kSelectCaption);
    cmdEdit->hide();
    cmdView->hide();
    cmdDelete->hide();
    cmdCook->hide();
}

void frmSearch::cmdClose_Click()
{
    if (m_mode == Mode::Browse) {
        close();
        return;
    }
    ChosenRecipes.clear();
    for (const QTreeWidgetItem *item : selectedInListOrder())
        ChosenRecipes.append(item->text(0));
    hide();
}

void frmSearch::closeEvent(QCloseEvent *event)
{
    m_life.unload();
    event->accept();
}

void ShowSearchWindow()
{
    static QPointer<frmSearch> window;
    if (!window) {
        window = new frmSearch;
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    window->SearchRecipeType = gRecipeType;
    window->show();
    window->raise();
    window->activateWindow();
}

QStringList ChooseRecipes()
{
    frmSearch chooser;
    chooser.SearchRecipeType = gRecipeType;
    chooser.SetSelectionMode();
    ShowModal(&chooser);
    const QStringList chosen = chooser.ChosenRecipes;
    chooser.close();
    return chosen;
}
