#pragma once

#include "PeerCredentials.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <atomic>
#include <memory>

namespace google::protobuf {
class MessageLite;
}

namespace Velmora::Daemon {

// Where the answers of one request go. Callable from the worker thread that runs the request;
// answers reach the client in the order they were sent, or nowhere once it has gone.
class Reply
{
public:
    virtual ~Reply() = default;
    virtual void sendPayload(quint32 type, const QByteArray& payload) = 0;
    void send(quint32 type, const google::protobuf::MessageLite& message);
};

// One decoded request, ready to run.
class Call
{
public:
    virtual ~Call() = default;

    // A long task names itself: a connection runs one task of a name at a time (a new one stops
    // the old), and a stop request names the task it ends. Short requests have no name and are
    // answered one after the other in the order they came.
    virtual QString task() const { return {}; }
    // True for a request that only stops the running task of its name; it is not run itself.
    virtual bool stopsTask() const { return false; }

    // Runs on a worker thread. `stop` is raised by the task's stop request and by the end of the
    // connection; a long task looks at it often and ends soon after.
    virtual void run(const PeerCredentials& peer, const std::atomic_bool& stop, Reply& reply) = 0;
};

// Decodes the requests of the types it answers. Access has already been checked by the router,
// and nothing here touches a socket.
class RequestHandler
{
public:
    virtual ~RequestHandler() = default;
    virtual QList<quint32> requestTypes() const = 0;
    // Null when the payload does not parse.
    virtual std::unique_ptr<Call> decode(quint32 type, const QByteArray& payload) const = 0;
};

} // namespace Velmora::Daemon
