#include "periphery.h"

#include "core/ui/msgbox.h"
#include "core/platform/programdir.h"
#include "core/ui/shell.h"

namespace {

void openShipped(const QString &name, const QString &what)
{
    const QString path = JoinPath(ProgramDir(), name);
    const auto failed = [=] {
        MsgBox(QStringLiteral("The %1 could not be opened:\n%2").arg(what, path), Msg::Critical,
               QStringLiteral("Error"));
    };
    if (!OpenDocument(path, failed))
        failed();
}

} // namespace

void ShowAbout()
{
    MsgBox(QStringLiteral("Mirepan %1\n\nA recipe manager for the household: recipes, the "
                          "cabinet, menus and shopping lists.")
               .arg(QStringLiteral(MIREPAN_VERSION)),
           Msg::Information, QStringLiteral("About Mirepan"));
}

void ShowContact()
{
    MsgBox(QStringLiteral("Mirepan is kept by its household developers.\n\nQuestions and "
                          "suggestions are welcome through the project's issue tracker."),
           Msg::Information, QStringLiteral("Contact Information"));
}

void OpenUserManual()
{
    openShipped(QStringLiteral("vesk_um.rtf"), QStringLiteral("user manual"));
}

void OpenWebPage()
{
    openShipped(QStringLiteral("README.md"), QStringLiteral("web page"));
}
