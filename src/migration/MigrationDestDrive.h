#pragma once

#include "system/Drive.h"

namespace Velmora::System {

class MigrationDestPartition;

// The destination drive as the plan will leave it. Holds copies of the source's partitions and
// fits them to its own capacity: what the system needs keeps its size, the operating system gets
// its share but at least its minimum, and data partitions divide what remains.
class MigrationDestDrive : public Drive
{
    Q_OBJECT

public:
    MigrationDestDrive(const Drive& drive, QObject* parent = nullptr);

    void addPartition(MigrationDestPartition* partition);
    MigrationDestPartition* migrationPartition(int id) const;
    MigrationDestPartition* partitionByCreatedId(int createdId) const;

    int bootPartitionCreatedId() const;
    int osPartitionCreatedId() const;
    bool needsBootabilityFix() const { return bootPartitionCreatedId() != -1 && osPartitionCreatedId() != -1; }

    bool anyPartitionCalculating() const;
    bool allPartitionsInitialized() const;
    int migratedPartitionCount() const;
    bool allPartitionsFit() const;
    Bytes usedSizeOfMigratedPartitions() const;
    Bytes freeSpace() const;

    // Gives the extended container the space of its marked logical children, once, when a run
    // starts.
    void resizeExtendedPartition();

public slots:
    bool resizePartitionsToFitDrive();

signals:
    void initialized();

private slots:
    qint64 updatePartitionOffsets();
    void updatePartitionAllowedMaxSizes();
    void partitionInitialized();

private:
    // The plannable partitions marked for migration, in id order.
    QList<MigrationDestPartition*> migratedPartitions() const;
    QList<MigrationDestPartition*> plannablePartitions() const;
    // The drive's capacity less one MiB for each of `count` partitions and one more.
    Bytes sizeLessReserve(int count) const;

    // Set while the layout itself moves or resizes partitions, so that their change signals don't
    // start the same work over again for each one.
    bool m_holdUpdates = false;
    qint64 m_lastEnd = 0;
};

} // namespace Velmora::System
