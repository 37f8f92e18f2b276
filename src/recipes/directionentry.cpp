// Direction entry: numbered steps added, overwritten, inserted and removed.

#include "frmadd2.h"

#include "core/ui/controls.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"

#include <QLineEdit>
#include <QTreeWidget>
#include <cmath>

namespace {

const QString kDuplicateQuestion =
    QStringLiteral("You have entered a duplicate step.  The default process will Overwrite the old step.\n\n"
                   "Would you like to Insert the new step instead?");

} // namespace

bool frmAdd2::ValidateDirection()
{
    if (!txtDirection->text().isEmpty())
        return true;
    MsgBox(QStringLiteral("Please enter the direction!"), Msg::Ok, QStringLiteral("Information Required"));
    txtDirection->setFocus();
    return false;
}

void frmAdd2::txtStep_LostFocus()
{
    const int next = lvwDirections->topLevelItemCount() + 1;
    // The absolute value of the number; past the end, or 0 (a text without digits too), is
    // the next step.
    const double number = std::abs(Val(txtStep->text()));
    qint64 step = number > next ? next : qint64(std::round(number));
    if (step == 0)
        step = next;
    txtStep->setText(Format(step, QStringLiteral("00")));
}

void frmAdd2::cmdDirAdd_Click()
{
    if (!directionTabShown())
        return;
    if (!ValidateDirection())
        return;
    // A number typed and not left yet (Enter, Alt+S) follows the rule of leaving the box, so
    // that it is compared with the steps as they are numbered.
    txtStep_LostFocus();
    const QString step = txtStep->text();
    int found = -1;
    for (int i = 0; i < lvwDirections->topLevelItemCount(); ++i) {
        if (lvwDirections->topLevelItem(i)->text(0) == step) {
            found = i;
            break;
        }
    }
    if (found < 0) {
        lvwDirections->addTopLevelItem(new QTreeWidgetItem({step, txtDirection->text()}));
    } else if (MsgBox(kDuplicateQuestion, Msg::QuestionDefaultNo, QStringLiteral("Confirmation")) == MsgResult::Yes) {
        for (int i = found; i < lvwDirections->topLevelItemCount(); ++i) {
            QTreeWidgetItem *item = lvwDirections->topLevelItem(i);
            item->setText(0, Format(qint64(Val(item->text(0))) + 1, QStringLiteral("00")));
        }
        lvwDirections->insertTopLevelItem(found, new QTreeWidgetItem({step, txtDirection->text()}));
    } else {
        lvwDirections->topLevelItem(found)->setText(1, txtDirection->text());
    }
    txtDirection->clear();
    setNextStep();
    txtDirection->setFocus();
}

void frmAdd2::cmdDirRemove_Click()
{
    if (!HasSelection(lvwDirections)) {
        MsgBox(QStringLiteral("There are no items to remove!"), Msg::Ok, QStringLiteral("Message"));
        return;
    }
    if (MsgBox(QStringLiteral("Are you sure you want to remove this item?"), Msg::QuestionDefaultNo,
               QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    delete lvwDirections->currentItem();
    renumber(lvwDirections);
    setNextStep();
}

void frmAdd2::cmdClearDir_Click()
{
    txtDirection->clear();
}

void frmAdd2::lvwDirections_Click()
{
    QTreeWidgetItem *item = lvwDirections->currentItem();
    if (!item)
        return;
    txtStep->setText(Format(lvwDirections->indexOfTopLevelItem(item) + 1, QStringLiteral("00")));
    txtDirection->setText(item->text(1));
}
