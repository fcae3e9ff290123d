#include "SmartRequests.h"

#include "message/Message.h"

#include "Smart.pb.h"
#include "SmartRequest.pb.h"

namespace Velmora::ServiceSim {

using Velmora::Message::Message;
using SmartAnswer = Velmora::Message::Smart;

namespace {

void addAttribute(SmartAnswer* answer, const SmartTable::Attribute& attribute)
{
    auto* entry = answer->add_attributes();
    entry->set_id(attribute.id);
    entry->set_current(attribute.current);
    entry->set_threshold(attribute.threshold);
    entry->set_worst(attribute.worst);
    entry->set_status(attribute.status);
    entry->set_data(SmartTable::rawText(attribute.raw).toStdString());
}

} // namespace

QList<quint32> SmartRequests::requestTypes() const
{
    return {Message::SmartRequest};
}

bool SmartRequests::handle(quint32, const QByteArray& payload, ClientConnection* client)
{
    Velmora::Message::SmartRequest request;
    if (!parse(payload, &request))
        return false;

    SmartAnswer answer;
    answer.set_driveid(request.driveid());
    // Drives behind USB bridges and unknown ids have no table to read.
    if (!m_machine.drive(request.driveid()) || m_machine.driveExtras(request.driveid()).smart.isEmpty()) {
        answer.set_errorcode(m_machine.drive(request.driveid()) ? SmartAnswer::NO_ATTRIBUTE : SmartAnswer::NO_DRIVE);
        client->send(Message::Smart, answer);
        return true;
    }

    SmartTable& table = m_machine.driveExtras(request.driveid()).smart;
    if (request.allattributes()) {
        for (const SmartTable::Attribute& attribute : table.attributes())
            addAttribute(&answer, attribute);
        table.advance();
    } else if (const SmartTable::Attribute* attribute = table.attribute(request.attributeid())) {
        addAttribute(&answer, *attribute);
    } else {
        answer.set_errorcode(SmartAnswer::NO_ATTRIBUTE);
    }
    client->send(Message::Smart, answer);
    return true;
}

bool SmartRequests::fail(quint32, const QByteArray& payload, int code, ClientConnection* client)
{
    Velmora::Message::SmartRequest request;
    if (!parse(payload, &request))
        return false;
    SmartAnswer answer;
    answer.set_driveid(request.driveid());
    answer.set_errorcode(static_cast<SmartAnswer::Error>(code));
    client->send(Message::Smart, answer);
    return true;
}

} // namespace Velmora::ServiceSim
