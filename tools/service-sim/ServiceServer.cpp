#include "ServiceServer.h"

#include "ClientConnection.h"
#include "RequestRouter.h"

#include "logger/Logger.h"

#include <QLocalSocket>

namespace Velmora::ServiceSim {

namespace {
constexpr int ProbeTimeoutMs = 1000;
} // namespace

ServiceServer::ServiceServer(const FaultPlan& faults, const Timings& timings, RequestRouter* router, QObject* parent)
    : QObject(parent)
    , m_faults(faults)
    , m_timings(timings)
    , m_router(router)
{
    connect(&m_server, &QLocalServer::newConnection, this, &ServiceServer::onNewConnection);
}

bool ServiceServer::isServedElsewhere(const QString& name, bool* staleSocket)
{
    QLocalSocket probe;
    probe.connectToServer(name);
    if (probe.waitForConnected(ProbeTimeoutMs)) {
        probe.disconnectFromServer();
        return true;
    }
    // A socket file that nobody accepts on is what a killed service leaves; any other failure
    // means there is nothing to clean.
    *staleSocket = probe.error() == QLocalSocket::ConnectionRefusedError;
    return false;
}

bool ServiceServer::start(const QString& name, QString* error)
{
    bool staleSocket = false;
    if (isServedElsewhere(name, &staleSocket)) {
        *error = QStringLiteral("Another service is already listening on \"%1\"; not starting a second one").arg(name);
        return false;
    }
    if (staleSocket) {
        Logger::warning(QString(), QStringLiteral("Removing the stale socket of \"%1\"").arg(name));
        QLocalServer::removeServer(name);
    }
    if (!m_server.listen(name)) {
        *error = QStringLiteral("Cannot listen on \"%1\": %2").arg(name, m_server.errorString());
        return false;
    }
    Logger::info(QString(), QStringLiteral("Listening on %1").arg(m_server.fullServerName()));
    return true;
}

void ServiceServer::onNewConnection()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        auto* client = new ClientConnection(socket, m_nextClientId++, m_faults, m_timings, this);
        Logger::info(QString(), QStringLiteral("Client %1 connected").arg(client->id()));
        connect(client, &ClientConnection::frameReceived, m_router, &RequestRouter::route);
        connect(client, &ClientConnection::closed, client, &QObject::deleteLater);
    }
}

} // namespace Velmora::ServiceSim
