#pragma once

#include <atomic>

namespace Velmora::Daemon {

// Waits until udev has handled the events of the devices changed so far (at most ten seconds). udev
// opens a disk whose table or file system changed to read it again, and keeps the record the drive
// list reads: a partition cannot be dropped while udev holds it, and its record names its new file
// system only once udev is done. Machines without udev (containers) return at once.
void waitForUdevQueue(const std::atomic_bool& stop);

} // namespace Velmora::Daemon
