#pragma once

#include "devices/DeviceRecords.h"

#include "SystemInfo.pb.h"

#include <QHash>
#include <QMap>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace Velmora::Daemon::Devices {

// The drive ids handed out to the program, and what stands behind each for the other modules.
// A device keeps its id for as long as rescans find it; a device seen anew (another one, or the
// same one plugged in again) gets a new id, and ids are never reused. Safe to use from several
// threads; scans run one at a time.
class DriveRegistry
{
public:
    using Scan = std::function<QVector<DriveRecord>()>;

    explicit DriveRegistry(Scan scan);

    // Reads the machine anew and returns the drive list, in ascending id.
    Velmora::Message::SystemInfo rescan();

    std::optional<DriveRecord> drive(quint32 driveId) const;
    // The device node of a drive (e.g. /dev/sdb); empty for an id the registry does not know.
    QString devicePath(quint32 driveId) const;
    std::optional<PartitionRecord> partition(quint32 driveId, quint32 partitionId) const;
    QVector<DriveRecord> drives() const;

private:
    Scan m_scan;
    std::mutex m_scanMutex;
    mutable std::mutex m_mutex;
    QMap<quint32, DriveRecord> m_drives;
    quint32 m_nextId = 0;
};

// The registry of this machine's drives: sysfs under /sys, udev with libblkid where udev has not
// probed, the mount table of this process. Loop devices count as drives only when asked for.
std::unique_ptr<DriveRegistry> liveDriveRegistry(bool includeLoop);

} // namespace Velmora::Daemon::Devices
