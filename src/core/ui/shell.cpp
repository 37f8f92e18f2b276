#include "shell.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
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

bool OpenDocument(const QString &path, std::function<void()> whenFailed)
{
    if (g_hook)
        return g_hook->openDocument(path);
    if (!QFileInfo::exists(path))
        return false;
    QString opener = qEnvironmentVariable("MIREPAN_OPENER");
    if (opener.isEmpty())
        opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (opener.isEmpty())
        return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    // The opener answers when it has found a program, or that there is none; the window
    // goes on meanwhile.
    auto *process = new QProcess(QCoreApplication::instance());
    QObject::connect(process, &QProcess::finished, process,
                     [process, whenFailed](int code, QProcess::ExitStatus status) {
                         process->deleteLater();
                         if ((code != 0 || status != QProcess::NormalExit) && whenFailed)
                             whenFailed();
                     });
    QObject::connect(process, &QProcess::errorOccurred, process, [process, whenFailed](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        process->deleteLater();
        if (whenFailed)
            whenFailed();
    });
    process->start(opener, {path});
    return true;
}
