#pragma once

#include "server/PeerCredentials.h"

#include "Migration.pb.h"

#include <string>

namespace Velmora::Daemon::Files {

// The paths of a volume that a migration must treat specially: system paths always go across
// (the operating system's own folders on the root file system, everything on a boot or EFI
// volume), ignored paths are never copied (lost+found, swap files, trash folders). Only paths
// that exist, as the asking user sees them, in the program's form: the mount point, then the
// names joined with a backslash.
class SystemPathsQuery
{
public:
    // The request's ids come back as they were; NOT_FOUND when the volume is not mounted,
    // ACCESS_DENIED when the user cannot open it.
    Velmora::Message::MigrationFilterSystemPaths run(const Velmora::Message::MigrationFilterSystemPaths& request,
        const std::string& mountPoint, const PeerCredentials& peer) const;
};

} // namespace Velmora::Daemon::Files
