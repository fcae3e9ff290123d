#pragma once

#include <QString>

#include <atomic>
#include <memory>

namespace Velmora::Daemon {

class FileEngines;
class RequestRouter;

namespace Devices {
class DriveRegistry;
}

namespace Migration {
class CommandRunner;
class DiskEngines;
}

struct EngineOptions {
    // Loop devices are no drives of the machine; tests and demos show their images as drives.
    bool includeLoop = false;
    // The folder of the service's own log, which the log copies take from.
    QString logDirectory;
};

// The engines that answer from this machine, plugged into the router: the drive list, the
// summary, TRIM, S.M.A.R.T., the file engines and the preparation of a migration's destination.
// Owns what the engines share, above all the registry of the drive ids handed out, and outlives
// the router's workers.
class MachineEngines
{
public:
    explicit MachineEngines(const EngineOptions& options);
    ~MachineEngines();

    void plugInto(RequestRouter& router);

private:
    std::unique_ptr<Devices::DriveRegistry> m_drives;
    std::unique_ptr<FileEngines> m_files;
    std::unique_ptr<Migration::CommandRunner> m_tools;
    std::unique_ptr<Migration::DiskEngines> m_disks;
    // The drive whose partitions the migration's filters were last asked about: the source, which
    // the destination's erasing must never be. -1 before any.
    std::atomic<qint64> m_migrationSource {-1};
};

} // namespace Velmora::Daemon
