#pragma once

#include "FaultPlan.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QPointer>

#include <functional>

namespace Velmora::ServiceSim {

class ClientConnection;
class RequestGroup;

// Hands every request to the group that answers its type, after the plan's faults have had their
// say: late, never, with an error code, or the end of the service. Unknown types and payloads
// that do not parse get an Error message back and are logged; nothing a client sends stops the
// service.
class RequestRouter : public QObject
{
    Q_OBJECT

public:
    RequestRouter(const FaultPlan& faults, QObject* parent = nullptr);

    // Takes ownership of the group.
    void addGroup(RequestGroup* group);

    // Called when the plan takes a drive out of the machine, with the client whose request did it.
    using UnplugHandler = std::function<void(quint32 driveId, ClientConnection* client)>;
    void setUnplugHandler(UnplugHandler handler) { m_unplugHandler = std::move(handler); }

public slots:
    void route(Velmora::ServiceSim::ClientConnection* client, quint32 type, QByteArray payload);

private:
    void answer(QPointer<ClientConnection> client, quint32 type, const QByteArray& payload, int occurrence);
    void reportError(ClientConnection* client, int code, const QString& description);

    const FaultPlan& m_faults;
    QHash<quint32, RequestGroup*> m_groups;
    QHash<quint32, int> m_occurrences;
    int m_requests = 0;
    bool m_exiting = false;
    UnplugHandler m_unplugHandler;
};

} // namespace Velmora::ServiceSim
