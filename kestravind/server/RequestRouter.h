#pragma once

#include "AccessPolicy.h"
#include "RequestHandler.h"

#include <QHash>
#include <QObject>
#include <QThreadPool>

#include <memory>
#include <vector>

namespace Velmora::Daemon {

class ClientConnection;

// Hands each request to the handler of its type, on a worker thread, once the access policy has
// let it through. Unknown types and payloads that do not parse are answered with an Error
// message and logged; the connection stays. Lives as long as the service, and so serves as the
// post box through which workers reach the connections.
class RequestRouter : public QObject
{
    Q_OBJECT

public:
    explicit RequestRouter(const AccessPolicy& policy, QObject* parent = nullptr);
    ~RequestRouter() override;

    // Takes ownership. A type already routed stays with its first handler.
    void addHandler(std::unique_ptr<RequestHandler> handler);
    bool isRouted(quint32 type) const { return m_routes.contains(type); }

    void route(ClientConnection& client, quint32 type, const QByteArray& payload);

    QThreadPool& pool() { return m_pool; }
    // Waits for running requests after their connections have been told to stop.
    bool waitForWorkers(int timeoutMs) { return m_pool.waitForDone(timeoutMs); }

private:
    const AccessPolicy& m_policy;
    std::vector<std::unique_ptr<RequestHandler>> m_handlers;
    QHash<quint32, RequestHandler*> m_routes;
    QThreadPool m_pool;
};

} // namespace Velmora::Daemon
