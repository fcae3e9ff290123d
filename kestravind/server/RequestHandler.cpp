#include "RequestHandler.h"

#include <google/protobuf/message_lite.h>

namespace Velmora::Daemon {

void Reply::send(quint32 type, const google::protobuf::MessageLite& message)
{
    QByteArray payload(static_cast<int>(message.ByteSizeLong()), Qt::Uninitialized);
    message.SerializeToArray(payload.data(), payload.size());
    sendPayload(type, payload);
}

} // namespace Velmora::Daemon
