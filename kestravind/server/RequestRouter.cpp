#include "RequestRouter.h"

#include "ClientConnection.h"
#include "FixedCall.h"
#include "Log.h"
#include "Refusals.h"

#include "message/Message.h"

namespace Velmora::Daemon {

using Velmora::Message::Message;

namespace {
// Workers for every connection together. Each connection takes one for its short requests and
// one per long task, so this is the number of clients served at the same moment, not a queue.
constexpr int MaxWorkers = 64;

void answerInTurn(ClientConnection& client, Answer answer)
{
    client.calls().submit(std::make_unique<FixedCall>(std::move(answer)));
}

QString nameOf(quint32 type)
{
    const QString name = Message::typeName(type);
    return name.isEmpty() ? QString::number(type) : name;
}
} // namespace

RequestRouter::RequestRouter(const AccessPolicy& policy, QObject* parent)
    : QObject(parent)
    , m_policy(policy)
{
    m_pool.setMaxThreadCount(MaxWorkers);
}

RequestRouter::~RequestRouter()
{
    // Workers hold references to the handlers.
    m_pool.waitForDone();
}

void RequestRouter::addHandler(std::unique_ptr<RequestHandler> handler)
{
    for (quint32 type : handler->requestTypes()) {
        if (m_routes.contains(type))
            qCWarning(serverLog, "%s has a handler already; the second one is ignored", qPrintable(nameOf(type)));
        else
            m_routes.insert(type, handler.get());
    }
    m_handlers.push_back(std::move(handler));
}

void RequestRouter::route(ClientConnection& client, quint32 type, const QByteArray& payload)
{
    const PeerCredentials& peer = client.peer();
    // The name is for the log: looked up only where a line is written.
    qCDebug(serverLog, "Client %d -> %s (%d bytes)", client.id(), qPrintable(nameOf(type)), payload.size());
    RequestHandler* handler = m_routes.value(type);
    if (!handler) {
        qCWarning(serverLog, "Client %d sent an unknown message type %u", client.id(), type);
        answerInTurn(client, errorAnswer(Velmora::Message::INVALID_REQUEST, QStringLiteral("Unknown message type %1").arg(type)));
        return;
    }
    if (!m_policy.allows(peer, type, payload)) {
        const QString name = nameOf(type);
        qCWarning(serverLog, "Refused %s of uid %u (pid %d): it needs root or the group \"%s\"", qPrintable(name),
            unsigned(peer.uid), int(peer.pid), qPrintable(m_policy.groupName()));
        answerInTurn(client, refusalFor(type, payload, Velmora::Message::ACCESS_DENIED,
            QStringLiteral("%1 needs root or membership of the group \"%2\"").arg(name, m_policy.groupName())));
        return;
    }
    std::unique_ptr<Call> call = handler->decode(type, payload);
    if (!call) {
        const QString name = nameOf(type);
        qCWarning(serverLog, "Client %d: the payload of %s does not parse", client.id(), qPrintable(name));
        answerInTurn(client, errorAnswer(Velmora::Message::INVALID_REQUEST, QStringLiteral("Malformed %1 message").arg(name)));
        return;
    }
    if (call->stopsTask()) {
        if (!client.calls().stop(call->task()))
            qCInfo(serverLog, "Client %d: no %s task running to stop", client.id(), qPrintable(call->task()));
        return;
    }
    client.calls().submit(std::move(call));
}

} // namespace Velmora::Daemon
