#include "shell.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace {
ShellHook *g_hook = nullptr;
}

void SetShellHook(ShellHook *hook)
{
    g_hook = hook;
}

void StartProgramMinimised(const QString &program, const QStringList &arguments)
{
    if (g_hook) {
        g_hook->startProgram(program, arguments);
        return;
    }
    QProcess::startDetached(program, arguments);
}

bool OpenDocument(const QString &path)
{
    if (g_hook)
        return g_hook->openDocument(path);
    if (!QFileInfo::exists(path))
        return false;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}
