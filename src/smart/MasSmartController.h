#pragma once

#include "smart/SmartController.h"

namespace Velmora::Smart {

// SMART class "D". Attribute 231 counts life used up, not life left.
class MasSmartController : public SmartController
{
    Q_OBJECT

public:
    MasSmartController(const QString& firmwareVersion, QObject* parent = nullptr);

    double parameterValue(SmartParameter parameter, bool* ok) override;

private:
    // Rated program/erase cycles of the flash.
    double maxEraseCount = 2700.0;
};

} // namespace Velmora::Smart
