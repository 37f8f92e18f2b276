// Saving the recipe in the editor: a new recipe, an overwrite of the stored one, or a copy.

#include "frmadd2.h"
#include "reciperepository.h"

#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/ui/frmstatus.h"
#include "core/ui/guard.h"
#include "core/ui/msgbox.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>

namespace {

const QString kNotConnected =
    QStringLiteral("If you were able to connect to the Database, you would be able to save.  ");
const QString kOverwriteQuestion = QStringLiteral("This will overwrite the current recipe.  Do you wish to continue?");
const QString kCopyQuestion =
    QStringLiteral("This will save the current recipe as a copy in the Pantrio.  Do you wish to continue?");
const QString kSaveFailed = QStringLiteral("There were errors adding the recipe!");

} // namespace

bool frmAdd2::ingredientFieldsEmpty() const
{
    const QString amount = cboAmount->currentText();
    const QString measure = cboMeasure->currentText();
    return (amount == kUnset || amount.isEmpty()) && (measure == kUnset || measure.isEmpty()) &&
           txtItem->text().isEmpty() && cboCabinet->currentText().isEmpty();
}

bool frmAdd2::ValidateRecipe(bool showMessages)
{
    // A line typed but not yet added is saved with the recipe. Its tab is brought forward so
    // that the add can take it (and show why when it cannot).
    if (!ingredientFieldsEmpty()) {
        selectTab(2);
        cmdIngAdd->click();
        if (!ingredientFieldsEmpty())
            return false;
    }
    if (!txtDirection->text().trimmed().isEmpty()) {
        selectTab(3);
        cmdDirAdd->click();
        if (!txtDirection->text().trimmed().isEmpty())
            return false;
    }
    if (txtTitle->text().isEmpty()) {
        if (showMessages) {
            MsgBox(QStringLiteral("Please Enter a Title!"), Msg::Ok, QStringLiteral("Information Required"));
            selectTab(1);
            txtTitle->setFocus();
        }
        return false;
    }
    return true;
}

void frmAdd2::cmdSave_Click()
{
    Guarded([this] {
        if (!ValidateRecipe(true))
            return;
        if (gNotConnected) {
            MsgBox(kNotConnected, Msg::Ok, QStringLiteral("Message"));
            return;
        }
        if (EditMode && !SaveAsCopy &&
            MsgBox(kOverwriteQuestion, Msg::Question, QStringLiteral("Confirmation")) != MsgResult::Yes)
            return;
        const QString title = txtTitle->text();
        QString problem;
        if (!SaveRecipe(&problem)) {
            MsgBox(problem.isEmpty() ? kSaveFailed : kSaveFailed + QStringLiteral("\n\n") + problem, Msg::Ok,
                   QStringLiteral("Error"));
            return;
        }
        {
            StatusGuard status(title + QStringLiteral(" has been saved!"));
            Wait(2);
        }
        ResetForm();
        if (TabbedView)
            selectTab(1);
        txtTitle->setFocus();
        if (EditMode)
            close();
    });
}

void frmAdd2::cmdSaveAs_Click()
{
    if (MsgBox(kCopyQuestion, Msg::Question, QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    SaveAsCopy = true;
    cmdSave->click();
}

bool frmAdd2::SaveRecipe(QString *problem)
{
    WaitCursor busy;
    const bool copy = !EditMode || SaveAsCopy;
    return StoreRecipe(CurrentRecipe(), copy ? 0 : RecipeID, !copy, problem);
}
