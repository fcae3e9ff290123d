#include "MachineEngines.h"

#include "FileEngines.h"
#include "MigrationEngines.h"

#include "devices/DriveRegistry.h"
#include "server/EngineHandler.h"
#include "server/RequestRouter.h"
#include "smart/SmartReader.h"
#include "smart/SystemReportReader.h"
#include "smart/TrimCommand.h"

#include "message/Message.h"

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
    , m_migration(std::make_unique<MigrationEngines>(*m_drives, options.workFolder))
    , m_files(std::make_unique<FileEngines>(*m_drives, options.logDirectory.toStdString(),
          [this](quint32 driveId) { m_migration->setSource(driveId); }))
{
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
            return Smart::SmartReader().read(request, drives.devicePath(request.driveid()), stop);
        }));

    m_files->plugInto(router);

    m_migration->plugInto(router);
}

} // namespace Velmora::Daemon
