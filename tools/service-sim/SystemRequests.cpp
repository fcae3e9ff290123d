#include "SystemRequests.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include "Error.pb.h"
#include "SystemTrimCommand.pb.h"
#include "Version.pb.h"

namespace Velmora::ServiceSim {

using Velmora::Message::Message;

SystemRequests::SystemRequests(Machine& machine, const Timings& timings, const QList<int>& version, QObject* parent)
    : RequestGroup(machine, timings, parent)
    , m_version(version)
{
}

QList<quint32> SystemRequests::requestTypes() const
{
    return {Message::Version, Message::SystemInfoRequest, Message::SystemReport, Message::SystemTrimCommand};
}

bool SystemRequests::handle(quint32 type, const QByteArray& payload, ClientConnection* client)
{
    switch (type) {
    case Message::Version: {
        Velmora::Message::Version version;
        version.set_major(static_cast<quint32>(m_version.value(0)));
        version.set_minor(static_cast<quint32>(m_version.value(1)));
        version.set_patch(static_cast<quint32>(m_version.value(2)));
        client->send(Message::Version, version);
        return true;
    }
    case Message::SystemInfoRequest:
        client->send(Message::SystemInfo, m_machine.systemInfo());
        return true;
    case Message::SystemReport:
        client->send(Message::SystemReport, m_machine.summary());
        return true;
    case Message::SystemTrimCommand:
        return answerTrim(payload, client);
    }
    return false;
}

bool SystemRequests::answerTrim(const QByteArray& payload, ClientConnection* client)
{
    Velmora::Message::SystemTrimCommand command;
    if (!parse(payload, &command))
        return false;
    auto* board = m_machine.summary().mutable_baseboardinfo();
    // A request with true turns TRIM on; one without asks for the present state.
    if (command.trimenabled() && !board->trimenabled()) {
        Logger::info(QString(), QStringLiteral("TRIM enabled"));
        board->set_trimenabled(true);
    }
    Velmora::Message::SystemTrimCommand answer;
    answer.set_code(Velmora::Message::SUCCESS);
    answer.set_trimenabled(board->trimenabled());
    client->send(Message::SystemTrimCommand, answer);
    return true;
}

bool SystemRequests::fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client)
{
    if (type != Message::SystemTrimCommand) {
        // The version, the drive list and the summary carry no code: a service that cannot give
        // them says so in an Error message.
        Velmora::Message::Error error;
        error.set_code(static_cast<Velmora::Message::Code>(code));
        error.set_description(QStringLiteral("%1 failed").arg(Message::typeName(type)).toStdString());
        client->send(Message::Error, error);
        return true;
    }
    Velmora::Message::SystemTrimCommand command;
    if (!parse(payload, &command))
        return false;
    Velmora::Message::SystemTrimCommand answer;
    answer.set_code(static_cast<Velmora::Message::Code>(code));
    answer.set_trimenabled(m_machine.summary().baseboardinfo().trimenabled());
    client->send(Message::SystemTrimCommand, answer);
    return true;
}

} // namespace Velmora::ServiceSim
