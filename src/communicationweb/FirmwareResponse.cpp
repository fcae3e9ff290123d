#include "communicationweb/FirmwareResponse.h"

namespace Velmora::CommunicationWeb {

FirmwareResponse::FirmwareResponse(QObject* parent)
    : JsonMessage(parent)
{
}

} // namespace Velmora::CommunicationWeb
