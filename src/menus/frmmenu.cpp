#include "frmmenu.h"

#include "recipes/frmcook.h"

#include "shoppinglist.h"

#include "core/ui/voicewindows.h"
#include "core/platform/appstate.h"
#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/ui/guard.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"
#include "reports/recipereport.h"
#include "search/frmsearch.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDateEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QString kCloseQuestion = QStringLiteral("You have changed data for a menu or Recipe Group without saving!\n\n"
                                              "Would you like to exit without saving your changes?");
const std::array<const char *, 7> kWeekdays {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                             "Thursday", "Friday", "Saturday"};
const std::array<std::pair<const char *, const char *>, 3> kMeals {
    {{", Meal: B", "Breakfast"}, {", Meal: L", "Lunch"}, {", Meal: D", "Dinner"}}};

// The weekday's name, Sunday being day 1.
QString weekdayName(const QDate &date)
{
    return QLatin1String(kWeekdays[date.dayOfWeek() % 7]);
}

void setExpandedAll(const MenuTree &tree, const std::function<bool(const QString &key)> &expand)
{
    for (QTreeWidgetItem *node : tree.nodes())
        node->setExpanded(expand(MenuTree::keyOf(node)));
}

} // namespace

frmMenu::frmMenu(QWidget *parent) : QWidget(parent, Qt::Window), m_tree(nullptr)
{
    setObjectName(QStringLiteral("frmMenu"));
    setWindowTitle(QStringLiteral("Menu"));
    buildLayout();
    m_tree = MenuTree(tvMenu);
    auto wire = [this](QPushButton *button, auto handler) {
        connect(button, &QPushButton::clicked, this, [this, handler] { Guarded([this, handler] { handler(this); }); });
    };
    wire(cmdNewGroup, std::mem_fn(&frmMenu::cmdNewGroup_Click));
    wire(cmdSelectDate, std::mem_fn(&frmMenu::cmdSelectDate_Click));
    wire(cmdMealAdd, std::mem_fn(&frmMenu::cmdMealAdd_Click));
    wire(cmdAddRecipes, std::mem_fn(&frmMenu::cmdAddRecipes_Click));
    wire(cmdDelete, std::mem_fn(&frmMenu::cmdDelete_Click));
    wire(cmdMoveUp, [](frmMenu *w) { w->cmdMove_Click(-1); });
    wire(cmdMoveDown, [](frmMenu *w) { w->cmdMove_Click(1); });
    wire(cmdCook, std::mem_fn(&frmMenu::cmdCook_Click));
    wire(cmdPrintAll, std::mem_fn(&frmMenu::cmdPrintAll_Click));
    wire(cmdSave, std::mem_fn(&frmMenu::cmdSave_Click));
    wire(cmdClose, std::mem_fn(&frmMenu::cmdClose_Click));
    for (int i = 0; i < int(cmdExpand.size()); ++i)
        wire(cmdExpand[i], [i](frmMenu *w) { w->cmdExpand_Click(i); });
    for (int i = 0; i < int(cmdShop.size()); ++i)
        wire(cmdShop[i], [i](frmMenu *w) { w->cmdShop_Click(i); });
    connect(tvMenu, &QTreeWidget::itemDoubleClicked, this, [this] { Guarded([this] { tvMenu_DblClick(); }); });
}

