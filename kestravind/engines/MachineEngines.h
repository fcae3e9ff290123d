#pragma once

#include <QString>

#include <memory>

namespace Velmora::Daemon {

class FileEngines;
class MigrationEngines;
class RequestRouter;

namespace Devices {
class DriveRegistry;
}


struct EngineOptions {
    // Loop devices are no drives of the machine; tests and demos show their images as drives.
    bool includeLoop = false;
    // The folder of the service's own log, which the log copies take from.
    QString logDirectory;
    // A folder of the service's own, root only, for the private mounts of a migration.
    QString workFolder;
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
    std::unique_ptr<MigrationEngines> m_migration;
    std::unique_ptr<FileEngines> m_files;
};

} // namespace Velmora::Daemon
