#pragma once

#include "devices/PropertySource.h"

namespace Velmora::Daemon::Devices {

// Reads the partition table, the partition entry and the file system signature of a device with
// libblkid, and names what it finds as udev does (TYPE as ID_FS_TYPE, PART_ENTRY_NAME as
// ID_PART_ENTRY_NAME, escaped). Opens the device read-only; an unreadable device gives nothing.
Properties probeWithBlkid(const QString& devicePath);

} // namespace Velmora::Daemon::Devices