void frmMenu::buildLayout()
{
    tvMenu = Named(new QTreeWidget(this), "tvMenu");
    tvMenu->setHeaderHidden(true);
    tvMenu->setMinimumWidth(260);
    tvMenu->setExpandsOnDoubleClick(false);
    auto button = [this](const char *name, const QString &caption) {
        return Named(new QPushButton(caption, this), name);
    };
    cmdNewGroup = button("cmdNewGroup", QStringLiteral("New &Group"));
    dtDate = Named(new QDateEdit(QDate::currentDate(), this), "dtDate");
    dtDate->setCalendarPopup(true);
    cmdSelectDate = button("cmdSelectDate", QStringLiteral("Add Da&te"));
    fraDailyBreakdown = Named(new QGroupBox(QStringLiteral("Daily Breakdown"), this), "fraDailyBreakdown");
    const std::array<QString, 3> meals {QStringLiteral("&Breakfast"), QStringLiteral("L&unch"),
                                        QStringLiteral("D&inner")};
    auto *mealRow = new QHBoxLayout(fraDailyBreakdown);
    for (int i = 0; i < 3; ++i) {
        chkMeal[i] = new QCheckBox(meals[i], fraDailyBreakdown);
        chkMeal[i]->setObjectName(QStringLiteral("chkMeal_%1").arg(i));
        mealRow->addWidget(chkMeal[i]);
    }
    cmdMealAdd = button("cmdMealAdd", QStringLiteral("Add &Meals"));
    mealRow->addWidget(cmdMealAdd);
    cmdAddRecipes = button("cmdAddRecipes", QStringLiteral("Add &Recipes"));
    cmdDelete = button("cmdDelete", QStringLiteral("&Delete Entry"));
    cmdMoveUp = button("cmdMoveUp", QStringLiteral("Move U&p"));
    cmdMoveDown = button("cmdMoveDown", QStringLiteral("Move Do&wn"));
    cmdCook = button("cmdCook", QStringLiteral("Coo&king Mode"));
    const std::array<QString, 4> expand {QStringLiteral("S&how Group Nodes"), QStringLiteral("E&xpand Group Nodes"),
                                         QStringLiteral("C&ollapse All Nodes"), QStringLiteral("Expand A&ll Nodes")};
    for (int i = 0; i < 4; ++i) {
        cmdExpand[i] = new QPushButton(expand[i], this);
        cmdExpand[i]->setObjectName(QStringLiteral("cmdExpand_%1").arg(i));
    }
    cmdShop[0] = button("cmdShop_0", QStringLiteral("&Shopping List"));
    cmdShop[1] = button("cmdShop_1", QStringLiteral("&Needed Ingredients"));
    cmdPrintAll = button("cmdPrintAll", QStringLiteral("&View/Print"));
    cmdSave = button("cmdSave", QStringLiteral("S&ave"));
    cmdClose = button("cmdClose", QStringLiteral("&Close"));
    for (int i = 0; i < 4; ++i) {
        lblStep[i] = new QLabel(QStringLiteral("Step: %1").arg(i + 1), this);
        lblStep[i]->setObjectName(QStringLiteral("lblStep_%1").arg(i));
        QFont bold = lblStep[i]->font();
        bold.setBold(true);
        lblStep[i]->setFont(bold);
    }

    auto *side = new QVBoxLayout;
    auto step = [&](int i, QWidget *first, QWidget *second = nullptr) {
        auto *row = new QHBoxLayout;
        row->addWidget(lblStep[i]);
        row->addWidget(first, 1);
        if (second)
            row->addWidget(second);
        side->addLayout(row);
    };
    step(0, cmdNewGroup);
    step(1, dtDate, cmdSelectDate);
    step(2, fraDailyBreakdown);
    step(3, cmdAddRecipes);
    side->addSpacing(8);
    auto *editing = new QHBoxLayout;
    editing->addWidget(cmdDelete);
    editing->addWidget(cmdMoveUp);
    editing->addWidget(cmdMoveDown);
    side->addLayout(editing);
    auto *expandGrid = new QGridLayout;
    for (int i = 0; i < 4; ++i)
        expandGrid->addWidget(cmdExpand[i], i / 2, i % 2);
    side->addLayout(expandGrid);
    side->addStretch();
    auto *lists = new QHBoxLayout;
    lists->addWidget(cmdShop[0]);
    lists->addWidget(cmdShop[1]);
    lists->addWidget(cmdPrintAll);
    lists->addWidget(cmdCook);
    side->addLayout(lists);
    auto *closing = new QHBoxLayout;
    closing->addStretch();
    closing->addWidget(cmdSave);
    closing->addWidget(cmdClose);
    side->addLayout(closing);

    auto *layout = new QHBoxLayout(this);
    layout->addWidget(tvMenu, 1);
    layout->addLayout(side);
    FitToScreen(this, 760, 480);
}

bool frmMenu::event(QEvent *event)
{
    if (event->type() == QEvent::Show && !m_life.loaded())
        Guarded([this] { Form_Load(); });
    return QWidget::event(event);
}

