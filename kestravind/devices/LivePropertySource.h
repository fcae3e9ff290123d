#pragma once

#include "devices/PropertySource.h"

struct udev;

namespace Velmora::Daemon::Devices {

// The running system's properties: udev's database, and libblkid for the partition table, the
// partition entry and the file system where udev has not probed the device (no udev running, or
// a device it has not seen yet). Not for use from two threads at once.
class LivePropertySource : public PropertySource
{
public:
    LivePropertySource();
    ~LivePropertySource() override;
    LivePropertySource(const LivePropertySource&) = delete;
    LivePropertySource& operator=(const LivePropertySource&) = delete;

    Properties properties(const QString& name, const QString& devicePath) override;

private:
    struct udev* m_udev;
};

} // namespace Velmora::Daemon::Devices
