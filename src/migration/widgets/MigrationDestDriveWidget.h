#pragma once

#include "migration/widgets/DriveWidget.h"

namespace Velmora::System {

// The destination drive as planned: its boxes follow the partitions' migrate switches.
class MigrationDestDriveWidget : public DriveWidget
{
    Q_OBJECT

public:
    explicit MigrationDestDriveWidget(QWidget* parent = nullptr);

protected slots:
    void onItemAdded(int id) override;
};

} // namespace Velmora::System
