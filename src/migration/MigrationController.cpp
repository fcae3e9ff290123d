#include "migration/MigrationController.h"

#include "logger/Logger.h"
#include "migration/ExtensionsFilter.h"
#include "migration/FileSystemFilter.h"
#include "migration/MessageCoding.h"
#include "migration/Migration.h"
#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "system/Drive.h"
#include "system/SystemManager.h"

#include "Migration.pb.h"

namespace Velmora::Migration {

using System::Bytes;
using System::MigrationDestDrive;
using System::MigrationDestPartition;
using Velmora::Message::Message;
namespace pb = Velmora::Message;

namespace {

constexpr int CodeSuccess = 0;
constexpr int CodeProgress = 1;
constexpr int CodeCanceled = 2;

} // namespace

MigrationController::MigrationController(System::SystemManager* systemManager, System::System* system, QObject* parent)
    : Handler(parent)
    , m_systemManager(systemManager)
    , m_system(system)
    , m_watchdog(this)
{
    setName(QString::fromLatin1(metaObject()->className()));
    setMessageTypes({Message::CleanDisk, Message::FileCopyResponse, Message::FileList, Message::MigrationBootability,
        Message::PartitionCreate, Message::PartitionFormat, Message::PartitionRemove,
        Message::MigrationFilterTypeResponse, Message::MigrationFilterSystemPaths});
    m_watchdog.setSingleShot(true);
    // A coarse timer may report and fire up to 5 % off, which would blur what a restart did.
    m_watchdog.setTimerType(Qt::PreciseTimer);
    m_watchdog.setInterval(DefaultWatchdogTimeout);
    connect(&m_watchdog, &QTimer::timeout, this, &MigrationController::onWatchdogTimeout);
}

void MigrationController::clientConnected()
{
}

Migration* MigrationController::migration()
{
    if (m_migration)
        return m_migration;
    m_migration = new Migration(m_systemManager, m_system, this);
    connect(m_migration, &Migration::requestFileSystemData, this, &MigrationController::requestFileList);
    connect(m_migration, &Migration::requestFilteredFilesSize, this, &MigrationController::onRequestFilteredPartitionSize);
    connect(m_migration, &Migration::stopRequestFilteredFilesSize, this, &MigrationController::stopRequestFilteredFilesSize);
    connect(m_migration, &Migration::start, this, &MigrationController::startMigration);
    connect(m_migration, &Migration::cancel, this, &MigrationController::cancelMigration);
    connect(m_migration, &Migration::sourceDriveChanged, this, &MigrationController::stopRequestFilteredFilesSize);
    connect(m_migration, &Migration::destinationDriveChanged, this, &MigrationController::stopRequestFilteredFilesSize);
    connect(m_migration, &Migration::requestSystemPaths, this, &MigrationController::onRequestFilterSystemPath);
    connect(this, &MigrationController::migrationFailed, m_migration, &Migration::migrationFailed);
    connect(this, &MigrationController::migrationFinished, m_migration, &Migration::migrationFinished);
    return m_migration;
}

void MigrationController::setWatchdogTimeout(int milliseconds)
{
    m_watchdog.setInterval(milliseconds);
    Logger::debug(QString(), QStringLiteral("Migration watchdog timeout changed to: %1").arg(milliseconds));
}

MigrationDestDrive* MigrationController::destination() const
{
    return m_migration ? m_migration->destinationDrive() : nullptr;
}

int MigrationController::sourceDriveId() const
{
    return m_migration && m_migration->sourceDrive() ? m_migration->sourceDrive()->id() : -1;
}

void MigrationController::handleMessage(Message::MessageType type, QByteArray payload)
{
    switch (type) {
    case Message::FileList: onFileList(payload); break;
    case Message::MigrationFilterTypeResponse: onFilteredSize(payload); break;
    case Message::MigrationFilterSystemPaths: onSystemPaths(payload); break;
    case Message::PartitionCreate: onPartitionCreated(payload); break;
    case Message::PartitionFormat: onPartitionFormatted(payload); break;
    case Message::CleanDisk: onDiskCleaned(payload); break;
    case Message::FileCopyResponse: onFileCopyReport(payload); break;
    case Message::MigrationBootability: onBootabilityFixed(payload); break;
    default:
        Logger::error(QString(), QStringLiteral("Unhandled message type: %1.").arg(Message::typeName(type)));
        break;
    }
    // Any word from the service is a sign of life.
    if (m_watchdog.isActive())
        m_watchdog.start();
}

void MigrationController::startMigration()
{
    Logger::warning(QString(), QStringLiteral("Migration controller ordered to start new migration process"));
    m_copiedSize = Bytes(0);
    m_cancelRequested = false;
    m_partitionCreateQueue.clear();
    m_partitionFormatQueue.clear();
    m_fileCopyQueue.clear();

    Logger::debug(QString(), QStringLiteral("Populating partition create task queue..."));
    if (MigrationDestDrive* drive = destination()) {
        for (int id : drive->partitions().keys()) {
            MigrationDestPartition* partition = drive->migrationPartition(id);
            if (partition && partition->migrate()) {
                m_partitionCreateQueue.append(id);
                Logger::debug(QString(), QStringLiteral("Partition added to create queue %1").arg(id));
            }
        }
    }
    if (m_partitionCreateQueue.isEmpty()) {
        Logger::warning(QString(), QStringLiteral("There are no partitions in source disk that are marked for migartion"));
        changeStep(Finished);
        return;
    }
    changeStep(InitializingDestinationDisk);
    m_watchdog.start();
    Logger::warning(QString(), QStringLiteral("Migration has been started"));
}

void MigrationController::cancelMigration()
{
    Logger::warning(QString(), QStringLiteral("Migration controller ordered to cancel active migration process"));
    changeStep(Canceled);
}

void MigrationController::changeStep(MigrationStep step)
{
    Logger::info(QString(), QStringLiteral("Migration step: %1").arg(migrationStepName(step)));
    Migration* model = migration();
    const MigrationStep previousStep = model->migrationStep();
    model->setMigrationStep(step);
    // A finished run refuses every further step; what counts is the step the model now holds.
    const MigrationStep current = model->migrationStep();
    const bool needsDrive = current >= InitializingDestinationDisk && current <= FixingBootability;
    if (needsDrive && !destination()) {
        // The plan was reset under a running task; the watchdog ends the run.
        Logger::error(QString(), QStringLiteral("Migration destination drive is gone, step: %1").arg(migrationStepName(current)));
        return;
    }
    switch (current) {
    case InitializingDestinationDisk: sendCleanDisk(); break;
    case CreatingPartitions: sendCreatePartition(); break;
    case FormattingPartitions: sendFormatPartition(); break;
    case CopyingFiles: sendCopyFiles(); break;
    case FixingBootability: sendBootability(); break;
    case Finished:
        m_watchdog.stop();
        Logger::warning(QString(), QStringLiteral("Migration has finished"));
        emit migrationFinished();
        rereadSystem();
        break;
    case Failed:
        m_watchdog.stop();
        Logger::error(QString(), QStringLiteral("Migration process failed"));
        rereadSystem();
        break;
    case Canceled: onCanceled(previousStep); break;
    default:
        Logger::warning(QString(), QStringLiteral("Unhandled migration step: %1").arg(migrationStepName(current)));
        break;
    }
}

void MigrationController::fail(const QString& text)
{
    // The step goes first, so that whoever shows the text already sees the run as ended.
    changeStep(Failed);
    emit migrationFailed(text);
}

void MigrationController::rereadSystem()
{
    if (m_systemManager)
        m_systemManager->sendSystemInfoRequest();
}

void MigrationController::onCanceled(MigrationStep previousStep)
{
    Logger::error(QString(),
        QStringLiteral("Migration canceled while executing step: %1").arg(migrationStepName(previousStep)));
    if (m_cancelRequested) {
        m_watchdog.stop();
        m_cancelRequested = false;
        Logger::warning(QString(), QStringLiteral("Migration canceled confirmation received, emiting notification"));
        emit migrationFailed(tr("MIGRATION WAS CANCELED"));
        rereadSystem();
        return;
    }
    if (previousStep == CopyingFiles) {
        Logger::warning(QString(), QStringLiteral("Sending file copy cancel request"));
        m_cancelRequested = true;
        emit sendMessage(Message::FileCopyRequestCancel);
        return;
    }
    // Creating or formatting a partition can't be stopped halfway; its answer ends the run.
    Logger::warning(QString(), QStringLiteral("Waiting for current operation to complete"));
    m_cancelRequested = true;
}

void MigrationController::sendCleanDisk()
{
    MigrationDestDrive* drive = destination();
    pb::CleanDisk message;
    message.set_driveid(static_cast<quint32>(drive->id()));
    message.set_partitionstyle(drive->isGpt() ? pb::CleanDisk::GPT : pb::CleanDisk::MBR);
    Logger::info(QString(), QStringLiteral("Sending clean disk message: Disk id: %1, type: %2 [%3]")
                                .arg(drive->id())
                                .arg(drive->isGpt() ? QStringLiteral("GPT") : QStringLiteral("MBR"))
                                .arg(static_cast<int>(message.partitionstyle())));
    emit sendMessage(Message::CleanDisk, toPayload(message));
}

void MigrationController::sendCreatePartition()
{
    MigrationDestDrive* drive = destination();
    const int id = m_partitionCreateQueue.takeFirst();
    MigrationDestPartition* partition = drive->migrationPartition(id);
    Logger::debug(QString(), QStringLiteral("Requesting service to create new partition, remaining tasks: %1")
                                 .arg(m_partitionCreateQueue.size()));
    if (!partition) {
        Logger::error(QString(), QStringLiteral("Fatal error: Partition create message referenced unknown partition: %1").arg(id));
        return;
    }
    pb::PartitionCreate message;
    message.set_driveid(static_cast<quint32>(drive->id()));
    pb::PartitionInfo* info = message.mutable_partition();
    info->set_id(static_cast<quint32>(partition->id()));
    info->set_offset(static_cast<quint64>(partition->offset().value()));
    info->set_size(static_cast<quint64>(partition->size().value()));
    info->set_type(static_cast<pb::PartitionInfo::PartitionType>(partition->type()));
    info->set_gpttype(toUtf8(partition->gptType()));
    info->set_mbrtype(partition->mbrType());
    Logger::info(QString(), QStringLiteral("Send create partition message. Patition:\n%1").arg(partition->toString()));
    emit sendMessage(Message::PartitionCreate, toPayload(message));
}

void MigrationController::sendFormatPartition()
{
    MigrationDestDrive* drive = destination();
    const int createdId = m_partitionFormatQueue.takeFirst();
    MigrationDestPartition* partition = drive->partitionByCreatedId(createdId);
    Logger::debug(QString(), QStringLiteral("Requesting service to format partition, remaining tasks: %1")
                                 .arg(m_partitionFormatQueue.size()));
    if (!partition) {
        Logger::error(QString(),
            QStringLiteral("Fatal error: Partition format message referenced unknown partition: %1").arg(createdId));
        return;
    }
    pb::PartitionFormat message;
    message.set_driveid(static_cast<quint32>(drive->id()));
    message.set_formatoption(true);
    pb::PartitionInfo* info = message.mutable_partition();
    info->set_id(static_cast<quint32>(createdId));
    info->set_label(toUtf8(partition->label()));
    info->set_filesystem(toUtf8(partition->fileSystem()));
    Logger::info(QString(), QStringLiteral("Sending format partition message: Patition:\n%1").arg(partition->toString()));
    emit sendMessage(Message::PartitionFormat, toPayload(message));
}

void MigrationController::sendCopyFiles()
{
    MigrationDestDrive* drive = destination();
    const int createdId = m_fileCopyQueue.takeFirst();
    MigrationDestPartition* partition = drive->partitionByCreatedId(createdId);
    Logger::debug(QString(),
        QStringLiteral("Requesting service to copy files, remaining tasks: %1").arg(m_fileCopyQueue.size()));
    if (!partition) {
        Logger::error(QString(), QStringLiteral("Fatal error: File copy referenced unknown partition: %1").arg(createdId));
        return;
    }
    FileSystemFilter* tree = partition->fileSystemFilter();
    const QStringList systemPaths = tree->systemPaths();
    const QStringList filteredPaths = tree->systemIgnoredPaths() + tree->uncheckedPaths();
    const QStringList extensions = partition->extensionsFilter()->filteredExtensions();

    pb::FileCopyRequest message;
    message.set_sourcedriveid(static_cast<quint32>(sourceDriveId()));
    message.set_sourcepartitionid(static_cast<quint32>(partition->id()));
    message.set_destinationdriveid(static_cast<quint32>(drive->id()));
    message.set_destinationpartitionid(static_cast<quint32>(createdId));
    pb::MigrationFilter* filter = message.mutable_filter();
    appendAll(filter->mutable_paths(), filteredPaths);
    appendAll(filter->mutable_extensions(), extensions);
    appendAll(filter->mutable_systempaths(), systemPaths);
    Logger::info(QString(),
        QStringLiteral("Sending copy files partition message: [Disk %1, Partition %2] -> [Disk %3, Partition %4]\n"
                       "system paths: %5\nfiltered paths: %6\nfiltered extensions: %7")
            .arg(sourceDriveId())
            .arg(partition->id())
            .arg(drive->id())
            .arg(createdId)
            .arg(systemPaths.join(QLatin1Char(',')), filteredPaths.join(QLatin1Char(',')),
                extensions.join(QLatin1Char(','))));
    emit sendMessage(Message::FileCopyRequest, toPayload(message));
}

void MigrationController::sendBootability()
{
    MigrationDestDrive* drive = destination();
    pb::MigrationBootability message;
    message.set_driveid(static_cast<quint32>(drive->id()));
    message.set_ospartitionid(static_cast<quint32>(drive->osPartitionCreatedId()));
    message.set_bootpartitionid(static_cast<quint32>(drive->bootPartitionCreatedId()));
    Logger::info(QString(), QStringLiteral("Sending migration bootability message: (Drive: %1, Boot partition: %2, OS partition: %3)")
                                .arg(message.driveid())
                                .arg(message.bootpartitionid())
                                .arg(message.ospartitionid()));
    emit sendMessage(Message::MigrationBootability, toPayload(message));
}

void MigrationController::logQueue(const QString& heading, const QList<int>& ids) const
{
    Logger::info(QString(), heading);
    for (int id : ids)
        Logger::info(QString(), QStringLiteral(" - Partition %1").arg(id));
}

void MigrationController::onDiskCleaned(const QByteArray& payload)
{
    pb::CleanDisk message;
    if (!parsed(message, payload, "Parsing clean disk message failed."))
        return;
    Logger::debug(QString(), QStringLiteral("Clean disk message received (code %1)").arg(message.code()));
    if (message.code() != CodeSuccess) {
        Logger::error(QString(), QStringLiteral("Faild to clean disk on destination drive."));
        fail(tr("FAILED TO CLEAN DISK ON DESTINATION DRIVE."));
        return;
    }
    Logger::info(QString(), QStringLiteral("Destination disk was cleaned"));
    logQueue(QStringLiteral("Following source disk partitions will be recreated:"), m_partitionCreateQueue);
    changeStep(CreatingPartitions);
}

void MigrationController::onPartitionCreated(const QByteArray& payload)
{
    pb::PartitionCreate message;
    if (!parsed(message, payload, "Parsing file copy report message failed."))
        return;
    const int code = message.code();
    Logger::debug(QString(), QStringLiteral("Partition create message received (code %1)").arg(code));
    if (code != CodeSuccess) {
        Logger::error(QString(), QStringLiteral("Faild to create partition on destination drive (%1).").arg(code));
        fail(tr("FAILED TO CREATE PARTITION ON DESTINATION DRIVE (%1).").arg(code));
        return;
    }
    const int partitionId = static_cast<int>(message.partition().id());
    const int createdId = static_cast<int>(message.newpartitionid());
    Logger::info(QString(), QStringLiteral("Partition create task was finished (Disk: %1, Partition: %2, New partitiion: %3)")
                                .arg(message.driveid())
                                .arg(partitionId)
                                .arg(createdId));
    MigrationDestDrive* drive = destination();
    MigrationDestPartition* partition = drive ? drive->migrationPartition(partitionId) : nullptr;
    if (!partition) {
        Logger::error(QString(),
            QStringLiteral("Fatal error: Partition create message referenced unknown partition: %1").arg(partitionId));
        return;
    }
    partition->setCreatedId(createdId);
    if (partition->fileSystem().isEmpty()) {
        Logger::warning(QString(), QStringLiteral("Partition %1 on destination disk will not be formatted as it is a raw "
                                                  "partition on source disk (i.e. MSR, Extended)")
                                       .arg(createdId));
    } else {
        m_partitionFormatQueue.append(createdId);
    }
    if (!m_partitionCreateQueue.isEmpty()) {
        changeStep(CreatingPartitions);
        return;
    }
    Logger::info(QString(), QStringLiteral("All required partitions were created on destination drive"));
    if (m_partitionFormatQueue.isEmpty()) {
        Logger::warning(QString(), QStringLiteral("There are no partitions to be formatted, finishing migration"));
        changeStep(Finished);
        return;
    }
    logQueue(QStringLiteral("Following destination disk partitions will be now formatted:"), m_partitionFormatQueue);
    changeStep(FormattingPartitions);
}

void MigrationController::onPartitionFormatted(const QByteArray& payload)
{
    pb::PartitionFormat message;
    if (!parsed(message, payload, "Parsing file copy report message failed."))
        return;
    const int code = message.code();
    Logger::debug(QString(), QStringLiteral("Partition format message received (code %1)").arg(code));
    if (code != CodeSuccess) {
        Logger::error(QString(), QStringLiteral("Faild to format partition on destination drive (%1).").arg(code));
        fail(tr("FAILED TO FORMAT PARTITION ON DESTINATION DRIVE (%1).").arg(code));
        return;
    }
    const int createdId = static_cast<int>(message.partition().id());
    Logger::info(QString(),
        QStringLiteral("Partition format task was finished (Disk: %1, Partition: %2)").arg(message.driveid()).arg(createdId));
    MigrationDestDrive* drive = destination();
    MigrationDestPartition* partition = drive ? drive->partitionByCreatedId(createdId) : nullptr;
    if (!partition) {
        Logger::error(QString(),
            QStringLiteral("Fatal error: Partition format message referenced unknown partition: %1").arg(createdId));
        return;
    }
    if (partition->isEfiSystem()) {
        Logger::warning(QString(), QStringLiteral("Partition %1 is BOOT only and its content will not be copied").arg(createdId));
    } else if (partition->isMicrosoftReserved()) {
        Logger::warning(QString(),
            QStringLiteral("Partition %1 is Microsoft Reserved and its content will not be copied").arg(createdId));
    } else {
        m_fileCopyQueue.append(createdId);
    }
    if (!m_partitionFormatQueue.isEmpty()) {
        changeStep(FormattingPartitions);
        return;
    }
    Logger::info(QString(), QStringLiteral("All required partitions were formatted on destination drive"));
    if (m_fileCopyQueue.isEmpty()) {
        Logger::warning(QString(), QStringLiteral("There are no partitions to be copied, finishing migration"));
        changeStep(Finished);
        return;
    }
    logQueue(QStringLiteral("Following destination disk partitions will be migrated:"), m_fileCopyQueue);
    changeStep(CopyingFiles);
}

void MigrationController::onFileCopyReport(const QByteArray& payload)
{
    pb::FileCopyReport message;
    if (!parsed(message, payload, "Parsing file copy report message failed."))
        return;
    const int code = message.code();
    Logger::debug(QString(), QStringLiteral("File copy message received (code %1)").arg(code));
    const Bytes copiedHere(static_cast<qint64>(message.copiedsize()));
    switch (code) {
    case CodeProgress:
        migration()->setCopiedSize(m_copiedSize + copiedHere);
        return;
    case CodeCanceled:
        Logger::warning(QString(), QStringLiteral("Service confirmed that file copy task is canceled"));
        changeStep(Canceled);
        return;
    case CodeSuccess: {
        Logger::info(QString(), QStringLiteral("File copy task was finished"));
        m_copiedSize += copiedHere;
        migration()->setCopiedSize(m_copiedSize);
        Logger::warning(QString(), QStringLiteral("Faulted files: %1").arg(message.faultedfiles_size()));
        const QStringList faultedFiles = toStringList(message.faultedfiles());
        Logger::warning(QString(), QStringLiteral("Faulted directories: %1").arg(message.faulteddirectories_size()));
        const QStringList faultedDirectories = toStringList(message.faulteddirectories());
        migration()->reportFaultedFiles(faultedFiles, faultedDirectories);
        if (!m_fileCopyQueue.isEmpty()) {
            changeStep(CopyingFiles);
            return;
        }
        Logger::info(QString(), QStringLiteral("All partitions content was copied to destination drive"));
        MigrationDestDrive* drive = destination();
        if (drive && drive->needsBootabilityFix()) {
            Logger::warning(QString(), QStringLiteral("Source disk contains operating system, bootability fix is required"));
            changeStep(FixingBootability);
        } else {
            changeStep(Finished);
        }
        return;
    }
    default:
        Logger::error(QString(), QStringLiteral("Faild to copy files (%1).").arg(code));
        fail(tr("FAILED TO COPY FILES (%1).").arg(code));
        return;
    }
}

void MigrationController::onBootabilityFixed(const QByteArray& payload)
{
    pb::MigrationBootability message;
    if (!parsed(message, payload, "Parsing migration bootability message failed."))
        return;
    const int code = message.code();
    Logger::debug(QString(), QStringLiteral("Bootability message received (code %1)").arg(code));
    if (code == CodeSuccess) {
        changeStep(Finished);
        return;
    }
    Logger::error(QString(), QStringLiteral("Faild to configure boot options (%1).").arg(code));
    fail(tr("FAILED TO CONFIGURE BOOT OPTIONS (%1).").arg(code));
}

void MigrationController::onWatchdogTimeout()
{
    Logger::error(QString(),
        QStringLiteral("Migration task is failed due to watchdog timeout (%1 ms)").arg(m_watchdog.interval()));
    fail(tr("SERVICE IS NOT RESPONSIVE."));
}

} // namespace Velmora::Migration
