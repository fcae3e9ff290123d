#include "RequestRouter.h"

#include "ClientConnection.h"
#include "RequestGroup.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include "Error.pb.h"

#include <QCoreApplication>
#include <QTimer>

namespace Velmora::ServiceSim {

using Velmora::Message::Message;

namespace {
// The exit code of a service that ends in the middle of its work on purpose.
constexpr int ExitOnRequestCode = 3;
} // namespace

RequestRouter::RequestRouter(const FaultPlan& faults, QObject* parent)
    : QObject(parent)
    , m_faults(faults)
{
}

void RequestRouter::addGroup(RequestGroup* group)
{
    group->setParent(this);
    for (quint32 type : group->requestTypes())
        m_groups.insert(type, group);
}

void RequestRouter::route(ClientConnection* client, quint32 type, QByteArray payload)
{
    // Requests behind the last one, in the same read, die with the service.
    if (m_exiting)
        return;
    const QString name = Message::typeName(type);
    Logger::info(QString(), QStringLiteral("Client %1 -> %2 [%3] (%4 bytes)")
                                .arg(client->id()).arg(name).arg(type).arg(payload.size()));
    ++m_requests;
    if (m_faults.exitAfterRequests > 0 && m_requests >= m_faults.exitAfterRequests) {
        Logger::warning(QString(), QStringLiteral("Ending the service on request %1, as asked").arg(m_requests));
        m_exiting = true;
        QCoreApplication::exit(ExitOnRequestCode);
        return;
    }
    if (!m_groups.contains(type)) {
        Logger::error(QString(), QStringLiteral("Client %1 sent an unknown message type %2").arg(client->id()).arg(type));
        reportError(client, Velmora::Message::INVALID_REQUEST, QStringLiteral("Unknown message type %1").arg(type));
        return;
    }
    const int occurrence = ++m_occurrences[type];
    // The drive goes before the request is answered, as a disk pulled while the request travels.
    if (const auto drive = m_faults.unplugFor(type, occurrence); drive && m_unplugHandler) {
        Logger::warning(QString(), QStringLiteral("Unplugging drive %1 on %2 #%3, as asked").arg(*drive).arg(name).arg(occurrence));
        m_unplugHandler(*drive, client);
    }
    if (m_faults.isSilenced(type)) {
        Logger::warning(QString(), QStringLiteral("Not answering %1 #%2, as asked").arg(name).arg(occurrence));
        return;
    }
    const int delay = m_faults.delayFor(type);
    if (delay <= 0) {
        answer(client, type, payload, occurrence);
        return;
    }
    Logger::warning(QString(), QStringLiteral("Answering %1 #%2 %3 ms late, as asked").arg(name).arg(occurrence).arg(delay));
    QPointer<ClientConnection> target(client);
    QTimer::singleShot(delay, this, [this, target, type, payload, occurrence] {
        if (target && target->isOpen())
            answer(target, type, payload, occurrence);
    });
}

void RequestRouter::answer(QPointer<ClientConnection> client, quint32 type, const QByteArray& payload, int occurrence)
{
    RequestGroup* group = m_groups.value(type);
    bool parsed = false;
    if (const auto code = m_faults.failureFor(type, occurrence)) {
        Logger::warning(QString(), QStringLiteral("Failing %1 #%2 with code %3, as asked")
                                       .arg(Message::typeName(type)).arg(occurrence).arg(*code));
        parsed = group->fail(type, payload, *code, client);
    } else {
        parsed = group->handle(type, payload, client);
    }
    if (!parsed && client) {
        Logger::error(QString(), QStringLiteral("Client %1: the payload of %2 does not parse")
                                     .arg(client->id()).arg(Message::typeName(type)));
        reportError(client, Velmora::Message::INVALID_REQUEST,
            QStringLiteral("Malformed %1 message").arg(Message::typeName(type)));
    }
}

void RequestRouter::reportError(ClientConnection* client, int code, const QString& description)
{
    Velmora::Message::Error error;
    error.set_code(static_cast<Velmora::Message::Code>(code));
    error.set_description(description.toStdString());
    client->send(Message::Error, error);
}

} // namespace Velmora::ServiceSim
