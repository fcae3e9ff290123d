#pragma once

#include "smart/SmartController.h"

namespace Velmora::Smart {

// SMART class "C". Counts written data in units of 32 MiB.
class SmiSmartController : public SmartController
{
    Q_OBJECT

public:
    SmiSmartController(const QString& firmwareVersion, QObject* parent = nullptr);

    double parameterValue(SmartParameter parameter, bool* ok) override;
};

} // namespace Velmora::Smart
