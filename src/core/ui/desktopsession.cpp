#include "desktopsession.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

namespace {

const QString kApplication = QStringLiteral("Mirepan");
// A desktop that does not answer within this time is taken to have no such service.
constexpr int kAnswerMs = 1000;

class SessionBus final : public DesktopSession
{
public:
    quint32 inhibitScreenSaver(const QString &reason) override
    {
        const QDBusMessage reply = call(screenSaver(QStringLiteral("Inhibit")) << kApplication << reason);
        return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()
                 ? reply.arguments().constFirst().toUInt()
                 : 0;
    }

    void releaseScreenSaver(quint32 cookie) override
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (bus.isConnected())
            bus.send(screenSaver(QStringLiteral("UnInhibit")) << cookie);
    }

    void notify(const QString &summary, const QString &body) override
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (!bus.isConnected())
            return;
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
        // Shown until the cook dismisses it: a timer that has rung is not to be missed.
        const QVariantMap hints {{QStringLiteral("urgency"), QVariant::fromValue(uchar(2))}};
        message << kApplication << quint32(0) << QStringLiteral("org.mirepan.mirepan") << summary << body
                << QStringList() << hints << qint32(0);
        bus.send(message);
    }

private:
    static QDBusMessage screenSaver(const QString &method)
    {
        return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.ScreenSaver"),
                                              QStringLiteral("/org/freedesktop/ScreenSaver"),
                                              QStringLiteral("org.freedesktop.ScreenSaver"), method);
    }

    static QDBusMessage call(const QDBusMessage &message)
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        return bus.isConnected() ? bus.call(message, QDBus::Block, kAnswerMs) : QDBusMessage();
    }
};

DesktopSession *g_session = nullptr;

} // namespace

DesktopSession &TheDesktop()
{
    static SessionBus bus;
    return g_session ? *g_session : bus;
}

void SetDesktopSession(DesktopSession *session)
{
    g_session = session;
}
