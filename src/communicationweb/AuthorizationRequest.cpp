#include "communicationweb/AuthorizationRequest.h"

namespace Velmora::CommunicationWeb {

AuthorizationRequest::AuthorizationRequest(QObject* parent)
    : JsonMessage(parent)
{
}

} // namespace Velmora::CommunicationWeb
