#include "communicationweb/SupportRequest.h"

namespace Velmora::CommunicationWeb {

SupportRequest::SupportRequest(QObject* parent)
    : JsonMessage(parent)
{
}

} // namespace Velmora::CommunicationWeb
