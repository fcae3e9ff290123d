#include "MigrationEngines.h"

#include "boot/BootStyle.h"
#include "copy/FileCopy.h"
#include "boot/Bootability.h"
#include "common/UdevQueue.h"
#include "devices/DriveRegistry.h"
#include "migration/CommandRunner.h"
#include "migration/DiskEngines.h"
#include "server/EngineHandler.h"
#include "server/FixedCall.h"
#include "server/RequestRouter.h"

#include "message/Message.h"

#include "Migration.pb.h"

namespace Velmora::Daemon {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

// The copy and its cancellation, which stops it and is not answered itself: the copy answers
// that it was cancelled.
const QString CopyTask = QStringLiteral("copy");

class CopyCancellation : public RequestHandler
{
public:
    QList<quint32> requestTypes() const override { return {Message::FileCopyRequestCancel}; }
    std::unique_ptr<Call> decode(quint32, const QByteArray&) const override
    {
        return std::make_unique<FixedCall>(Answer(), CopyTask, true);
    }
};

Copy::CopyVolume volumeOf(const std::optional<Devices::PartitionRecord>& partition)
{
    if (!partition)
        return {};
    return {partition->devicePath.toStdString(), partition->fileSystem.toStdString(), partition->mountPoint.toStdString()};
}

} // namespace

MigrationEngines::MigrationEngines(Devices::DriveRegistry& drives, QString workFolder)
    : m_drives(drives)
    , m_workFolder(std::move(workFolder))
    , m_tools(std::make_unique<Migration::ProcessRunner>())
    // A disk is written only if a scan made at that moment still lists it under the id asked for.
    , m_disks(std::make_unique<Migration::DiskEngines>(*m_tools, [this](quint32 driveId) {
        m_drives.rescan();
        return m_drives.devicePath(driveId);
    }))
{
}

MigrationEngines::~MigrationEngines() = default;

void MigrationEngines::plugInto(RequestRouter& router)
{
    // The wizard waits for one answer to each and takes any code but 0 for a failure, so there is
    // no interim answer.
    router.addHandler(std::make_unique<EngineHandler<Wire::CleanDisk, Wire::CleanDisk>>(
        Message::CleanDisk, Message::CleanDisk,
        [this](const Wire::CleanDisk& request, const PeerCredentials&, const std::atomic_bool& stop, const auto&) {
            // A new migration: what the last one copied says nothing of this one.
            {
                const std::lock_guard<std::mutex> lock(m_pairsMutex);
                m_pairs.clear();
            }
            const qint64 source = m_source;
            return m_disks->cleanDisk(request, source < 0 ? QString() : m_drives.devicePath(quint32(source)), stop);
        },
        QStringLiteral("clean disk")));
    router.addHandler(std::make_unique<EngineHandler<Wire::PartitionCreate, Wire::PartitionCreate>>(
        Message::PartitionCreate, Message::PartitionCreate,
        [this](const Wire::PartitionCreate& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto&) { return m_disks->createPartition(request, stop); },
        QStringLiteral("create partition")));
    router.addHandler(std::make_unique<EngineHandler<Wire::PartitionFormat, Wire::PartitionFormat>>(
        Message::PartitionFormat, Message::PartitionFormat,
        [this](const Wire::PartitionFormat& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto&) { return m_disks->formatPartition(request, stop); },
        QStringLiteral("format partition")));

    router.addHandler(std::make_unique<EngineHandler<Wire::FileCopyRequest, Wire::FileCopyReport>>(
        Message::FileCopyRequest, Message::FileCopyResponse,
        [this](const Wire::FileCopyRequest& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto& progress) {
            // The destination's partitions came after the last scan; their records, after udev.
            waitForUdevQueue(stop);
            m_drives.rescan();
            Copy::FileCopyJob job;
            job.source = volumeOf(m_drives.partition(request.sourcedriveid(), request.sourcepartitionid()));
            job.destination = volumeOf(m_drives.partition(request.destinationdriveid(), request.destinationpartitionid()));
            job.filter = request.filter();
            const Wire::FileCopyReport report = Copy::FileCopy(m_workFolder.toStdString()).run(job, stop, progress);
            if (report.code() == Wire::SUCCESS)
                addCopiedPair(QString::fromStdString(job.source.device), QString::fromStdString(job.destination.device));
            return report;
        },
        CopyTask));
    router.addHandler(std::make_unique<CopyCancellation>());

    router.addHandler(std::make_unique<EngineHandler<Wire::MigrationBootability, Wire::MigrationBootability>>(
        Message::MigrationBootability, Message::MigrationBootability,
        [this](const Wire::MigrationBootability& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto&) {
            // The new partitions came after the last scan; their records, after udev.
            waitForUdevQueue(stop);
            m_drives.rescan();
            Boot::BootabilityTarget target;
            target.destinationDisk = m_drives.devicePath(request.driveid());
            const auto os = m_drives.partition(request.driveid(), request.ospartitionid());
            const auto boot = m_drives.partition(request.driveid(), request.bootpartitionid());
            target.osPartition = os ? os->devicePath : QString();
            target.bootPartition = boot ? boot->devicePath : QString();
            target.pairs = copiedPairs();
            target.machineIsUefi = Boot::machineStartedByUefi();
            bool sourceIsRunning = false;
            bool sourceHasEfi = false;
            const qint64 sourceId = m_source;
            if (const auto source = sourceId < 0 ? std::nullopt : m_drives.drive(quint32(sourceId))) {
                for (const auto& partition : source->partitions) {
                    sourceIsRunning = sourceIsRunning || partition.mountPoint == QLatin1String("/");
                    sourceHasEfi = sourceHasEfi || Boot::isEfiSystemPartition(partition.gptType, partition.mbrType);
                }
            }
            target.style = Boot::sourceBootStyle(sourceIsRunning, target.machineIsUefi, sourceHasEfi);
            target.workFolder = m_workFolder;
            return Boot::Bootability(target).run(request, stop);
        },
        QStringLiteral("bootability")));
}

void MigrationEngines::addCopiedPair(const QString& sourcePartition, const QString& destinationPartition)
{
    const std::lock_guard<std::mutex> lock(m_pairsMutex);
    m_pairs.append({sourcePartition, destinationPartition});
}

QVector<QPair<QString, QString>> MigrationEngines::copiedPairs() const
{
    const std::lock_guard<std::mutex> lock(m_pairsMutex);
    return m_pairs;
}

} // namespace Velmora::Daemon
