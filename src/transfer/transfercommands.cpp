#include "transfercommands.h"

#include "ctransfer.h"

#include "core/platform/appstate.h"
#include "core/ui/controls.h"
#include "core/ui/frmstatus.h"
#include "core/platform/modini.h"
#include "core/ui/msgbox.h"
#include "core/ui/voicewindows.h"
#include "core/platform/platform.h"
#include "reports/recipeprinter.h"
#include "search/frmsearch.h"

#include <QFile>
#include <QStringDecoder>

namespace {

// A line of the file as text: UTF-8 when it is, else Latin-1 (a file from another system).
QString decodeLine(QByteArray line)
{
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    const QString text = utf8.decode(line);
    return utf8.hasError() ? QString::fromLatin1(line) : text;
}

} // namespace

void ExportTransfer()
{
    if (ReportNotConnected())
        return;
    cTransfer transfer;
    if (GetIniValue(transfer.FileName, QStringLiteral("Imported"), QStringLiteral("Flag")) == QLatin1String("True"))
        MsgBox(QStringLiteral("Some or all of these recipes have already been imported.  It is recommended to reset "
                              "this file before proceeding!"));
    const QStringList chosen = ChooseRecipes();
    WaitCursor busy;
    if (transfer.FileName.isEmpty())
        MsgBox(QStringLiteral("Please set the Transfer file name in the pantrio.ini file!"), Msg::Ok,
               QStringLiteral("Error"));
    else
        transfer.Export(chosen);
}

void ImportTransfer()
{
    if (ReportNotConnected())
        return;
    cTransfer transfer;
    transfer.Import();
}

void ViewTransferFile()
{
    const QString fileName = gSettings.Transfer;
    if (!FileExists(fileName)) {
        MsgBox(fileName + QStringLiteral(" does not exist!"), Msg::Ok, QStringLiteral("Error"));
        return;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw PlatformError(PlatformError::FileAccess, fileName + QStringLiteral(": ") + file.errorString());
    RecipePrinter printer;
    printer.SetFileName(gSettings.Preview);
    {
        const QString message = QStringLiteral("Loading ") + fileName + QStringLiteral(" into the Printing Module");
        StatusGuard status(message);
        SetStatusMaximum(100);
        const qint64 size = std::max<qint64>(1, file.size());
        while (!file.atEnd()) {
            printer.AddLine(decodeLine(file.readLine()), QStringLiteral("Courier New"), 9, false, false);
            ShowStatusStep(message, int(100 * file.pos() / size));
        }
    }
    printer.Show();
}

void ResetTransferFile()
{
    const QString fileName = gSettings.Transfer;
    if (fileName.isEmpty()) {
        MsgBox(QStringLiteral("The Import/Export file is not set!  This file can be specified in the Settings."),
               Msg::Ok, QStringLiteral("Warning"));
        return;
    }
    if (MsgBox(QStringLiteral("Delete the file: ") + fileName + u'?', Msg::QuestionDefaultNo,
               QStringLiteral("Confirmation")) != MsgResult::Yes)
        return;
    if (!QFile::remove(fileName))
        MsgBox(QStringLiteral("There was an error deleting ") + fileName +
                   QStringLiteral("\n\nThis is most often because the file does not exist."),
               Msg::Critical, QStringLiteral("Error"));
}
