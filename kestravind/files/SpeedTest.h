#pragma once

#include "DiskPerformance.pb.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace Velmora::Daemon::Files {

// Sequential write, then read, of one file of the requested size in blocks of the requested size
// on a mounted file system of the drive. Direct I/O and a sync before the clock stops keep the page
// cache out of the figures. The file lives in a folder of its own that the test makes on the
// volume and removes again in every outcome: finished, failed, stopped.
class SpeedTest
{
public:
    static constexpr uint64_t Alignment = 4096;
    static constexpr uint64_t MaxFileSize = uint64_t(16) << 30;
    static constexpr uint64_t MaxBlockSize = uint64_t(256) << 20;

    // Speeds in bytes per second. INVALID_REQUEST for sizes out of bounds or not multiples of
    // 4 KiB, NOT_FOUND when the drive has no writable mounted volume, FAILED when the volume is too
    // full or the drive fails (or vanishes) under the test, CANCELED when the stop flag was raised.
    Velmora::Message::DiskPerformance run(const Velmora::Message::DiskPerformanceRequest& request,
        const std::vector<std::string>& mountPoints, const std::atomic_bool& stop) const;
};

} // namespace Velmora::Daemon::Files
