#include "communicationweb/AuthorizationResponse.h"

namespace Velmora::CommunicationWeb {

AuthorizationResponse::AuthorizationResponse(QObject* parent)
    : JsonMessage(parent)
{
}

} // namespace Velmora::CommunicationWeb
