#include "ServiceListener.h"

#include "Log.h"
#include "RequestRouter.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Velmora::Daemon {

namespace {

constexpr int ProbeTimeoutMs = 1000;

bool peerCredentials(qintptr descriptor, PeerCredentials* peer)
{
    ucred credentials {};
    socklen_t size = sizeof(credentials);
    if (getsockopt(static_cast<int>(descriptor), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return false;
    peer->uid = credentials.uid;
    peer->gid = credentials.gid;
    peer->pid = credentials.pid;
    return true;
}

bool makeFolder(const QString& folder, QString* error)
{
    if (QFileInfo(folder).isDir())
        return true;
    const QByteArray path = QFile::encodeName(folder);
    // Created as the service's own, readable by all: the socket inside is what users reach.
    if (!QDir().mkpath(folder) || chmod(path.constData(), 0755) != 0) {
        *error = QStringLiteral("Cannot create the folder \"%1\": %2").arg(folder, QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    return true;
}

} // namespace

ServiceListener::ServiceListener(RequestRouter& router, const ConnectionLimits& limits, QObject* parent)
    : QObject(parent)
    , m_router(router)
    , m_limits(limits)
{
    // Every local user may connect; what each may ask is the access policy's business.
    m_server.setSocketOptions(QLocalServer::WorldAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &ServiceListener::acceptConnections);
}

ServiceListener::~ServiceListener()
{
    shutDown();
}

bool ServiceListener::listen(const QString& path, QString* error)
{
    if (!QDir::isAbsolutePath(path)) {
        *error = QStringLiteral("The socket path \"%1\" is not absolute").arg(path);
        return false;
    }
    if (!makeFolder(QFileInfo(path).absolutePath(), error))
        return false;
    struct stat status {};
    if (lstat(QFile::encodeName(path).constData(), &status) == 0) {
        // Never remove what is not a socket: a file or a link there is someone else's.
        if (!S_ISSOCK(status.st_mode)) {
            *error = QStringLiteral("\"%1\" exists and is not a socket; not replacing it").arg(path);
            return false;
        }
        QLocalSocket probe;
        probe.connectToServer(path);
        if (probe.waitForConnected(ProbeTimeoutMs)) {
            probe.abort();
            *error = QStringLiteral("Another service is already listening on \"%1\"; not starting a second one").arg(path);
            return false;
        }
        qCWarning(serverLog, "Removing the stale socket \"%s\"", qPrintable(path));
        if (unlink(QFile::encodeName(path).constData()) != 0 && errno != ENOENT) {
            *error = QStringLiteral("Cannot remove the stale socket \"%1\": %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
            return false;
        }
    }
    if (!m_server.listen(path)) {
        *error = QStringLiteral("Cannot listen on \"%1\": %2").arg(path, m_server.errorString());
        return false;
    }
    qCInfo(serverLog, "Listening on %s", qPrintable(path));
    return true;
}

void ServiceListener::shutDown()
{
    if (m_server.isListening())
        m_server.close();
    // The connections' schedulers raise the stop flags of their requests as they go.
    for (ClientConnection* connection : findChildren<ClientConnection*>(QString(), Qt::FindDirectChildrenOnly))
        delete connection;
}

void ServiceListener::acceptConnections()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        PeerCredentials peer;
        if (!peerCredentials(socket->socketDescriptor(), &peer)) {
            qCWarning(serverLog, "A connection without credentials is closed: %s", std::strerror(errno));
            socket->abort();
            socket->deleteLater();
            continue;
        }
        const int id = m_nextClientId++;
        auto* connection = new ClientConnection(socket, id, peer, m_router, m_limits, this);
        qCInfo(serverLog, "Client %d connected: uid %u, gid %u, pid %d", id, unsigned(peer.uid), unsigned(peer.gid), int(peer.pid));
        connect(connection, &ClientConnection::closed, connection, &QObject::deleteLater);
    }
}

} // namespace Velmora::Daemon
