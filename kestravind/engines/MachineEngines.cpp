#include "MachineEngines.h"

#include "FileEngines.h"

#include "devices/DriveRegistry.h"
#include "migration/CommandRunner.h"
#include "migration/DiskEngines.h"
#include "server/EngineHandler.h"
#include "server/RequestRouter.h"
#include "smart/SmartReader.h"
#include "smart/SystemReportReader.h"
#include "smart/TrimCommand.h"

#include "message/Message.h"

#include "Migration.pb.h"
#include "Smart.pb.h"
#include "SmartRequest.pb.h"
#include "SystemInfo.pb.h"
#include "SystemSummary.pb.h"
#include "SystemTrimCommand.pb.h"

namespace Velmora::Daemon {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

MachineEngines::MachineEngines(const EngineOptions& options)
    : m_drives(Devices::liveDriveRegistry(options.includeLoop))
    , m_files(std::make_unique<FileEngines>(*m_drives, options.logDirectory.toStdString(),
          [this](quint32 driveId) { m_migrationSource = driveId; }))
    , m_tools(std::make_unique<Migration::ProcessRunner>())
{
    // A disk is written only if a scan made at that moment still lists it under the id asked for.
    Devices::DriveRegistry& drives = *m_drives;
    m_disks = std::make_unique<Migration::DiskEngines>(*m_tools, [&drives](quint32 driveId) {
        drives.rescan();
        const auto drive = drives.drive(driveId);
        return drive ? drive->devicePath : QString();
    });
    // Ids are handed out by a scan; a program that asks about a drive before it asked for the
    // list (a reconnection) still finds the drives of the machine.
    m_drives->rescan();
}

MachineEngines::~MachineEngines() = default;

void MachineEngines::plugInto(RequestRouter& router)
{
    Devices::DriveRegistry& drives = *m_drives;

    // The drive list and the summary are asked with an empty payload of the answer's own type.
    router.addHandler(std::make_unique<EngineHandler<Wire::SystemInfo, Wire::SystemInfo>>(
        Message::SystemInfoRequest, Message::SystemInfo,
        [&drives](const Wire::SystemInfo&, const PeerCredentials&, const std::atomic_bool&, const auto&) {
            return drives.rescan();
        }));

    router.addHandler(std::make_unique<EngineHandler<Wire::SystemSummary, Wire::SystemSummary>>(
        Message::SystemReport, Message::SystemReport,
        [](const Wire::SystemSummary&, const PeerCredentials& peer, const std::atomic_bool&, const auto&) {
            return Smart::SystemReportReader().read(peer.uid);
        }));

    // The access policy lets a request that enables TRIM through only for the privileged.
    router.addHandler(std::make_unique<EngineHandler<Wire::SystemTrimCommand, Wire::SystemTrimCommand>>(
        Message::SystemTrimCommand, Message::SystemTrimCommand,
        [](const Wire::SystemTrimCommand& request, const PeerCredentials&, const std::atomic_bool& stop, const auto&) {
            return Smart::TrimCommand().answer(request, true, stop);
        }));

    router.addHandler(std::make_unique<EngineHandler<Wire::SmartRequest, Wire::Smart>>(
        Message::SmartRequest, Message::Smart,
        [&drives](const Wire::SmartRequest& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto&) {
            const auto drive = drives.drive(request.driveid());
            return Smart::SmartReader().read(request, drive ? drive->devicePath : QString(), stop);
        }));

    m_files->plugInto(router);

    // The destination of a migration, one request at a time as the wizard sends them; each is a
    // task of its own so that a slow mkfs does not hold the connection's short requests. The wizard
    // waits for one answer to each and takes any code but 0 for a failure, so there is no interim
    // answer. The program names the source drive only in its filter requests, which come before.
    Migration::DiskEngines& disks = *m_disks;
    router.addHandler(std::make_unique<EngineHandler<Wire::CleanDisk, Wire::CleanDisk>>(
        Message::CleanDisk, Message::CleanDisk,
        [this, &disks](const Wire::CleanDisk& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto&) {
            const qint64 sourceId = m_migrationSource;
            const auto source = sourceId < 0 ? std::nullopt : m_drives->drive(quint32(sourceId));
            return disks.cleanDisk(request, source ? source->devicePath : QString(), stop);
        },
        QStringLiteral("clean disk")));
    router.addHandler(std::make_unique<EngineHandler<Wire::PartitionCreate, Wire::PartitionCreate>>(
        Message::PartitionCreate, Message::PartitionCreate,
        [&disks](const Wire::PartitionCreate& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto&) { return disks.createPartition(request, stop); },
        QStringLiteral("create partition")));
    router.addHandler(std::make_unique<EngineHandler<Wire::PartitionFormat, Wire::PartitionFormat>>(
        Message::PartitionFormat, Message::PartitionFormat,
        [&disks](const Wire::PartitionFormat& request, const PeerCredentials&, const std::atomic_bool& stop,
            const auto&) { return disks.formatPartition(request, stop); },
        QStringLiteral("format partition")));
}

} // namespace Velmora::Daemon
