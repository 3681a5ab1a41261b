#include "frame/singleinstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

namespace fenwork {

namespace {
constexpr char kAck[] = "ok\n";
}

SingleInstance::SingleInstance(const QString &userRoot, QObject *parent) : QObject(parent)
{
    const QByteArray hash = QCryptographicHash::hash(QDir(userRoot).absolutePath().toUtf8(),
                                                     QCryptographicHash::Sha1).toHex().left(16);
    m_name = QStringLiteral("fennelworks-") + QString::fromLatin1(hash);
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::claim()
{
    if (m_server)
        return true;
    // Ask first: listening would silently take the name over from a running instance.
    QLocalSocket probe;
    probe.connectToServer(m_name);
    if (probe.waitForConnected(500))
        return false;
    // Nobody answers: a socket left by a crashed run is removed.
    QLocalServer::removeServer(m_name);
    auto *server = new QLocalServer(this);
    if (!server->listen(m_name)) {
        delete server;
        return false;
    }
    m_server = server;
    connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::acceptConnection);
    return true;
}

void SingleInstance::acceptConnection()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        const auto readPath = [this, socket] {
            while (socket->canReadLine()) {
                const QString path = QString::fromUtf8(socket->readLine()).chopped(1);
                socket->write(kAck);
                socket->flush();
                // Opening a file lets events run, which may end this connection: open later.
                QMetaObject::invokeMethod(this, [this, path] { emit pathReceived(path); }, Qt::QueuedConnection);
            }
        };
        connect(socket, &QLocalSocket::readyRead, this, readPath);
        // The line may have arrived with the connection itself.
        readPath();
    }
}

bool SingleInstance::handOver(const QString &path, int timeoutMs) const
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    QString line = path;
    line.replace(u'\n', u' ');
    socket.write(line.toUtf8() + '\n');
    if (!socket.waitForBytesWritten(timeoutMs))
        return false;
    while (!socket.canReadLine())
        if (!socket.waitForReadyRead(timeoutMs))
            return false;
    return socket.readLine() == kAck;
}

} // namespace fenwork
