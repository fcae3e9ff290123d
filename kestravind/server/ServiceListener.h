#pragma once

#include "ClientConnection.h"

#include <QLocalServer>
#include <QObject>
#include <QString>

namespace Velmora::Daemon {

class RequestRouter;

// The service socket. QLocalServer does the listening: it already creates the socket with the
// permissions asked for and hands out connections on the event loop the rest of the service
// uses; the peer's credentials come from the accepted descriptor with SO_PEERCRED.
class ServiceListener : public QObject
{
    Q_OBJECT

public:
    ServiceListener(RequestRouter& router, const ConnectionLimits& limits, QObject* parent = nullptr);
    ~ServiceListener() override;

    // Makes a missing folder of the socket (mode 0755), replaces the socket a dead service left
    // and refuses to take one a live service answers on. False with a reason otherwise.
    bool listen(const QString& path, QString* error);
    // Closes the socket and tells every running request to stop.
    void shutDown();

private:
    void acceptConnections();

    RequestRouter& m_router;
    const ConnectionLimits m_limits;
    QLocalServer m_server;
    int m_nextClientId = 1;
};

} // namespace Velmora::Daemon
