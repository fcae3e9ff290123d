#include "migration/Migration.h"

#include "logger/Logger.h"
#include "migration/FileSystemFilter.h"
#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "system/Drive.h"
#include "system/Partition.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "system/SystemManager.h"

namespace Velmora::Migration {

using System::Bytes;
using System::Drive;
using System::MigrationDestDrive;
using System::MigrationDestPartition;
using System::Partition;

Migration::Migration(System::SystemManager* systemManager, System::System* system, QObject* parent)
    : QObject(parent)
    , m_finishedSteps({Canceled, Failed, Finished})
    , m_systemManager(systemManager)
    , m_system(system)
    , m_minimumDriveSize(1.0, Bytes::GB)
{
    connect(m_system, &System::System::driveAdded, this, &Migration::updateDriveList);
    connect(m_system, &System::System::driveRemoved, this, &Migration::updateDriveList);
}

void Migration::setMigrationStep(MigrationStep step)
{
    Logger::debug(QString(), QStringLiteral("Change migration step: %1 -> %2")
                                 .arg(migrationStepName(m_migrationStep), migrationStepName(step)));
    // A run that has ended stays ended until it is reset; cancelling relies on this refusal.
    if (step != Idle && m_finishedSteps.contains(m_migrationStep)) {
        Logger::info(QString(),
            QStringLiteral("Cannot set migration step '%1' if migration has finished.").arg(migrationStepName(step)));
        return;
    }
    if (step == m_migrationStep)
        return;
    m_migrationStep = step;
    emit migrationStepChanged();
}

void Migration::setCopiedSize(const Bytes& size)
{
    m_copiedSize = size;
    emit progressChanged();
}

double Migration::progress() const
{
    if (m_totalSize.value() == 0)
        return 0.0;
    const double quotient = static_cast<double>(m_copiedSize.value()) / static_cast<double>(m_totalSize.value());
    if (quotient > 1.0)
        return 1.0;
    if (!(quotient > 0.0))
        return 0.0;
    return quotient;
}

QList<Drive*> Migration::sourceDrives() const
{
    QList<Drive*> drives;
    for (int id : m_system->driveIds())
        drives.append(m_system->drive(id));
    return drives;
}

QList<Drive*> Migration::destinationDrives() const
{
    QList<Drive*> drives;
    for (int id : m_system->driveIds()) {
        Drive* drive = m_system->drive(id);
        // The drive the system runs from is never offered as a target.
        if (System::SupportedDrivesManager::isSupportedDrive(*drive) && !drive->hasOperatingSystem())
            drives.append(drive);
    }
    return drives;
}

void Migration::reportFaultedFiles(const QStringList& faultedFiles, const QStringList& faultedDirectories)
{
    emit detectedFaultedFilesOrDirectories(faultedFiles, faultedDirectories);
}

void Migration::stopFilteredSizeRequests()
{
    emit stopRequestFilteredFilesSize();
}

void Migration::setSourceDriveId(int driveId)
{
    Drive* drive = m_system->drive(driveId);
    m_sourceDrive = drive;
    if (drive)
        rebuildPlan();
    emit sourceDriveChanged();
}

void Migration::setDestDriveId(int driveId)
{
    Drive* drive = m_system->drive(driveId);
    if (drive) {
        // A former plan stays behind as an idle child; only "no drive" or a reset deletes one.
        m_destinationDrive = new MigrationDestDrive(*drive, this);
        rebuildPlan();
    } else {
        delete m_destinationDrive.data();
        m_destinationDrive = nullptr;
    }
    emit destinationDriveChanged();
}

void Migration::rebuildPlan()
{
    Drive* source = m_sourceDrive.data();
    MigrationDestDrive* destination = m_destinationDrive.data();
    if (!source || !destination)
        return;

    destination->setGpt(source->isGpt());
    QList<int> ids = destination->partitions().keys();
    while (!ids.isEmpty()) {
        destination->removePartition(ids.first());
        ids = destination->partitions().keys();
    }

    for (int id : source->partitions().keys()) {
        if (id < 0)
            continue;
        auto* planned = new MigrationDestPartition(*source->partition(id));
        // Only a partition with a letter has files to browse and filter.
        if (!planned->letter().isEmpty()) {
            connect(planned->fileSystemFilter(), &FileSystemFilter::requestFileSystemData, this,
                &Migration::requestFileSystemData);
            connect(planned, &MigrationDestPartition::requestFilteredFilesSize, this,
                &Migration::requestFilteredFilesSize);
        }
        destination->addPartition(planned);
        emit requestSystemPaths(source->id(), id);
    }
    destination->resizePartitionsToFitDrive();
}

void Migration::updateDriveList()
{
    if (m_sourceDrive && !m_system->drive(m_sourceDrive->id()))
        setSourceDriveId(-1);
    if (m_destinationDrive && !m_system->drive(m_destinationDrive->id()))
        setDestDriveId(-1);
    emit driveListChanged();
}

void Migration::startMigration()
{
    if (m_migrationStep != Idle) {
        Logger::error(QString(),
            QStringLiteral("Trying to start migration in incorrect state (%1).").arg(migrationStepName(m_migrationStep)));
        emit migrationFailed(tr("INVALID STATE"));
        return;
    }
    // Without a destination the controller finds nothing to do and finishes at once.
    if (m_destinationDrive) {
        m_destinationDrive->resizeExtendedPartition();
        m_totalSize = m_destinationDrive->usedSizeOfMigratedPartitions();
    } else {
        m_totalSize = Bytes(0);
    }
    m_copiedSize = Bytes(0);
    emit start();
}

void Migration::cancelMigration()
{
    if (m_migrationStep == Canceled) {
        Logger::warning(QString(), QStringLiteral("Migration is already in canceled state"));
        return;
    }
    emit cancel();
}

void Migration::resetToDefaults()
{
    m_migrationStep = Idle;
    delete m_destinationDrive.data();
    m_destinationDrive = nullptr;
    m_sourceDrive = nullptr;
    m_copiedSize = Bytes(0);
    m_totalSize = Bytes(0);
}

} // namespace Velmora::Migration
