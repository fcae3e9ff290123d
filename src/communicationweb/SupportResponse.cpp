#include "communicationweb/SupportResponse.h"

namespace Velmora::CommunicationWeb {

SupportResponse::SupportResponse(QObject* parent)
    : JsonMessage(parent)
{
}

} // namespace Velmora::CommunicationWeb
