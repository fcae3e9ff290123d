#include "migration/widgets/MigrationDestDriveWidget.h"

#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "migration/widgets/MigrationDestPartitionWidget.h"

namespace Velmora::System {

MigrationDestDriveWidget::MigrationDestDriveWidget(QWidget* parent)
    : DriveWidget(parent)
{
}

void MigrationDestDriveWidget::onItemAdded(int id)
{
    const auto* plan = qobject_cast<const MigrationDestDrive*>(drive());
    MigrationDestPartition* partition = plan ? plan->migrationPartition(id) : nullptr;
    if (!partition) {
        // A plain drive, or a stretch of unused space, is drawn as on any bar.
        DriveWidget::onItemAdded(id);
        return;
    }
    if (!isShown(partition) || partitionWidgets().contains(id))
        return;
    addPartitionWidget(id, new MigrationDestPartitionWidget(partition, this));
}

} // namespace Velmora::System
