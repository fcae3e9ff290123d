#include "communicationweb/ApplicationUpdateResponse.h"

namespace Velmora::CommunicationWeb {

ApplicationUpdateResponse::ApplicationUpdateResponse(QObject* parent)
    : JsonMessage(parent)
{
}

} // namespace Velmora::CommunicationWeb
