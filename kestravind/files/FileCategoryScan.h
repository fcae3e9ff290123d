#pragma once

#include "FileTypeStructure.pb.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace Velmora::Daemon::Files {

// How the used space of a drive divides among the kinds of files the program asks about. The
// request's rules decide: the names of its path lists are top-level entries of a volume (a folder
// or a file there and all below it), its extension lists take files by the end of their names,
// and what neither takes is OTHER. Each mounted volume of the drive is walked without entering
// another file system mounted inside it; a volume mounted twice is walked once.
//
// The walk runs as the service, not as the asking user: the answer holds sums only, the same for
// every user, as the used space of a volume is.
class FileCategoryScan
{
public:
    using Progress = std::function<void(const Velmora::Message::FileTypeStructure&)>;

    static constexpr uint32_t OtherCategory = 6;

    explicit FileCategoryScan(std::chrono::milliseconds progressInterval = std::chrono::milliseconds(250))
        : m_progressInterval(progressInterval) {}

    // Progress goes out with code IN_PROGRESS at most once per interval; the answer is the final
    // one (SUCCESS), or NOT_FOUND once the stop flag was raised: the scan is gone, which is what
    // the program hears when it stops a scan. FAILED when the drive fails or vanishes under it.
    Velmora::Message::FileTypeStructure run(const Velmora::Message::FileTypeStructureRequest& request,
        const std::vector<std::string>& mountPoints, const std::atomic_bool& stop, const Progress& progress) const;

private:
    std::chrono::milliseconds m_progressInterval;
};

} // namespace Velmora::Daemon::Files
