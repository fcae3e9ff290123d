#include "migration/MigrationDestDrive.h"

#include "logger/Logger.h"
#include "migration/MigrationDestPartition.h"
#include "smart/SmartController.h"
#include "system/DriveHealthStatus.h"

#include <QMap>
#include <QMultiMap>

namespace Velmora::System {

namespace {

const Bytes OneMegabyte(1.0, Bytes::MB);

QString factorText(double factor)
{
    return QString::number(factor);
}

// Restores a flag when the scope ends, whatever way it is left.
class FlagGuard
{
public:
    explicit FlagGuard(bool& flag)
        : m_flag(flag)
        , m_saved(flag)
    {
        m_flag = true;
    }
    ~FlagGuard() { m_flag = m_saved; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;

private:
    bool& m_flag;
    bool m_saved;
};

} // namespace

MigrationDestDrive::MigrationDestDrive(const Drive& drive, QObject* parent)
    : Drive(drive.id(), drive.model(), drive.serialNumber(), drive.warranty(), drive.firmwareVersion(),
        drive.capacity(), drive.currentSataSpeed(), drive.supportedSataSpeed(), drive.isGpt(), drive.type(), parent)
{
    // The plan starts empty: the single stretch of unused space that every new drive gets would
    // only be carved up by the planned partitions.
    const QList<int> ids = partitions().keys();
    for (int id : ids)
        removePartition(id);
    // A plan has no health to follow.
    disconnect(this, &Drive::dataChanged, this, &Drive::updateDriveStatus);
    if (smartController())
        disconnect(smartController(), nullptr, this, nullptr);
    disconnect(healthStatus(), nullptr, this, nullptr);
}

void MigrationDestDrive::addPartition(MigrationDestPartition* partition)
{
    Drive::addPartition(partition);
    if (!partition->isExtended()) {
        connect(partition, &MigrationDestPartition::migrateChanged, this, &MigrationDestDrive::resizePartitionsToFitDrive);
        connect(partition, &Partition::dataChanged, this, &MigrationDestDrive::updatePartitionOffsets);
        connect(partition, &Partition::dataChanged, this, &MigrationDestDrive::updatePartitionAllowedMaxSizes);
    }
    connect(partition, &MigrationDestPartition::initialized, this, &MigrationDestDrive::partitionInitialized);
}

MigrationDestPartition* MigrationDestDrive::migrationPartition(int id) const
{
    return qobject_cast<MigrationDestPartition*>(partition(id));
}

MigrationDestPartition* MigrationDestDrive::partitionByCreatedId(int createdId) const
{
    for (Partition* p : partitions()) {
        auto* planned = qobject_cast<MigrationDestPartition*>(p);
        if (planned && planned->createdId() == createdId)
            return planned;
    }
    return nullptr;
}

int MigrationDestDrive::bootPartitionCreatedId() const
{
    int createdId = -1;
    for (Partition* p : partitions()) {
        auto* planned = qobject_cast<MigrationDestPartition*>(p);
        if (planned && planned->isBootable())
            createdId = planned->createdId();
    }
    return createdId;
}

int MigrationDestDrive::osPartitionCreatedId() const
{
    int createdId = -1;
    for (Partition* p : partitions()) {
        auto* planned = qobject_cast<MigrationDestPartition*>(p);
        if (planned && planned->isOs())
            createdId = planned->createdId();
    }
    return createdId;
}

bool MigrationDestDrive::anyPartitionCalculating() const
{
    for (Partition* p : partitions()) {
        auto* planned = qobject_cast<MigrationDestPartition*>(p);
        if (planned && planned->isCalculating())
            return true;
    }
    return false;
}

bool MigrationDestDrive::allPartitionsInitialized() const
{
    for (Partition* p : partitions()) {
        if (p->type() == Partition::UnusedSpace)
            continue;
        auto* planned = qobject_cast<MigrationDestPartition*>(p);
        if (!planned || !planned->isInitialized())
            return false;
    }
    return true;
}

QList<MigrationDestPartition*> MigrationDestDrive::plannablePartitions() const
{
    QList<MigrationDestPartition*> result;
    result.reserve(partitionCount());
    for (Partition* p : partitions()) {
        auto* planned = qobject_cast<MigrationDestPartition*>(p);
        if (planned && planned->isPlannable())
            result.append(planned);
    }
    return result;
}

QList<MigrationDestPartition*> MigrationDestDrive::migratedPartitions() const
{
    QList<MigrationDestPartition*> result;
    result.reserve(partitionCount());
    for (Partition* p : partitions()) {
        auto* planned = qobject_cast<MigrationDestPartition*>(p);
        if (planned && planned->isPlannable() && planned->migrate())
            result.append(planned);
    }
    return result;
}

int MigrationDestDrive::migratedPartitionCount() const
{
    return migratedPartitions().size();
}

bool MigrationDestDrive::allPartitionsFit() const
{
    for (MigrationDestPartition* p : plannablePartitions()) {
        if (!p->fits())
            return false;
    }
    return migratedPartitionCount() != 0;
}

Bytes MigrationDestDrive::usedSizeOfMigratedPartitions() const
{
    Bytes sum;
    for (MigrationDestPartition* p : migratedPartitions())
        sum += p->used();
    return sum;
}

Bytes MigrationDestDrive::sizeLessReserve(int count) const
{
    return capacity() - Bytes(static_cast<double>(count + 1), Bytes::MB);
}

Bytes MigrationDestDrive::freeSpace() const
{
    const QList<MigrationDestPartition*> migrated = migratedPartitions();
    Bytes sum;
    for (MigrationDestPartition* p : migrated)
        sum += p->size();
    return sizeLessReserve(migrated.size()) - sum;
}

qint64 MigrationDestDrive::updatePartitionOffsets()
{
    if (m_holdUpdates)
        return m_lastEnd;
    FlagGuard hold(m_holdUpdates);
    Bytes offset = OneMegabyte;
    Bytes end = OneMegabyte;
    for (MigrationDestPartition* p : migratedPartitions()) {
        p->setOffset(offset);
        offset += p->size();
        end += p->size();
    }
    m_lastEnd = end.value();
    return m_lastEnd;
}

void MigrationDestDrive::updatePartitionAllowedMaxSizes()
{
    if (m_holdUpdates)
        return;
    const Bytes free = freeSpace();
    for (MigrationDestPartition* p : plannablePartitions())
        p->setMaxSize(p->size() + free);
}

void MigrationDestDrive::partitionInitialized()
{
    if (!allPartitionsInitialized())
        return;
    Logger::info(QString(), QStringLiteral("Migration destination drive is now initialized"));
    emit initialized();
}

bool MigrationDestDrive::resizePartitionsToFitDrive()
{
    Logger::debug(QString(), QStringLiteral("Starting migration destination drive partition resizing..."));
    updatePartitionAllowedMaxSizes();

    const QList<MigrationDestPartition*> migrated = migratedPartitions();
    Bytes unallocated;
    for (MigrationDestPartition* p : migrated)
        unallocated += p->originalSize();
    const int count = migrated.size();

    Bytes available = sizeLessReserve(count);
    Logger::debug(QString(), QStringLiteral("Available drive size: %1").arg(available.toString()));
    Logger::debug(QString(), QStringLiteral("Unallocated partition space: %1").arg(unallocated.toString()));

    QMap<int, Bytes> newSizes;
    for (MigrationDestPartition* p : migrated) {
        if (!p->isSystemRequired())
            continue;
        const Bytes kept = p->originalSize() < available ? p->originalSize() : available;
        const Bytes newSize = Bytes::roundedUp(kept, Bytes::MB);
        newSizes.insert(p->id(), newSize);
        unallocated -= p->originalSize();
        available -= newSize;
    }
    Logger::debug(QString(),
        QStringLiteral("Unallocated partition space (after system required): %1").arg(unallocated.toString()));
    Logger::debug(QString(), QStringLiteral("Available drive size (after system required): %1").arg(available.toString()));

    // Scales the originals of one class of partitions into what is left, never below a
    // partition's minimum and never beyond what is left.
    const auto share = [&](bool osOnly, const char* factorLine, const char* partitionLine) {
        const double factor = unallocated.value() == 0
            ? 0.0
            : static_cast<double>(available.value()) / static_cast<double>(unallocated.value());
        Logger::debug(QString(), QString::fromLatin1(factorLine).arg(factorText(factor)));
        for (MigrationDestPartition* p : migrated) {
            if ((osOnly && !p->isOs()) || newSizes.contains(p->id()))
                continue;
            const Bytes scaled = p->originalSize() * factor;
            const Bytes minimum = p->minimumSize();
            const Bytes candidate = minimum < scaled ? scaled : minimum;
            const Bytes bounded = candidate < available ? candidate : available;
            const Bytes newSize = Bytes::roundedUp(bounded, Bytes::MB);
            newSizes.insert(p->id(), newSize);
            unallocated -= p->originalSize();
            available -= newSize;
            if (Logger::isEnabled(Logger::Debug)) {
                Logger::debug(QString(), QString::fromLatin1(partitionLine)
                                             .arg(p->id())
                                             .arg(newSize.toString(), p->originalSize().toString()));
            }
        }
    };

    share(true, "OS scale factor: %1", "OS partition (ID: %1): new size %2 [original: %3]");
    Logger::debug(QString(), QStringLiteral("Unallocated partition space (after OS): %1").arg(unallocated.toString()));
    Logger::debug(QString(), QStringLiteral("Available drive size (after OS): %1").arg(available.toString()));

    share(false, "DATA scale factor: %1", "Data partition (ID: %1): new size %2 [original: %3]");
    Logger::debug(QString(), QStringLiteral("Unallocated partition space (after Data): %1").arg(unallocated.toString()));
    Logger::debug(QString(), QStringLiteral("Available drive size (after Data): %1").arg(available.toString()));

    {
        // Offsets and limits follow once all sizes are set, not after each of them.
        FlagGuard hold(m_holdUpdates);
        for (MigrationDestPartition* p : migrated) {
            if (newSizes.contains(p->id()))
                p->setSize(newSizes.value(p->id()));
            if (Logger::isEnabled(Logger::Debug)) {
                Logger::debug(QString(),
                    QStringLiteral("Updated partition size (ID: %1): %2").arg(p->id()).arg(p->size().toString()));
            }
        }
    }
    updatePartitionAllowedMaxSizes();

    const Bytes end(updatePartitionOffsets());
    Logger::debug(QString(), QStringLiteral("Unused drive space: %1").arg((capacity() - end).toString()));

    bool result = true;
    if (end > capacity() || !allPartitionsFit()) {
        result = false;
        if (count == 0)
            Logger::error(QString(), QStringLiteral("No partitions marked for migration"));
        else
            Logger::error(QString(), QStringLiteral("Partitions will not fit into destination drive"));
    }
    Logger::debug(QString(), QStringLiteral("...migration destination drive partition resizing finished."));
    return result;
}

void MigrationDestDrive::resizeExtendedPartition()
{
    QMultiMap<qint64, MigrationDestPartition*> logical;
    Bytes sum;
    MigrationDestPartition* extended = nullptr;
    for (Partition* p : partitions()) {
        auto* planned = qobject_cast<MigrationDestPartition*>(p);
        if (!planned)
            continue;
        if (planned->isLogical() && planned->migrate()) {
            logical.insert(planned->offset().value(), planned);
            sum += planned->size();
        }
        if (planned->isExtended() && !planned->isLogical())
            extended = planned;
    }
    if (!extended)
        return;

    Logger::warning(QString(), QStringLiteral("Destination drive contains extended partition"));
    const bool wasBlocked = extended->blockSignals(true);
    if (logical.isEmpty()) {
        extended->setMigrate(false);
        Logger::warning(QString(), QStringLiteral("Extended partition will not be migrated as no logical children selected"));
    } else {
        Logger::debug(QString(), QStringLiteral("Destination drive contains %1 logical partitions").arg(logical.size()));
        extended->setSize(sum);
        extended->setOffset(logical.first()->offset());
        // Each logical partition is preceded by its own small partition table inside the container.
        const Bytes allowance =
            Bytes::roundedUp(Bytes(qint64(64) * 1024 * logical.size()), Bytes::MB);
        MigrationDestPartition* last = logical.last();
        const bool lastWasBlocked = last->blockSignals(true);
        last->setSize(last->size() - allowance);
        last->blockSignals(lastWasBlocked);
        Logger::warning(QString(), QStringLiteral("Extended partiton was resized to %1, offset %2")
                                       .arg(extended->size().toString(Bytes::MB), extended->offset().toString(Bytes::MB)));
    }
    extended->blockSignals(wasBlocked);
}

} // namespace Velmora::System
