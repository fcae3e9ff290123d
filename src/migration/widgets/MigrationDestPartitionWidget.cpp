#include "migration/widgets/MigrationDestPartitionWidget.h"

#include "migration/MigrationDestPartition.h"

namespace Velmora::System {

MigrationDestPartitionWidget::MigrationDestPartitionWidget(MigrationDestPartition* partition, QWidget* parent)
    : PartitionWidget(partition, parent)
{
    setVisible(partition->migrate());
    connect(partition, &MigrationDestPartition::migrateChanged, this, &QWidget::setVisible);
}

} // namespace Velmora::System
