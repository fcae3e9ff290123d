#pragma once

#include "boot/DeviceIdentity.h"

#include <QByteArray>

namespace Velmora::Daemon::Boot {

// The two tables of a system that name its partitions: in /etc/fstab the device is the first
// field of a line, in /etc/crypttab the second.
enum class DeviceTableKind { Fstab, Crypttab };

struct TableRewrite
{
    QByteArray text;
    int changedLines = 0;
};

// Points every entry that names a source partition (UUID=, PARTUUID=, LABEL=, their
// /dev/disk/by-* links, or its /dev path) at the paired destination partition, in the same form
// where the destination has that identifier, else by UUID, else by its path. Comments, blank lines,
// spacing and every entry of other devices stay byte for byte.
TableRewrite rewriteDeviceTable(const QByteArray& text, DeviceTableKind kind, const QVector<IdentityPair>& pairs);

} // namespace Velmora::Daemon::Boot

namespace Velmora::Daemon::Boot {

// An fstab entry that mounts one of a list of devices.
struct DeviceMount
{
    int device = -1; // index in the list
    QString mountPoint; // as written, escapes undone
    QString fileSystem;
};

// The entries of `fstab` that mount one of `devices`, in the order of the file.
QVector<DeviceMount> mountsOfDevices(const QByteArray& fstab, const QVector<DeviceIdentity>& devices);

} // namespace Velmora::Daemon::Boot
