#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QVector>

#include <sys/types.h>

namespace Velmora::Daemon::Migration {

// A partition as the kernel shows it now; sysfs counts in 512-byte sectors whatever the disk's own.
struct KernelPartition {
    QString name; // loop1p2, sda2
    quint32 number = 0;
    quint64 start = 0; // bytes
    quint64 size = 0; // bytes
};

// Where the disks are in use right now: each disk (kernel name) that holds a mounted file system
// or an active swap area, directly or under device-mapper, with one mount point or swap area as
// the example to log; and the disks that hold "/".
struct DiskUse {
    QSet<QString> rootDisks;
    QHash<QString, QString> mounted;
    QHash<QString, QString> swap;
};

// Fresh facts about block devices, read from /sys and /proc at each call: the checks before a disk
// is written must not trust anything older than the moment of the write.
namespace BlockDevices {

// The kernel name of the whole disk that `devicePath` is, or empty if it is not a whole disk.
QString wholeDiskName(const QString& devicePath);
QVector<KernelPartition> partitions(const QString& disk);
quint64 sizeBytes(const QString& disk);
bool readOnly(const QString& disk);
// What holds the disk or one of its partitions open: LVM, RAID, device-mapper, bcache.
QStringList holders(const QString& disk);
// Tells this attachment of a device from any later one at the same path.
QString identity(const QString& disk);
DiskUse currentUse();
// The disks below a device number, through partitions and device-mapper or RAID members.
QSet<QString> disksOf(dev_t device);
// Whether the kernel lets the whole disk be opened exclusively: it refuses while anything mounts
// or claims it or its partitions.
bool exclusivelyOpenable(const QString& disk);

} // namespace BlockDevices

} // namespace Velmora::Daemon::Migration
