#include "communicationweb/SessionResponse.h"

namespace Velmora::CommunicationWeb {

SessionResponse::SessionResponse(QObject* parent)
    : JsonMessage(parent)
{
}

} // namespace Velmora::CommunicationWeb
