#pragma once
// How the layers below the windows speak to the household: the database session, the
// conversions. They show no window of their own: the windows install a voice at start (the
// tests theirs), through which failures are told and waits and longer tasks are shown. The
// voice as it stands, without windows (reg_vesk, a tool), writes failures to the log.

#include <QString>

class Voice
{
public:
    virtual ~Voice() = default;
    // A failure the user must know of, as a critical message box's text and title.
    virtual void report(const QString &text, const QString &title);
    // A notice the user must read, as a plain message box (no icon, OK).
    virtual void notice(const QString &text, const QString &title);
    // Called every quarter of a second or so while the session waits for another program to let
    // go of the database; false gives the wait up.
    virtual bool waiting(const QString &text, int elapsedMs, int limitMs);
    // The wait is over, whichever way it ended.
    virtual void waitEnded() { }
    // A task of the session's own that takes a moment (putting the file in order) starts and
    // ends; the user sees what it is doing meanwhile.
    virtual void working(const QString &text);
    virtual void workEnded() { }
};

// Tells the voice that the session works, for the lifetime of the object.
class WorkingNotice
{
public:
    explicit WorkingNotice(const QString &text);
    ~WorkingNotice();
    WorkingNotice(const WorkingNotice &) = delete;
    WorkingNotice &operator=(const WorkingNotice &) = delete;
};

// Installs the voice (not owned); nullptr leaves the log.
void SetVoice(Voice *voice);
Voice &TheVoice();
