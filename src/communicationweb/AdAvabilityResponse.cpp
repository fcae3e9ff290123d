#include "communicationweb/AdAvabilityResponse.h"

namespace Velmora::CommunicationWeb {

AdAvabilityResponse::AdAvabilityResponse(QObject* parent)
    : JsonMessage(parent)
{
}

} // namespace Velmora::CommunicationWeb
