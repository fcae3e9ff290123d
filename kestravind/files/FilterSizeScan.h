#pragma once

#include "server/PeerCredentials.h"

#include "FileTypeStructure.pb.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

namespace Velmora::Daemon::Files {

// How many bytes of a volume a migration with the user's filters would move. The request's
// entry 0 lists the system paths (they always go across), entry 1 the paths left out and entry 2
// the extensions left out; the paths are full paths of the program's form on this volume. The
// answer has three sums, in this order: 0 what lies under a system path, 1 what the filters leave
// out, 2 what goes across besides; the program adds the first and the last.
//
// The walk runs as the asking user and counts only what that user can read: a folder the user
// may not open adds nothing, and the count of such folders goes to the log.
class FilterSizeScan
{
public:
    using Progress = std::function<void(const Velmora::Message::FileTypeStructure&)>;

    explicit FilterSizeScan(std::chrono::milliseconds progressInterval = std::chrono::milliseconds(250))
        : m_progressInterval(progressInterval) {}

    // Progress goes out with code IN_PROGRESS; the final answer has SUCCESS. NOT_FOUND when the
    // volume is not mounted, ACCESS_DENIED when the user cannot open it, CANCELED when the stop
    // flag ended the walk (the program asked for the stop and expects no answer to it).
    Velmora::Message::FileTypeStructure run(const Velmora::Message::FileTypeStructureRequest& request,
        const std::string& mountPoint, const PeerCredentials& peer, const std::atomic_bool& stop,
        const Progress& progress) const;

private:
    std::chrono::milliseconds m_progressInterval;
};

} // namespace Velmora::Daemon::Files
