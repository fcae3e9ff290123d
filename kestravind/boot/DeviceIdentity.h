#pragma once

#include <QString>
#include <QVector>

namespace Velmora::Daemon::Boot {

// The names by which a system's tables can refer to a partition.
struct DeviceIdentity
{
    QString devicePath; // /dev/sda2
    QString uuid;       // of the file system (or swap, or LUKS header)
    QString partUuid;   // of the partition table entry
    QString label;      // of the file system
    QString fileSystem; // ext4, vfat, swap...
};

// A source partition and the destination partition its content went to.
struct IdentityPair
{
    DeviceIdentity source;
    DeviceIdentity destination;
};

// Reads the identifiers of a device with libblkid, opening it read-only. A device without a file
// system, or one that cannot be read, gives only its path.
DeviceIdentity probeIdentity(const QString& devicePath);

} // namespace Velmora::Daemon::Boot