void frmMenu::Form_Load()
{
    if (!m_life.load())
        return;
    m_recipeType = gRecipeType; // the chooser keeps to it, whatever the main window switches to
    if (ReportNotConnected())
        return;
    loadStoredMenu();
}

void frmMenu::loadStoredMenu()
{
    const QStringList leftOut = LoadMenu(m_tree, &m_storedMenu);
    m_nextNode = NextNodeNumber(m_tree);
    m_changed = false;
    if (!leftOut.isEmpty())
        MsgBox(QStringLiteral("These menu entries were not loaded, as the entry they belong under is missing:\n\n") +
                   MessageList(leftOut),
               Msg::Information, QStringLiteral("Message"));
}

QTreeWidgetItem *frmMenu::selected() const
{
    return tvMenu->currentItem();
}

QTreeWidgetItem *frmMenu::startNode() const
{
    if (QTreeWidgetItem *node = selected())
        return node;
    return m_tree.find(kRootKey);
}

QTreeWidgetItem *frmMenu::addRoot()
{
    QTreeWidgetItem *root = m_tree.add(QString(), kRootKey, kRootText);
    if (root)
        root->setExpanded(true);
    return root;
}

void frmMenu::cmdNewGroup_Click()
{
    const QString title = Trim(InputBox(QStringLiteral("Please enter a title for the new Recipe Group")));
    if (title.isEmpty())
        return;
    if (QTreeWidgetItem *group = m_tree.add(kRootKey, QStringLiteral("Title: ") + QString::number(m_nextNode), title)) {
        group->setExpanded(true);
        tvMenu->setCurrentItem(group); // the next step (Add Date) works on it
    }
    ++m_nextNode;
    m_changed = true;
}

void frmMenu::cmdSelectDate_Click()
{
    const QString key = MenuTree::keyOf(selected());
    if (!key.contains(QLatin1String("Title")) || key.contains(QLatin1String("ID:"))) {
        MsgBox(QStringLiteral("Please select the Recipe Group!"), Msg::Ok, QStringLiteral("Message"));
        return;
    }
    const QDate date = dtDate->date();
    // The household's own order of day, month and year, the year in full: a plan is kept for
    // years.
    QString format = QLocale().dateFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("yyyy")))
        format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    const QString text = QLocale().toString(date, format) + QStringLiteral(" - ") + weekdayName(date);
    if (QTreeWidgetItem *day = m_tree.add(key, QStringLiteral("Day: ") + QString::number(m_nextNode), text))
        day->setExpanded(true); // the group stays selected, for the next date
    ++m_nextNode;
    m_changed = true;
}

void frmMenu::addMeals(const QString &dayKey)
{
    for (std::size_t i = 0; i < kMeals.size(); ++i)
        if (chkMeal[i]->isChecked())
            m_tree.add(dayKey, dayKey + QLatin1String(kMeals[i].first), QLatin1String(kMeals[i].second));
    m_changed = true;
}

void frmMenu::cmdMealAdd_Click()
{
    const QTreeWidgetItem *node = selected();
    const QString key = node ? MenuTree::keyOf(node) : kRootKey;
    switch (KindOfKey(key)) {
    case MenuNode::Recipe:
    case MenuNode::Meal:
        return;
    case MenuNode::Day:
        addMeals(key);
        return;
    case MenuNode::Group:
    case MenuNode::Root: {
        // The days below the selected node, after asking: meals are never spread over groups the
        // user did not pick.
        QStringList days;
        for (const QTreeWidgetItem *each : m_tree.nodes()) {
            bool below = !node;
            for (const QTreeWidgetItem *up = each->parent(); up && !below; up = up->parent())
                below = up == node;
            if (below && KindOfKey(MenuTree::keyOf(each)) == MenuNode::Day)
                days.append(MenuTree::keyOf(each));
        }
        if (days.isEmpty()) {
            MsgBox(QStringLiteral("Please select a day, or a Recipe Group with days, to add the meals to."), Msg::Ok,
                   QStringLiteral("Message"));
            return;
        }
        if (MsgBox(QStringLiteral("Add the meals to each of the %1 days below %2?")
                       .arg(days.size())
                       .arg(node ? node->text(0) : kRootText),
                   Msg::Question, QStringLiteral("Confirmation")) != MsgResult::Yes)
            return;
        for (const QString &day : days)
            addMeals(day);
        return;
    }
    }
}

