#pragma once
// The recipe editor: one recipe entered or changed, with its ingredient and direction lists.
//
// Several editors may be open at once. A caller constructs one, sets TabbedView, RecipeType
// and, to open a stored recipe, EditMode and RecipeID, then calls PopulateForm or shows it;
// the first of these loads the window (Form_Load) with the properties in place.

#include "core/platform/appstate.h"
#include "recipedata.h"

#include <QWidget>

#include <array>

class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabBar;
class QTreeWidget;
class QTreeWidgetItem;

class frmAdd2 : public QWidget
{
    Q_OBJECT
public:
    explicit frmAdd2(QWidget *parent = nullptr);
    ~frmAdd2() override;

    // Public properties.
    bool TabbedView = true;
    bool RecipeChange = false;
    qint32 RecipeID = 0;
    bool EditMode = false;
    QString RecipeType = QStringLiteral("Food");

    // Loads the stored recipe RecipeID into the fields (when EditMode is set).
    void PopulateForm();
    // The recipe as it stands in the window, saved or not.
    RecipeData CurrentRecipe() const;

    // General fields (tab 1).
    QComboBox *cboRecipeType;
    QLineEdit *txtTitle;
    QComboBox *cboCategory;
    QLineEdit *txtServings;
    QLineEdit *txtPrepTime;
    QLineEdit *txtCookTime;
    QComboBox *cboRating;
    QPlainTextEdit *txtNotes;
    // Ingredients (tab 2).
    QTreeWidget *lvwIngredients;
    QComboBox *cboAmount;
    QComboBox *cboMeasure;
    QLineEdit *txtItem;
    QComboBox *cboCabinet;
    QPushButton *cmdIngAdd;
    QPushButton *cmdIngRemove;
    QPushButton *cmdClearIng;
    // Directions (tab 3).
    QTreeWidget *lvwDirections;
    QLineEdit *txtStep;
    QLineEdit *txtDirection;
    QPushButton *cmdDirAdd;
    QPushButton *cmdDirRemove;
    QPushButton *cmdClearDir;
    // Always shown.
    QPushButton *cmdSave;
    QPushButton *cmdSaveAs;
    QPushButton *cmdView;
    QPushButton *cmdCook;
    QPushButton *cmdResize;
    QPushButton *cmdClear;
    QPushButton *cmdClose;
    QTabBar *tabRecipe;
    std::array<QFrame *, 3> fraRecipe;

    // The line loaded for change, -1 for a new line.
    int SelectedIngredient = -1;
    // Set by Save As and kept, so that a later Save stores a copy again.
    bool SaveAsCopy = false;
    // The button Enter presses.
    QPushButton *defaultButton() const { return m_defaultButton; }

public Q_SLOTS:
    void Form_Load();
    void Form_Activate();
    void LoadLists();
    void SetupColumns();
    void ResetForm();
    void cboRecipeType_Click();
    void cmdClear_Click();
    void cmdClose_Click();
    void tabRecipe_Click();
    void txtPrepTime_LostFocus();
    void txtCookTime_LostFocus();
    void cboCategory_LostFocus();
    // Ingredient entry.
    void cmdIngAdd_Click();
    void cmdIngRemove_Click();
    void cmdClearIng_Click();
    void lvwIngredients_Click();
    void txtItem_LostFocus();
    bool ValidateIngredient(bool showMessages);
    // Direction entry.
    void cmdDirAdd_Click();
    void cmdDirRemove_Click();
    void cmdClearDir_Click();
    void lvwDirections_Click();
    void txtStep_LostFocus();
    bool ValidateDirection();
    // Saving.
    void cmdSave_Click();
    void cmdSaveAs_Click();
    bool ValidateRecipe(bool showMessages);
    // Stores the recipe in the window; on failure, problem (when given) says which text and why.
    bool SaveRecipe(QString *problem = nullptr);
    // Resizing and viewing.
    void cmdResize_Click();
    void cmdView_Click();
    // Cooking mode on the recipe as it stands in the editor, resized amounts included.
    void cmdCook_Click();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    // Runs the box's leave handler: when it loses the focus, or when Enter is pressed in it.
    void leave(QWidget *control, bool byEnter);
    void closeEvent(QCloseEvent *event) override;

private:
    void createControls();
    void arrangeLayout();
    void connectHandlers();
    void setDefaultButton(QPushButton *button);
    void selectTab(int tab); // 1-based, by the program: no focus moves
    int selectedTab() const; // 1-based
    bool ingredientTabShown() const;
    bool directionTabShown() const;
    bool ingredientFieldsEmpty() const;
    void setTimeFieldsLoaded();
    void markChanged();
    void renumber(QTreeWidget *list);
    void setNextStep();
    QTreeWidgetItem *newIngredientItem(const QString &number) const;

    SubWindowCount m_life;
    bool m_tabClickedWithMouse = false;
    bool m_leftForModal = false;
    QPushButton *m_defaultButton = nullptr;
};

// Opens a new editor for a recipe of the current type, arranged as the settings say.
frmAdd2 *OpenNewRecipeEditor();
// Opens an editor on the stored recipe for editing or copying.
frmAdd2 *OpenRecipeEditor(qint32 recipeId, const QString &recipeType);
