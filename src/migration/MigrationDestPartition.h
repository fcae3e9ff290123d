#pragma once

#include "system/Partition.h"

namespace Velmora::Migration {
class ExtensionsFilter;
class FileSystemFilter;
} // namespace Velmora::Migration

namespace Velmora::System {

// One partition of the source as it is planned to be on the destination: whether it goes across,
// how large it may become, and the filters that decide what of it is copied.
class MigrationDestPartition : public Partition
{
    Q_OBJECT

public:
    // Everything below SizeCalculating counts as fitting.
    enum SizeStatus {
        SizeOk = 0,
        SizeNotMigrated = 1,
        SizeBelowRecommended = 2,
        SizeCalculating = 3,
        SizeBelowMinimum = 4,
        SizeDoesNotFit = 5
    };
    Q_ENUM(SizeStatus)

    explicit MigrationDestPartition(const Partition& source, QObject* parent = nullptr);

    // A partition left behind sorts after the end of any disk.
    Bytes offset() const override;
    QString toString() const override;

    bool migrate() const { return m_migrate; }
    bool isInitialized() const { return m_initialized; }
    bool isCalculating() const { return m_calculating; }
    bool filtersChanged() const { return m_filtersChanged; }
    void setFiltersChanged(bool changed) { m_filtersChanged = changed; }

    int createdId() const { return m_createdId; }
    void setCreatedId(int createdId) { m_createdId = createdId; }

    Bytes maxSize() const { return m_maxSize; }
    Bytes originalSize() const { return m_originalSize; }
    void setMaxSize(const Bytes& value);
    Bytes allowedMinSize() const;
    Bytes minimumSize() const;
    Bytes recommendedSize() const;
    SizeStatus sizeStatus() const;
    bool fits() const { return sizeStatus() < SizeCalculating; }

    int calculationProgress() const { return m_calculationProgress; }
    void setCalculationProgress(int progress);

    Velmora::Migration::ExtensionsFilter* extensionsFilter();
    Velmora::Migration::FileSystemFilter* fileSystemFilter();

    void markInitialized();

    // Neither unused space nor an extended container: a partition the layout places and sizes.
    bool isPlannable() const { return type() != UnusedSpace && !isExtended(); }

public slots:
    void setMigrate(bool migrate);
    void calculateFilteredFilesSize();
    void calculatingFilterFilesSizeFinished();

signals:
    void migrateChanged(bool migrate);
    void sizeLimitationsChanged();
    void requestFilteredFilesSize(int partitionId);
    void initialized();

private:
    bool m_initialized = false;
    bool m_migrate = true;
    bool m_filtersChanged = false;
    Velmora::Migration::ExtensionsFilter* m_extensionsFilter = nullptr;
    Velmora::Migration::FileSystemFilter* m_fileSystemFilter = nullptr;
    Bytes m_maxSize;
    Bytes m_originalSize;
    int m_createdId = -1;
    int m_calculationProgress = 0;
    bool m_calculating = false;
};

} // namespace Velmora::System
