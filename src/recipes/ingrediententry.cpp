// Ingredient entry: adding, changing, inserting and removing ingredient lines, and the
// cabinet names suggested for an ingredient.

#include "cabinetsuggestion.h"
#include "frmadd2.h"

#include "core/ui/controls.h"
#include "core/db/database.h"
#include "core/ui/guard.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTreeWidget>

namespace {

const QString kInformationRequired = QStringLiteral("Information Required");
const QString kChangeQuestion =
    QStringLiteral("You have attempted to change an ingredient.  The default process will Overwrite the old "
                   "Ingredient.\n\nWould you like to Insert the new ingredient instead?");
const QString kNothingToRemove = QStringLiteral("There are no items to remove!");
const QString kRemoveQuestion = QStringLiteral("Are you sure you want to remove this item?");

} // namespace

bool frmAdd2::ValidateIngredient(bool showMessages)
{
    const struct {
        QWidget *field;
        QString text;
        const char *message;
    } fields[] = {
        {cboAmount, cboAmount->currentText(), "Please Enter an amount!"},
        {cboMeasure, cboMeasure->currentText(), "Please Enter a measurement!"},
        {txtItem, txtItem->text(), "Please Enter an item!"},
        {cboCabinet, cboCabinet->currentText(), "Please Enter a Short Cabinet Name!"},
    };
    for (const auto &f : fields) {
        if (!f.text.isEmpty())
            continue;
        if (showMessages) {
            MsgBox(QLatin1String(f.message), Msg::Ok, kInformationRequired);
            f.field->setFocus();
        }
        return false;
    }
    return true;
}

QTreeWidgetItem *frmAdd2::newIngredientItem(const QString &number) const
{
    return new QTreeWidgetItem(
        {number, cboAmount->currentText(), cboMeasure->currentText(), txtItem->text(), cboCabinet->currentText()});
}

void frmAdd2::cmdIngAdd_Click()
{
    if (!ingredientTabShown())
        return;
    if (!ValidateIngredient(true))
        return;
    const int count = lvwIngredients->topLevelItemCount();
    if (SelectedIngredient < 0 || SelectedIngredient >= count) {
        lvwIngredients->addTopLevelItem(newIngredientItem(Format(count + 1, QStringLiteral("00"))));
    } else if (MsgBox(kChangeQuestion, Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) == MsgResult::Yes) {
        // Insert before the loaded line, which moves down by one with all after it.
        for (int i = SelectedIngredient; i < count; ++i) {
            QTreeWidgetItem *item = lvwIngredients->topLevelItem(i);
            item->setText(0, Format(qint64(Val(item->text(0))) + 1, QStringLiteral("00")));
        }
        lvwIngredients->insertTopLevelItem(SelectedIngredient,
                                           newIngredientItem(Format(SelectedIngredient + 1, QStringLiteral("00"))));
    } else {
        QTreeWidgetItem *item = lvwIngredients->topLevelItem(SelectedIngredient);
        item->setText(1, cboAmount->currentText());
        item->setText(2, cboMeasure->currentText());
        item->setText(3, txtItem->text());
        item->setText(4, cboCabinet->currentText());
    }
    cmdClearIng_Click();
    SelectedIngredient = -1;
    cboAmount->setFocus();
}

void frmAdd2::cmdIngRemove_Click()
{
    if (!HasSelection(lvwIngredients)) {
        MsgBox(kNothingToRemove, Msg::Ok, QStringLiteral("Message"));
        return;
    }
    if (MsgBox(kRemoveQuestion, Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    delete lvwIngredients->currentItem();
    renumber(lvwIngredients);
    // The loaded line is gone or has moved: what the fields hold is a new line now.
    SelectedIngredient = -1;
}

void frmAdd2::cmdClearIng_Click()
{
    cboAmount->setCurrentText(kUnset);
    cboMeasure->setCurrentText(kUnset);
    txtItem->clear();
    cboCabinet->setCurrentText(QString());
}

void frmAdd2::lvwIngredients_Click()
{
    QTreeWidgetItem *item = lvwIngredients->currentItem();
    if (!item)
        return;
    cboAmount->setCurrentText(item->text(1));
    cboMeasure->setCurrentText(item->text(2));
    txtItem->setText(item->text(3));
    cboCabinet->setCurrentText(item->text(4));
    SelectedIngredient = lvwIngredients->indexOfTopLevelItem(item);
}

void frmAdd2::txtItem_LostFocus()
{
    // Suggestions are wanted while the cabinet name is still to be filled.
    const QString typed = cboCabinet->currentText();
    if (!typed.isEmpty())
        return;
    const QStringList forms = CabinetSearchForms(txtItem->text());
    cboCabinet->clear();
    const QString sql = CabinetSuggestionSql(forms, RecipeType.left(1));
    if (sql.isEmpty() || gNotConnected)
        return;
    gSQL = sql;
    QString chosen;
    QStringList wanted {txtItem->text().toUpper()};
    for (const QString &form : forms)
        wanted.append(form.toUpper());
    for (Recordset rs = ExecuteSQL(gSQL); rs && !rs.eof(); rs.MoveNext()) {
        const QString item = rs.text(QStringLiteral("item"));
        cboCabinet->addItem(item);
        if (wanted.contains(item.toUpper()))
            chosen = item;
    }
    cboCabinet->setCurrentText(chosen);
}
