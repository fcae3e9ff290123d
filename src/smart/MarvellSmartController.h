#pragma once

#include "smart/SmartController.h"

namespace Velmora::Smart {

// SMART class "B". Reports no life figure of its own: life follows from the average erase count.
class MarvellSmartController : public SmartController
{
    Q_OBJECT

public:
    MarvellSmartController(const QString& firmwareVersion, QObject* parent = nullptr);

    double parameterValue(SmartParameter parameter, bool* ok) override;

private:
    // Rated program/erase cycles of the flash.
    double maxEraseCount = 2700.0;
};

} // namespace Velmora::Smart
