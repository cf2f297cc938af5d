#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>

namespace varnholt {

namespace {

constexpr int answerTimeoutMs = 2000;

} // namespace

SingleInstance::SingleInstance(const QString& libraryPath)
{
    QString path = QFileInfo(libraryPath).canonicalFilePath();
    if (path.isEmpty()) {
        path = libraryPath;
    }
    const QByteArray user = QDir::homePath().toUtf8();
    const QByteArray hash =
        QCryptographicHash::hash(path.toUtf8() + '\n' + user, QCryptographicHash::Sha1).toHex();
    name_ = QStringLiteral("varnholt-") + QString::fromLatin1(hash);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = server_.nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            socket->write("shown");
            socket->flush();
            Q_EMIT activationRequested();
        }
    });
}

bool SingleInstance::handOver()
{
    QLocalSocket socket;
    socket.connectToServer(name_);
    if (socket.waitForConnected(answerTimeoutMs)) {
        // A connection alone may be the backlog of a program that has hung; it still owns
        // the library, so this start ends either way.
        socket.waitForReadyRead(answerTimeoutMs);
        return true;
    }
    if (!server_.listen(name_)) {
        // A killed program leaves its socket behind.
        QLocalServer::removeServer(name_);
        server_.listen(name_);
    }
    return false;
}

} // namespace varnholt
