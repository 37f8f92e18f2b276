#pragma once
// How the database session speaks to the household. The session shows no window of its own:
// the windows install a voice at start (the tests theirs), through which failures are told and
// a wait for another program is shown.

#include <QString>

class DatabaseVoice
{
public:
    virtual ~DatabaseVoice() = default;
    // A failure the user must know of, as a critical message box's text and title.
    virtual void report(const QString &text, const QString &title) = 0;
    // Called every quarter of a second or so while the session waits for another program to let
    // go of the database; false gives the wait up.
    virtual bool waiting(const QString &text, int elapsedMs, int limitMs) = 0;
    // The wait is over, whichever way it ended.
    virtual void waitEnded() = 0;
    // A task of the session's own that takes a moment (putting the file in order) starts and
    // ends; the user sees what it is doing meanwhile.
    virtual void working(const QString &text) = 0;
    virtual void workEnded() = 0;
};

// Tells the voice that the session works, for the lifetime of the object.
class DatabaseWork
{
public:
    explicit DatabaseWork(const QString &text);
    ~DatabaseWork();
    DatabaseWork(const DatabaseWork &) = delete;
    DatabaseWork &operator=(const DatabaseWork &) = delete;
};

// Installs the voice (not owned); nullptr leaves the session speaking to the log only.
void SetDatabaseVoice(DatabaseVoice *voice);
DatabaseVoice &TheDatabaseVoice();
