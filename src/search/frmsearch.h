#pragma once
// The search window: recipes found by their criteria, then viewed, edited, copied, deleted,
// or chosen for another window.

#include "core/platform/appstate.h"
#include <QDialog>
#include <QStringList>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

class frmSearch : public QDialog
{
    Q_OBJECT
public:
    explicit frmSearch(QWidget *parent = nullptr);
    ~frmSearch() override;

    QComboBox *cboRecipeType;
    QLineEdit *txtTitle;
    QComboBox *cboCategory;
    QLineEdit *txtIngredient;
    QLineEdit *txtPrepTime;
    QLineEdit *txtCookTime;
    QComboBox *cboRating;
    QCheckBox *chkCabinet;
    QTreeWidget *lvwRecipes;
    QLabel *lblResults;
    QLineEdit *txtFind;
    QPushButton *cmdSearch;
    QPushButton *cmdClear;
    QPushButton *cmdEdit;
    QPushButton *cmdView;
    QPushButton *cmdDelete;
    QPushButton *cmdCook; // the first selected recipe in cooking mode
    QPushButton *cmdClose;
    QAction *mnuClose;
    QAction *mnuSettings;
    QAction *mnuAbout;
    QAction *mnuContact;

    // The recipe type the window was opened for; ApplySearchRecipeType makes it the
    // program's current type.
    QString SearchRecipeType;
    void ApplySearchRecipeType();
    // The seven-digit identifiers of the recipes selected when the window was closed in
    // selection mode.
    QStringList ChosenRecipes;
    // Selection mode: the close button reads "Select" and the result actions are hidden.
    void SetSelectionMode();

public Q_SLOTS:
    void Form_Load();
    void cboRecipeType_Click();
    void cmdSearch_Click();
    void cmdClear_Click();
    void cmdEdit_Click();
    void cmdView_Click();
    void cmdDelete_Click();
    void cmdCook_Click();
    void cmdClose_Click();
    void lvwRecipes_ColumnClick();
    void lvwRecipes_DblClick();
    void txtFind_Change();
    void txtPrepTime_LostFocus();
    void txtCookTime_LostFocus();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildLayout();
    void prepareForType();
    QList<QTreeWidgetItem *> selectedInListOrder() const;

    // Browsing the collection (Close closes), or choosing recipes for another window (the close
    // button reads Select and hands the selection back).
    enum class Mode { Browse, Choose };
    Mode m_mode = Mode::Browse;
    SubWindowCount m_life;
    bool m_sortedByTitle = true;
    QStringList m_upperTitles; // the titles in list order, upper-cased once for the find
};

// Opens the search window of the main window for the current recipe type.
void ShowSearchWindow();
// Shows the search window in selection mode and returns the chosen identifiers (seven
// digits each); nothing when the window was closed otherwise.
QStringList ChooseRecipes();
