#pragma once

#include "ClientConnection.h"
#include "Machine.h"
#include "Timings.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>

namespace Velmora::ServiceSim {

// One group of requests of the catalogue, answered the way the service answers them. The router
// hands each request to the group that names its type.
class RequestGroup : public QObject
{
    Q_OBJECT

public:
    RequestGroup(Machine& machine, const Timings& timings, QObject* parent = nullptr);

    virtual QList<quint32> requestTypes() const = 0;

    // Answers a request. Returns false when the payload is not the message of its type; the
    // router then tells the client so.
    virtual bool handle(quint32 type, const QByteArray& payload, ClientConnection* client) = 0;

    // Answers a request with the given error code in the answer that the request would get, as the
    // service does when that step fails on the machine. Returns false like handle().
    virtual bool fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client) = 0;

protected:
    // Runs `work` after `ms`, if the client is still connected then.
    void later(ClientConnection* client, int ms, std::function<void(ClientConnection*)> work);

    template<typename M>
    static bool parse(const QByteArray& payload, M* message)
    {
        return message->ParseFromArray(payload.constData(), payload.size());
    }

    Machine& m_machine;
    const Timings& m_timings;
};

} // namespace Velmora::ServiceSim
