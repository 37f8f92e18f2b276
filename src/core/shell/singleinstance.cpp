#include "singleinstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

namespace {
constexpr int kAnswerMs = 1000;
}

QString SingleInstance::keyFor(const QString &programDir)
{
    const QByteArray who = qgetenv("USER") + '\n' + QDir::cleanPath(QDir(programDir).absolutePath()).toUtf8();
    return QStringLiteral("mirepan-") +
           QString::fromLatin1(QCryptographicHash::hash(who, QCryptographicHash::Sha1).toHex().left(16));
}

SingleInstance::SingleInstance(const QString &key, QObject *parent) : QObject(parent), m_key(key) { }

SingleInstance::~SingleInstance() = default;

bool SingleInstance::claim()
{
    {
        QLocalSocket other;
        other.connectToServer(m_key);
        if (other.waitForConnected(kAnswerMs)) {
            other.write("activate\n");
            other.waitForBytesWritten(kAnswerMs);
            other.disconnectFromServer();
            return false;
        }
    }
    // Nobody answered: a socket left by a program that was killed is stale.
    QLocalServer::removeServer(m_key);
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(m_key))
        return true; // cannot watch for later starts, but this start goes on
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                if (socket->readAll().contains("activate") && onActivation)
                    onActivation();
            });
        }
    });
    return true;
}
