#pragma once

#include "devices/DeviceRecords.h"

#include "SystemInfo.pb.h"

namespace Velmora::Daemon::Devices {

// The drive list as the program reads it. The mount point stands where the program expects a
// drive letter, the device node where it expects a volume name, and the serial number doubles as
// the warranty key, for want of anything better on this system.
Velmora::Message::SystemInfo toSystemInfo(const QVector<DriveRecord>& drives);

} // namespace Velmora::Daemon::Devices
