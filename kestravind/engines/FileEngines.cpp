#include "FileEngines.h"

#include "devices/DriveRegistry.h"
#include "files/DirectoryListing.h"
#include "files/FileCategoryScan.h"
#include "files/FilterSizeScan.h"
#include "files/LogCopy.h"
#include "files/SpeedTest.h"
#include "files/SystemPathsQuery.h"
#include "server/EngineHandler.h"
#include "server/FixedCall.h"
#include "server/Log.h"
#include "server/RequestRouter.h"

#include "message/Message.h"

#include "CopyLogFiles.pb.h"
#include "DiskPerformance.pb.h"
#include "FileList.pb.h"
#include "Migration.pb.h"

namespace Velmora::Daemon {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

// A request run by a function of its own: for the requests whose start, stop and report share
// one message type and so one handler.
class FunctionCall : public Call
{
public:
    using Work = std::function<void(const PeerCredentials&, const std::atomic_bool&, Reply&)>;

    FunctionCall(Work work, QString task = {})
        : m_work(std::move(work))
        , m_task(std::move(task))
    {
    }
    QString task() const override { return m_task; }
    void run(const PeerCredentials& peer, const std::atomic_bool& stop, Reply& reply) override
    {
        m_work(peer, stop, reply);
    }

private:
    const Work m_work;
    const QString m_task;
};

// Start, stop and report of file category scans and of migration filter sizes: one message type
// each, the action field tells them apart.
class ActionHandler : public RequestHandler
{
public:
    using Decoder = std::function<std::unique_ptr<Call>(const Wire::FileTypeStructureRequest&)>;

    ActionHandler(quint32 type, Decoder decoder)
        : m_type(type)
        , m_decoder(std::move(decoder))
    {
    }
    QList<quint32> requestTypes() const override { return {m_type}; }
    std::unique_ptr<Call> decode(quint32, const QByteArray& payload) const override
    {
        Wire::FileTypeStructureRequest request;
        if (!request.ParseFromArray(payload.constData(), payload.size()))
            return nullptr;
        return m_decoder(request);
    }

private:
    const quint32 m_type;
    const Decoder m_decoder;
};

void addMountPoints(const Devices::DriveRecord& drive, std::vector<std::string>& mountPoints)
{
    for (const auto& partition : drive.partitions) {
        if (!partition.mountPoint.isEmpty())
            mountPoints.push_back(partition.mountPoint.toStdString());
    }
}

// A drive is scanned by one task at a time; scans of several drives run side by side.
QString categoryTask(quint32 driveId)
{
    return QStringLiteral("categories of drive %1").arg(driveId);
}

// The wizard sizes one partition after the other, and its stop names none.
const QString FilterTask = QStringLiteral("filter sizes");

Wire::FileTypeStructure scanGone(quint32 driveId, qint32 partitionId)
{
    Wire::FileTypeStructure answer;
    answer.set_code(Wire::NOT_FOUND);
    answer.set_driveid(driveId);
    answer.set_partitionid(partitionId);
    return answer;
}

// The sizes of a partition that is there but not mounted.
Wire::FileTypeStructure wholeSizeKept(const Devices::PartitionRecord& partition, const Wire::FileTypeStructureRequest& request)
{
    // A volume nobody mounted cannot be walked: all of it goes across, so that the plan never
    // makes its new place smaller than what it may hold.
    qCInfo(serverLog, "Partition %u of drive %u is not mounted: its whole size counts as kept", partition.id, request.driveid());
    Wire::FileTypeStructure answer;
    answer.set_code(Wire::SUCCESS);
    answer.set_driveid(request.driveid());
    answer.set_partitionid(request.partitionid());
    answer.set_progress(1.0f);
    answer.set_finished(true);
    for (quint32 sum : {0u, 1u, 2u}) {
        auto* entry = answer.add_filetypes();
        entry->set_id(sum);
        entry->set_size(sum == 2 ? partition.size : 0);
    }
    return answer;
}

std::string mountPointOf(const std::optional<Devices::PartitionRecord>& partition)
{
    return partition ? partition->mountPoint.toStdString() : std::string();
}

} // namespace

FileEngines::FileEngines(Devices::DriveRegistry& drives, std::string logDirectory,
    std::function<void(quint32 driveId)> migrationSourceNamed)
    : m_drives(drives)
    , m_logDirectory(std::move(logDirectory))
    , m_migrationSourceNamed(std::move(migrationSourceNamed))
{
}

