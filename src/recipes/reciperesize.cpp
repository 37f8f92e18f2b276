// Resizing the recipe in the editor: every amount scaled by the chosen factor, the original
// yield noted once, and the new yield proposed for confirmation.

#include "frmadd2.h"

#include "core/ui/guard.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"
#include "quantities/cfraction.h"
#include "quantities/frmresize.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTreeWidget>

namespace {

const QString kResizedFrom = QStringLiteral("Recipe was resized from:");

} // namespace

void frmAdd2::cmdResize_Click()
{
    Guarded([this] {
        auto dialog = std::make_unique<frmResize>(this);
        const QString servings = txtServings->text();
        const qsizetype blank = servings.indexOf(u' ');
        dialog->OrigServings = Floor16(Val(blank < 0 ? servings : servings.left(blank + 1)));
        ShowModal(dialog.get());

        if (WholeCount(dialog->txtNewServings->text()) > 0) {
            // Only the first resize of a recipe is recorded.
            if (!txtNotes->toPlainText().contains(kResizedFrom) && !servings.isEmpty())
                txtNotes->setPlainText(kResizedFrom + u' ' + servings + u'\n' + txtNotes->toPlainText());

            // The counts are converted strictly here: "6 people" passed the dialog, but is no number.
            cFraction factor;
            factor.setNumerator(CInt(dialog->txtNewServings->text()));
            factor.setDenominator(CInt(dialog->txtOrigServings->text()));

            cFraction amount;
            for (int i = 0; i < lvwIngredients->topLevelItemCount(); ++i) {
                QTreeWidgetItem *row = lvwIngredients->topLevelItem(i);
                if (row->text(1) == kUnset)
                    continue;
                amount.setStringValue(row->text(1));
                if (amount.StringValue().isEmpty())
                    continue; // "a pinch", "0.5": nothing to scale
                amount.Multiply(factor);
                row->setText(1, amount.StringValue());
            }

            QString yield = dialog->txtNewServings->text();
            if (dialog->optResize[1]->isChecked()) {
                cFraction scaled;
                scaled.setStringValue(servings);
                scaled.Multiply(factor);
                yield = scaled.StringValue();
            }
            if (txtServings->isEnabled()) {
                QString proposal = servings;
                const QString original = QString::number(dialog->OrigServings);
                if (const qsizetype at = proposal.indexOf(original); at >= 0)
                    proposal.replace(at, original.size(), yield);
                const QString answer = InputBox(QStringLiteral("Yield Change Verification:\n\nOriginal Yield: ") +
                                                    servings + QStringLiteral("\n\nNew Yield:"),
                                                QStringLiteral("Confirmation"), proposal);
                if (!answer.isEmpty())
                    txtServings->setText(answer);
            }
        }
        if (!dialog->Cancel)
            RecipeChange = true;
    });
}
