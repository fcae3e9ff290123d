#pragma once

#include <QString>

#include <memory>

namespace Velmora::Daemon {

class FileEngines;
class RequestRouter;

namespace Devices {
class DriveRegistry;
}

struct EngineOptions {
    // Loop devices are no drives of the machine; tests and demos show their images as drives.
    bool includeLoop = false;
    // The folder of the service's own log, which the log copies take from.
    QString logDirectory;
};

// The engines that answer from this machine, plugged into the router: the drive list, the
// summary, TRIM, S.M.A.R.T. and the file engines. Owns what the engines share, above all the
// registry of the drive ids handed out, and outlives the router's workers.
class MachineEngines
{
public:
    explicit MachineEngines(const EngineOptions& options);
    ~MachineEngines();

    void plugInto(RequestRouter& router);

private:
    std::unique_ptr<Devices::DriveRegistry> m_drives;
    std::unique_ptr<FileEngines> m_files;
};

} // namespace Velmora::Daemon