void frmMenu::cmdAddRecipes_Click()
{
    if (ReportNotConnected())
        return;
    QTreeWidgetItem *node = selected();
    if (!node)
        node = m_tree.find(kRootKey);
    if (!node)
        return;
    QStringList chosen;
    {
        const auto restore =
            qScopeGuard([mainType = std::exchange(gRecipeType, m_recipeType)] { gRecipeType = mainType; });
        chosen = ChooseRecipes();
    }
    if (chosen.isEmpty())
        return;
    const QString key = MenuTree::keyOf(node);
    if (KindOfKey(key) == MenuNode::Recipe &&
        MsgBox(QStringLiteral("Are you sure you want to put sub recipes on: ") + node->text(0) + u'?', Msg::Question,
               QStringLiteral("Verification")) != MsgResult::Yes)
        return;
    QStringList passedOver;
    for (const QString &id : chosen) {
        // A recipe without ingredient lines, or one already under this node, is passed over.
        const Recordset rs = ExecuteSQL(
            QStringLiteral("SELECT * FROM RECIPE A, INGREDIENTS B WHERE A.ID = B.recipe_id AND A.id = ") + id);
        if (!rs || rs.eof()) {
            passedOver << QStringLiteral("Recipe %1: it has no ingredient lines").arg(id);
            continue;
        }
        if (!m_tree.add(key, key + QStringLiteral(", ID: ") + id, rs.text(QStringLiteral("title"))))
            continue; // already there: nothing changes
        node->setExpanded(true);
        m_changed = true;
    }
    if (!passedOver.isEmpty())
        MsgBox(QStringLiteral("These recipes were not added:\n\n") + MessageList(passedOver), Msg::Information,
               QStringLiteral("Message"));
}

void frmMenu::cmdMove_Click(int direction)
{
    QTreeWidgetItem *node = selected();
    if (!node || !m_tree.move(node, direction))
        return;
    tvMenu->setCurrentItem(node);
    m_changed = true;
}