void FileEngines::plugInto(RequestRouter& router)
{
    router.addHandler(std::make_unique<ActionHandler>(Message::FileTypeStructureReq,
        [this](const Wire::FileTypeStructureRequest& request) -> std::unique_ptr<Call> {
            const quint32 driveId = request.driveid();
            switch (request.action()) {
            case Wire::FileTypeStructureRequest::Start:
                return std::make_unique<FunctionCall>(
                    [this, request](const PeerCredentials&, const std::atomic_bool& stop, Reply& reply) {
                        const auto progress = [this, &reply](const Wire::FileTypeStructure& interim) {
                            keepCategories(interim);
                            reply.send(Message::FileCat, interim);
                        };
                        const Wire::FileTypeStructure answer =
                            Files::FileCategoryScan().run(request, mountPointsOf(request.driveid()), stop, progress);
                        keepCategories(answer);
                        reply.send(Message::FileCat, answer);
                    },
                    categoryTask(driveId));
            case Wire::FileTypeStructureRequest::Stop:
                // A running scan answers that it is gone; a finished one keeps its result.
                return std::make_unique<FixedCall>(Answer(), categoryTask(driveId), true);
            default:
                return std::make_unique<FunctionCall>(
                    [this, driveId](const PeerCredentials&, const std::atomic_bool&, Reply& reply) {
                        reply.send(Message::FileCat, keptCategories(driveId).value_or(scanGone(driveId, -1)));
                    });
            }
        }));

    router.addHandler(std::make_unique<ActionHandler>(Message::MigrationFilterTypeRequest,
        [this](const Wire::FileTypeStructureRequest& request) -> std::unique_ptr<Call> {
            if (request.action() == Wire::FileTypeStructureRequest::Stop)
                return std::make_unique<FixedCall>(Answer(), FilterTask, true);
            return std::make_unique<FunctionCall>(
                [this, request](const PeerCredentials& peer, const std::atomic_bool& stop, Reply& reply) {
                    const auto partition = partitionOf(request.driveid(), request.partitionid());
                    if (partition && partition->mountPoint.isEmpty()) {
                        reply.send(Message::MigrationFilterTypeResponse, wholeSizeKept(*partition, request));
                        return;
                    }
                    const auto progress = [&reply](const Wire::FileTypeStructure& interim) {
                        reply.send(Message::MigrationFilterTypeResponse, interim);
                    };
                    const Wire::FileTypeStructure answer =
                        Files::FilterSizeScan().run(request, mountPointOf(partition), peer, stop, progress);
                    // A stopped sizing was asked to stop, or replaced by the next: nobody waits for it.
                    if (answer.code() != Wire::CANCELED)
                        reply.send(Message::MigrationFilterTypeResponse, answer);
                },
                FilterTask);
        }));

    router.addHandler(std::make_unique<EngineHandler<Wire::FileListRequest, Wire::FileList>>(
        Message::FileListRequest, Message::FileList,
        [this](const Wire::FileListRequest& request, const PeerCredentials& peer, const std::atomic_bool& stop,
            const auto&) {
            Files::DirectoryListing::Result result = Files::DirectoryListing().run(request, allMountPoints(), peer, stop);
            // The list has no code: a folder that may not be listed is an empty one to the program.
            if (result.code != Wire::SUCCESS) {
                result.list.Clear();
                result.list.set_path(request.dirpath());
            }
            return result.list;
        }));

    router.addHandler(std::make_unique<EngineHandler<Wire::MigrationFilterSystemPaths, Wire::MigrationFilterSystemPaths>>(
        Message::MigrationFilterSystemPaths, Message::MigrationFilterSystemPaths,
        [this](const Wire::MigrationFilterSystemPaths& request, const PeerCredentials& peer, const std::atomic_bool&,
            const auto&) {
            m_migrationSourceNamed(request.driveid());
            // A partition that is there but not mounted has no paths to name; the program waits
            // for this answer before it asks about the next partition.
            const auto partition = partitionOf(request.driveid(), qint32(request.partitionid()));
            if (partition && partition->mountPoint.isEmpty()) {
                Wire::MigrationFilterSystemPaths none = request;
                none.set_code(Wire::SUCCESS);
                none.clear_systempaths();
                none.clear_systemignoredpaths();
                return none;
            }
            return Files::SystemPathsQuery().run(request, mountPointOf(partition), peer);
        }));

    router.addHandler(std::make_unique<EngineHandler<Wire::DiskPerformanceRequest, Wire::DiskPerformance>>(
        Message::DiskBenchmarkRequest, Message::DiskBenchmarkResponse,
        [this](const Wire::DiskPerformanceRequest& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto&) { return Files::SpeedTest().run(request, mountPointsOf(request.driveid()), stop); },
        QStringLiteral("speed test")));

    router.addHandler(std::make_unique<EngineHandler<Wire::CopyLogFilesRequest, Wire::CopyLogFilesResponse>>(
        Message::CopyLogFilesRequest, Message::CopyLogFilesResponse,
        [this](const Wire::CopyLogFilesRequest& request, const PeerCredentials& peer, const std::atomic_bool&,
            const auto&) { return Files::LogCopy(m_logDirectory, "kestravind").run(request, peer); }));
}

std::vector<std::string> FileEngines::mountPointsOf(quint32 driveId) const
{
    std::vector<std::string> mountPoints;
    if (const auto drive = m_drives.drive(driveId))
        addMountPoints(*drive, mountPoints);
    return mountPoints;
}

std::optional<Devices::PartitionRecord> FileEngines::partitionOf(quint32 driveId, qint32 partitionId) const
{
    return partitionId < 0 ? std::nullopt : m_drives.partition(driveId, quint32(partitionId));
}

std::vector<std::string> FileEngines::allMountPoints() const
{
    std::vector<std::string> mountPoints;
    for (const auto& drive : m_drives.drives())
        addMountPoints(drive, mountPoints);
    return mountPoints;
}

void FileEngines::keepCategories(const Wire::FileTypeStructure& answer)
{
    const std::lock_guard<std::mutex> lock(m_categoriesMutex);
    if (answer.code() == Wire::NOT_FOUND)
        m_categories.remove(answer.driveid());
    else
        m_categories.insert(answer.driveid(), answer);
}

std::optional<Wire::FileTypeStructure> FileEngines::keptCategories(quint32 driveId) const
{
    const std::lock_guard<std::mutex> lock(m_categoriesMutex);
    const auto it = m_categories.constFind(driveId);
    return it == m_categories.constEnd() ? std::nullopt : std::optional<Wire::FileTypeStructure>(*it);
}

} // namespace Velmora::Daemon
