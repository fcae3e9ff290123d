#pragma once

#include "server/PeerCredentials.h"

#include "FileList.pb.h"
#include "Code.pb.h"

#include <atomic>
#include <string>
#include <vector>

namespace Velmora::Daemon::Files {

// One folder of a volume for the migration's file tree: its files with their sizes and its
// folders with the size of everything below them, as the asking user sees them. The path is of
// the program's form and must lie on one of the mount points given. Folders of another file
// system mounted inside are left out: they belong to another volume.
class DirectoryListing
{
public:
    // The listing carries no code of its own; the program sees a refusal as an empty folder.
    struct Result {
        Velmora::Message::Code code = Velmora::Message::SUCCESS;
        Velmora::Message::FileList list;
    };

    // INVALID_REQUEST for a path on none of the volumes (or not absolute, or climbing out),
    // ACCESS_DENIED for a folder the user may not read or one reached through a symbolic link,
    // NOT_FOUND for one that is not there, CANCELED when the stop flag ended the sizing.
    Result run(const Velmora::Message::FileListRequest& request, const std::vector<std::string>& mountPoints,
        const PeerCredentials& peer, const std::atomic_bool& stop) const;
};

} // namespace Velmora::Daemon::Files
