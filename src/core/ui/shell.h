#pragma once
// Starting other programs and opening documents through the desktop, as one seam that
// tests replace.

#include <QStringList>

#include <functional>

class ShellHook
{
public:
    virtual ~ShellHook() = default;
    virtual void startProgram(const QString &program, const QStringList &arguments) = 0;
    virtual bool openDocument(const QString &path) = 0;
};

// Starts a program without waiting for it (the data-source set-up utility).
void StartProgramMinimised(const QString &program, const QStringList &arguments);
// Opens a file with the program the desktop associates with it; false when that failed at
// once. The desktop's opener ($MIREPAN_OPENER, else xdg-open) may fail only later (no program
// for the file's kind): then whenFailed runs.
bool OpenDocument(const QString &path, std::function<void()> whenFailed = {});
// Replaces the real shell (nullptr restores it). Not owned.
void SetShellHook(ShellHook *hook);
