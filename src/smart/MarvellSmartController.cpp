#include "smart/MarvellSmartController.h"

namespace Velmora::Smart {

MarvellSmartController::MarvellSmartController(const QString& firmwareVersion, QObject* parent)
    : SmartController(firmwareVersion, parent)
{
}

double MarvellSmartController::parameterValue(SmartParameter parameter, bool* ok)
{
    switch (parameter) {
    case MaxEraseCount:
        return rawValue(165, Raw32, ok);
    case AvgEraseCount:
        return rawValue(167, Raw32, ok);
    case LifeRemaining:
        return lifeFromEraseCount(167, maxEraseCount, ok);
    case GBWritten:
        return rawValue(241, Raw48, ok);
    default:
        return commonParameterValue(parameter, ok);
    }
}

} // namespace Velmora::Smart
