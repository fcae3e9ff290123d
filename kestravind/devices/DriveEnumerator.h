#pragma once

#include "devices/DeviceRecords.h"
#include "devices/MountTable.h"
#include "devices/PropertySource.h"

#include <functional>
#include <memory>
#include <optional>

namespace Velmora::Daemon::Devices {

struct EnumeratorOptions
{
    QString sysfsRoot = QStringLiteral("/sys");
    QString mountInfoPath = QStringLiteral("/proc/self/mountinfo");
    QString deviceRoot = QStringLiteral("/dev");
    // Loop devices with a backing file count as drives (tests and demonstrations).
    bool includeLoop = false;
    // Bytes in use of the file system mounted at a path; nullopt when it cannot be told.
    std::function<std::optional<quint64>(const QString& mountPoint)> usedBytes;
};

// Every disk of the machine that a user would call a drive (SATA, NVMe, USB, virtio, SCSI, MMC),
// with its partitions. Loop, RAM, zram, device-mapper, md, optical and floppy devices are left out.
class DriveEnumerator
{
public:
    DriveEnumerator(EnumeratorOptions options, std::shared_ptr<PropertySource> properties);

    // The drives in the order of their kernel names. A device that vanishes during the scan is
    // left out with a log line; what cannot be read stays empty.
    QVector<DriveRecord> enumerate() const;

private:
    QString blockPath(const QString& name) const;
    bool isDriveCandidate(const QString& name) const;
    std::optional<DriveRecord> readDrive(const QString& name, const MountTable& mounts) const;
    void readIdentity(DriveRecord* drive, const QString& directory, const Properties& properties) const;
    void readLinkSpeeds(DriveRecord* drive, const QString& canonicalPath) const;
    std::optional<PartitionRecord> readPartition(const DriveRecord& drive, const QString& name, const QString& tableType,
        const MountTable& mounts) const;
    void placeMount(PartitionRecord* partition, const QString& majorMinor, const MountTable& mounts) const;

    EnumeratorOptions m_options;
    std::shared_ptr<PropertySource> m_properties;
};

} // namespace Velmora::Daemon::Devices
