#pragma once

#include "migration/widgets/PartitionWidget.h"

namespace Velmora::System {

class MigrationDestPartition;

// A planned partition: it leaves the bar while it isn't to be migrated.
class MigrationDestPartitionWidget : public PartitionWidget
{
    Q_OBJECT

public:
    explicit MigrationDestPartitionWidget(MigrationDestPartition* partition, QWidget* parent = nullptr);
};

} // namespace Velmora::System
