#pragma once
// The menu planner: Recipe Groups of dated days and meals with recipes under them, kept in one
// tree, saved as a whole, and turned into shopping lists, needed amounts and printed recipes.

#include "menutree.h"

#include "core/platform/appstate.h"

#include <QWidget>

#include <array>

class QCheckBox;
class QDateEdit;
class QGroupBox;
class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

class frmMenu : public QWidget
{
    Q_OBJECT
public:
    explicit frmMenu(QWidget *parent = nullptr);

    QTreeWidget *tvMenu;
    QDateEdit *dtDate;
    QPushButton *cmdSelectDate;
    QGroupBox *fraDailyBreakdown;
    std::array<QCheckBox *, 3> chkMeal;
    QPushButton *cmdMealAdd;
    QPushButton *cmdNewGroup;
    QPushButton *cmdAddRecipes;
    QPushButton *cmdDelete;
    QPushButton *cmdMoveUp;
    QPushButton *cmdMoveDown;
    QPushButton *cmdCook; // the selected recipe in cooking mode
    std::array<QPushButton *, 4> cmdExpand;
    std::array<QPushButton *, 2> cmdShop;
    QPushButton *cmdPrintAll;
    QPushButton *cmdSave;
    QPushButton *cmdClose;
    std::array<QLabel *, 4> lblStep;

    MenuTree &tree() { return m_tree; }
    qint32 nextNodeNumber() const { return m_nextNode; }
    bool dataChanged() const { return m_changed; }

public Q_SLOTS:
    void Form_Load();
    void cmdNewGroup_Click();
    void cmdSelectDate_Click();
    void cmdMealAdd_Click();
    void cmdAddRecipes_Click();
    void cmdDelete_Click();
    // Moves the selected node one place up (-1) or down (+1) among its siblings.
    void cmdMove_Click(int direction);
    void cmdCook_Click();
    void cmdExpand_Click(int index);
    void cmdShop_Click(int index);
    void cmdPrintAll_Click();
    void cmdSave_Click();
    void cmdClose_Click();
    void tvMenu_DblClick();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    QString m_recipeType = QStringLiteral("Food"); // the type the planner was opened with
    void buildLayout();
    QTreeWidgetItem *selected() const;
    // The node the lists start from: the selected one, else the root.
    QTreeWidgetItem *startNode() const;
    void addMeals(const QString &dayKey);
    QTreeWidgetItem *addRoot();
    // Loads the stored menu into the tree, naming entries that could not be placed.
    void loadStoredMenu();

    MenuTree m_tree;
    QByteArray m_storedMenu; // the fingerprint of the stored menu this tree was loaded from
    qint32 m_nextNode = 1;
    bool m_changed = false;
    SubWindowCount m_life;
};

// Shows the menu planner (one at a time).
void ShowMenuWindow();
