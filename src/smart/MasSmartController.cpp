#include "smart/MasSmartController.h"

#include "smart/SmartAttribute.h"

namespace Velmora::Smart {

MasSmartController::MasSmartController(const QString& firmwareVersion, QObject* parent)
    : SmartController(firmwareVersion, parent)
{
}

double MasSmartController::parameterValue(SmartParameter parameter, bool* ok)
{
    switch (parameter) {
    case MaxEraseCount:
        return rawValue(207, Raw32, ok);
    case AvgEraseCount:
        return rawValue(208, Raw32, ok);
    case LifeRemaining:
        // Older firmwares lack 231; only its absence, never its value, sends us to the erase count.
        if (attribute(231))
            return 100.0 - qMin(rawValue(231, Byte0, ok), 100.0);
        return lifeFromEraseCount(208, maxEraseCount, ok);
    case GBWritten:
        return rawValue(241, Raw48, ok);
    default:
        return commonParameterValue(parameter, ok);
    }
}

} // namespace Velmora::Smart
