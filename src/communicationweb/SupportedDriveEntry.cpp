#include "communicationweb/SupportedDriveEntry.h"

namespace Velmora::CommunicationWeb {

SupportedDriveEntry::SupportedDriveEntry(QObject* parent)
    : QObject(parent)
{
}

} // namespace Velmora::CommunicationWeb
