#include "migration/MigrationDestPartition.h"

#include "logger/Logger.h"
#include "migration/ExtensionsFilter.h"
#include "migration/FileSystemFilter.h"
#include "system/FileCategories.h"

#include <limits>

namespace Velmora::System {

namespace {
const Bytes OneMegabyte(1.0, Bytes::MB);
} // namespace

MigrationDestPartition::MigrationDestPartition(const Partition& source, QObject* parent)
    : Partition(source.id(), source.letter(), source.label(), source.size(), source.used(), source.offset(),
        source.type(), source.mbrType(), source.gptType(), source.volumeName(), source.fileSystem(),
        source.isBootable(), source.isLogical(), parent)
    , m_originalSize(source.size())
{
    m_os = source.os();
}

Bytes MigrationDestPartition::offset() const
{
    if (!m_migrate)
        return Bytes(std::numeric_limits<qint64>::max());
    return m_offset;
}

QString MigrationDestPartition::toString() const
{
    return QStringLiteral("Migration partition\n") + Partition::toString() + QStringLiteral("\nCreated Id: ")
        + QString::number(m_createdId);
}

void MigrationDestPartition::setMaxSize(const Bytes& value)
{
    Bytes limit = value;
    if (isSystemRequired())
        limit = size();
    else if (limit < allowedMinSize())
        limit = allowedMinSize();
    if (limit == m_maxSize)
        return;
    m_maxSize = limit;
    emit sizeLimitationsChanged();
}

Bytes MigrationDestPartition::allowedMinSize() const
{
    if (isSystemRequired())
        return m_originalSize;
    return Bytes(100.0, Bytes::MB);
}

Bytes MigrationDestPartition::minimumSize() const
{
    Bytes minimum;
    if (isOs()) {
        minimum = used() + Bytes(10.0, Bytes::GB);
    } else if (isSystemRequired()) {
        minimum = used();
    } else {
        minimum = used() * 1.02;
        if (allowedMinSize() > minimum)
            minimum = allowedMinSize();
    }
    return Bytes::roundedUp(minimum, Bytes::MB);
}

Bytes MigrationDestPartition::recommendedSize() const
{
    Bytes recommended;
    if (isOs()) {
        recommended = used() + Bytes(30.0, Bytes::GB);
    } else if (isSystemRequired()) {
        recommended = used();
    } else {
        recommended = used() * 1.1;
        if (allowedMinSize() > recommended)
            recommended = allowedMinSize();
    }
    return Bytes::roundedUp(recommended, Bytes::MB);
}

MigrationDestPartition::SizeStatus MigrationDestPartition::sizeStatus() const
{
    if (!m_migrate)
        return SizeNotMigrated;
    if (m_calculating)
        return SizeCalculating;
    if (isSystemRequired()) {
        // The service can't resize what the system needs; a whole MiB of difference is too much.
        const qint64 distance = qAbs(m_originalSize.value() - size().value());
        return distance >= OneMegabyte.value() ? SizeDoesNotFit : SizeOk;
    }
    if (used() > size())
        return SizeDoesNotFit;
    if (size() < allowedMinSize())
        return SizeDoesNotFit;
    if (size() < minimumSize())
        return SizeBelowMinimum;
    if (size() < recommendedSize())
        return SizeBelowRecommended;
    return SizeOk;
}

void MigrationDestPartition::setCalculationProgress(int progress)
{
    if (progress == m_calculationProgress)
        return;
    m_calculationProgress = progress;
    emit dataChanged();
}

Velmora::Migration::ExtensionsFilter* MigrationDestPartition::extensionsFilter()
{
    if (!m_extensionsFilter) {
        m_extensionsFilter = new Velmora::Migration::ExtensionsFilter(this);
        // The texts may have changed since the filter's constructor read them.
        for (int category : {FileCategory::Documents, FileCategory::Sound, FileCategory::Video, FileCategory::Pictures})
            m_extensionsFilter->setGroup(category, categoryExtensions(category));
    }
    return m_extensionsFilter;
}

Velmora::Migration::FileSystemFilter* MigrationDestPartition::fileSystemFilter()
{
    if (!m_fileSystemFilter)
        m_fileSystemFilter = new Velmora::Migration::FileSystemFilter(letter(), this);
    return m_fileSystemFilter;
}

void MigrationDestPartition::markInitialized()
{
    if (m_initialized)
        return;
    Logger::debug(QString(), QStringLiteral("Parttion initialized %1").arg(id()));
    fileSystemFilter()->requestRootData();
    m_initialized = true;
    emit initialized();
}

void MigrationDestPartition::setMigrate(bool migrate)
{
    if (migrate == m_migrate)
        return;
    m_migrate = migrate;
    emit migrateChanged(migrate);
}

void MigrationDestPartition::calculateFilteredFilesSize()
{
    m_calculating = true;
    setUsed(Bytes(0));
    emit requestFilteredFilesSize(id());
}

void MigrationDestPartition::calculatingFilterFilesSizeFinished()
{
    if (!m_calculating)
        return;
    m_calculating = false;
    m_filtersChanged = false;
    emit dataChanged();
}

} // namespace Velmora::System
