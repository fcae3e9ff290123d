#include "RequestHandler.h"

#include "message/Payload.h"

namespace Velmora::Daemon {

void Reply::send(quint32 type, const google::protobuf::MessageLite& message)
{
    sendPayload(type, Velmora::Message::toPayload(message));
}

} // namespace Velmora::Daemon
