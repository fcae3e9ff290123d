#include "smart/SmiSmartController.h"

#include "smart/SmartAttribute.h"

namespace Velmora::Smart {

SmiSmartController::SmiSmartController(const QString& firmwareVersion, QObject* parent)
    : SmartController(firmwareVersion, parent)
{
}

double SmiSmartController::parameterValue(SmartParameter parameter, bool* ok)
{
    switch (parameter) {
    case MaxEraseCount:
        return rawValue(165, Raw32, ok);
    case AvgEraseCount:
        return rawValue(167, Raw32, ok);
    case LifeRemaining:
        return qMin(rawValue(169, Byte0, ok), 100.0);
    case GBWritten: {
        const SmartAttribute* written = attribute(241);
        if (!written)
            return notSupported(ok);
        if (ok)
            *ok = true;
        return double(written->raw48() >> 5);
    }
    default:
        return commonParameterValue(parameter, ok);
    }
}

} // namespace Velmora::Smart
