#include "ctransfer.h"

#include "transferfile.h"

#include "core/ui/frmstatus.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "core/platform/platform.h"
#include "core/platform/programdir.h"

cTransfer::cTransfer()
{
    FileName = ProgramFile(GetIniValue(IniPath(), QStringLiteral("Files"), QStringLiteral("Transfer")));
}

QString cTransfer::SubItem(const QString &value, int n)
{
    return TransferSubItem(value, n);
}

void cTransfer::Export(const QStringList &chosen)
{
    bool done = false;
    {
        StatusGuard status {QString()};
        StatusCancel cancel;
        SetStatusMaximum(int(chosen.size()));
        done = ExportTransferSections(FileName, chosen, [&](qsizetype i) {
            ShowStatusStep(QStringLiteral("Exporting recipe ID: ") + QString::number(i) + QStringLiteral(" to ") +
                               FileName,
                           int(i));
            return !cancel.requested();
        });
    }
    if (!done) {
        MsgBox(QStringLiteral("The export was cancelled: nothing was written to ") + FileName + u'.', Msg::Information,
               QStringLiteral("Export Cancelled"));
        return;
    }
    MsgBox(QStringLiteral("All Recipes selected have been exported to ") + FileName, Msg::Information,
           QStringLiteral("Export Completed!"));
}

void cTransfer::Import()
{
    if (FileName.isEmpty()) {
        MsgBox(QStringLiteral("Please set the Transfer file name in the pantrio.ini file!"), Msg::Ok,
               QStringLiteral("Error"));
        return;
    }
    if (!FileExists(FileName)) {
        MsgBox(FileName + QStringLiteral(" does not exist!"), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    if (MsgBox(QStringLiteral("This will import recipes from ") + FileName +
                   QStringLiteral(".  \n\nWould you like to continue?"),
               Msg::Question, QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    IniFile file(FileName);
    if (TransferFileImported(file) &&
        MsgBox(FileName + QStringLiteral(" has already been imported at least once.  Would you like to import it "
                                         "again?"),
               Msg::QuestionDefaultNo, QStringLiteral("Continue")) != MsgResult::Yes)
        return;

    TransferImport result;
    {
        StatusGuard status {QString()};
        SetStatusMaximum(TransferRecipeCount(file));
        result = ImportTransferSections(file, [this](int section) {
            ShowStatusStep(QStringLiteral("Importing recipe ") + QString::number(section) + QStringLiteral(" from ") +
                               FileName,
                           section - 1);
        });
    }
    m_leftOut = result.leftOut;
    const QString notStored = result.notStored;
    const int stored = result.stored;
    if (!notStored.isEmpty()) {
        // Nothing came in: the file stays as it was, to be imported again.
        MsgBox(QStringLiteral("No recipes were imported from ") + FileName + QStringLiteral(".\n\n") + notStored,
               Msg::Critical, QStringLiteral("Error"));
        return;
    }
    if (stored == 0 && !m_leftOut.isEmpty()) {
        // Not one recipe came in: the file is not marked imported, so it can be corrected and
        // imported again without a warning.
        MsgBox(QStringLiteral("No recipes were imported from ") + FileName + QStringLiteral(":\n\n") +
                   MessageList(m_leftOut),
               Msg::Critical, QStringLiteral("Error"));
        return;
    }
    MarkTransferFileImported(file);
    MsgBox(QStringLiteral("All Recipes selected have been imported from ") + FileName, Msg::Information,
           QStringLiteral("Export Completed!"));
    if (!m_leftOut.isEmpty())
        MsgBox(QStringLiteral("These recipes and lines of ") + FileName + QStringLiteral(" were not imported:\n\n") +
                   MessageList(m_leftOut),
               Msg::Information, QStringLiteral("Information"));
}
