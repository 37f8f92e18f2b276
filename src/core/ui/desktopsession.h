#pragma once
// What the desktop does for a window that must stay seen from across the kitchen: keep the
// screen from blanking, and tell of an event while the window is hidden. Reached over the
// session bus (the freedesktop screen-saver and notification services); a desktop without
// them, or without a session bus, simply does neither. Tests put their own in place.

#include <QString>

class DesktopSession
{
public:
    virtual ~DesktopSession() = default;
    // Keeps the screen on until released; the cookie to release it with, 0 when the desktop
    // would not. The service lets go by itself when the program ends, however it ends: it
    // holds the inhibition for the program's bus connection.
    virtual quint32 inhibitScreenSaver(const QString &reason) = 0;
    virtual void releaseScreenSaver(quint32 cookie) = 0;
    // A desktop notification, not waited for.
    virtual void notify(const QString &summary, const QString &body) = 0;
};

// The desktop of this session (the session bus, unless a test has put another in place).
DesktopSession &TheDesktop();
// Puts another in place, or the session bus again with nullptr; the caller keeps ownership.
void SetDesktopSession(DesktopSession *session);

// Holds the screen on while it lives.
class ScreenKeptOn
{
public:
    explicit ScreenKeptOn(const QString &reason) : m_cookie(TheDesktop().inhibitScreenSaver(reason)) { }
    ~ScreenKeptOn()
    {
        if (m_cookie != 0)
            TheDesktop().releaseScreenSaver(m_cookie);
    }
    ScreenKeptOn(const ScreenKeptOn &) = delete;
    ScreenKeptOn &operator=(const ScreenKeptOn &) = delete;

private:
    quint32 m_cookie;
};