void frmMenu::cmdCook_Click()
{
    const QTreeWidgetItem *node = selected();
    const QString key = node ? MenuTree::keyOf(node) : QString();
    // The node's own recipe: a sub recipe's key ends with its identifier.
    const qsizetype at = key.lastIndexOf(QLatin1String("ID: "));
    if (at < 0) {
        MsgBox(QStringLiteral("You must select a recipe to cook!"), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    ShowCookingMode(qint32(Val(key.mid(at + 4))));
}

void frmMenu::cmdDelete_Click()
{
    QTreeWidgetItem *node = selected();
    if (!node)
        return;
    const QString key = MenuTree::keyOf(node);
    const QString text = node->text(0);
    if (key == kRootKey) {
        if (MsgBox(QStringLiteral("Are you sure you want to remove the entry for ") + text +
                       QStringLiteral(" (including all sub nodes)?"),
                   Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
            return;
        m_tree.remove(node);
        addRoot();
    } else if (node->childCount() == 0) {
        if (MsgBox(QStringLiteral("Are you sure you want to remove the entry for ") + text + u'?',
                   Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
            return;
        m_tree.remove(node);
    } else {
        if (MsgBox(QStringLiteral("Are you sure you want to remove all sub entries for ") + text + u'?',
                   Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
            return;
        // The group or day is emptied, not removed: a second Delete removes it.
        while (node->childCount() > 0)
            m_tree.remove(node->child(0));
    }
    m_changed = true;
}

void frmMenu::tvMenu_DblClick()
{
    QTreeWidgetItem *node = selected();
    if (!node)
        return;
    const QString key = MenuTree::keyOf(node);
    if (key.contains(QLatin1String("Title:")) && !key.contains(QLatin1String("ID:"))) {
        const QString name = InputBox(QStringLiteral("Enter the new name for ") + node->text(0),
                                      QStringLiteral("Rename Recipe Group"), node->text(0));
        if (!name.isEmpty()) {
            node->setText(0, name);
            m_changed = true;
        }
    } else if (const qsizetype at = key.indexOf(QLatin1String("ID: ")); at >= 0) {
        PrintRecipes(QStringList {key.mid(at + 4)});
    }
}

void frmMenu::cmdExpand_Click(int index)
{
    switch (index) {
    case 0: // only the groups show
        setExpandedAll(m_tree, [](const QString &key) { return key == kRootKey; });
        break;
    case 1: // the days and recipes of each group show, closed
        setExpandedAll(m_tree, [](const QString &key) {
            return !key.contains(QLatin1String("Day")) && !key.contains(QLatin1String("Meal")) &&
                   !key.contains(QLatin1String("ID:"));
        });
        break;
    case 2:
        setExpandedAll(m_tree, [](const QString &) { return false; });
        break;
    default:
        setExpandedAll(m_tree, [](const QString &) { return true; });
        break;
    }
}

void frmMenu::cmdShop_Click(int index)
{
    if (ReportNotConnected())
        return;
    const QTreeWidgetItem *node = startNode();
    if (!node)
        return;
    const QStringList ids = GatherRecipeIds(node);
    if (index == 0)
        ShowShoppingList(node->text(0), ids);
    else
        ShowNeededAmounts(node->text(0), ids);
}

void frmMenu::cmdPrintAll_Click()
{
    PrintRecipes(GatherRecipeIds(startNode()));
}

void frmMenu::cmdSave_Click()
{
    if (ReportNotConnected())
        return;
    // A text the statements would cut short is named before anything is written.
    for (const QTreeWidgetItem *node : m_tree.nodes())
        if (DelimiterApostropheIn(node->text(0)) >= 0 || DelimiterApostropheIn(MenuTree::keyOf(node)) >= 0) {
            MsgBox(QStringLiteral("The menu was not saved: in \"") + node->text(0) +
                       QStringLiteral("\" an apostrophe next to a comma or a parenthesis would end the text there.  "
                                      "Rename it and save again."),
                   Msg::Critical, QStringLiteral("Error Saving Menu"));
            return;
        }
    MenuSaveResult saved = SaveMenu(m_tree, m_storedMenu);
    if (saved.changedElsewhere) {
        // Another computer saved the menus since this window loaded them: nothing of either is
        // thrown away unless the user says which.
        enum { Reload, KeepMine, Cancel };
        switch (ChooseAction(QStringLiteral("Another computer has saved the menus and Recipe Groups since this window "
                                            "loaded them.\n\nReload shows theirs and drops your changes here; Keep "
                                            "Mine saves yours over theirs; Cancel changes nothing, so that you can "
                                            "compare first."),
                             QStringLiteral("Menus Changed"),
                             {QStringLiteral("&Reload"), QStringLiteral("&Keep Mine"), QStringLiteral("Cancel")},
                             Cancel)) {
        case Reload:
            loadStoredMenu();
            return;
        case KeepMine:
            saved = SaveMenu(m_tree);
            break;
        default:
            return;
        }
    }
    if (saved.failedNode) {
        MsgBox(QStringLiteral("There was an error trying to save ") + saved.failedNode->text(0) +
                   QStringLiteral(".  This is most likely the result of putting too many levels of sub recipes under "
                                  "other recipes."),
               Msg::Critical, QStringLiteral("Error Saving Menu"));
        return;
    }
    if (!saved.saved()) {
        MsgBox(saved.failure, Msg::Critical, QStringLiteral("Error Saving Menu"));
        return;
    }
    m_changed = false;
    m_storedMenu = saved.fingerprint;
    MsgBox(QStringLiteral("The Menus and Recipe Groups have been saved!"), Msg::Information,
           QStringLiteral("Confirmation"));
}

void frmMenu::cmdClose_Click()
{
    close();
}

void frmMenu::closeEvent(QCloseEvent *event)
{
    if (m_changed && MsgBox(kCloseQuestion, Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes) {
        event->ignore();
        return;
    }
    m_life.unload();
    event->accept();
}

void ShowMenuWindow()
{
    static QPointer<frmMenu> window;
    ShowOnly(window);
}
