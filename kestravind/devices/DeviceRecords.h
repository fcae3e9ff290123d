#pragma once

#include <QString>
#include <QVector>

namespace Velmora::Daemon::Devices {

// How a drive is divided; the values are those of the drive list's PartitionStyle.
enum class PartitionStyle { Mbr = 0, Gpt = 1, Raw = 2 };

// Link speeds as the drive list carries them: one bit per SATA generation.
enum SataSpeed : quint32 { SataSpeedUnknown = 0, SataGen1 = 1, SataGen2 = 2, SataGen3 = 4 };

// One partition of a drive, or the whole drive where a file system sits on it without a table.
struct PartitionRecord
{
    quint32 id = 0; // the kernel's partition number; 1 for a file system on the whole drive
    QString devicePath; // e.g. /dev/sda1
    quint64 offset = 0; // bytes
    quint64 size = 0; // bytes
    PartitionStyle type = PartitionStyle::Raw;
    QString gptType; // type GUID, lower case
    QString gptId; // partition GUID, lower case
    QString gptName;
    quint64 gptAttributes = 0;
    quint32 mbrType = 0;
    bool bootable = false;
    bool logical = false;
    QString fileSystem; // as the file system calls itself: ext4, vfat, ntfs...
    QString label;
    QString mountPoint; // empty when not mounted
    quint64 used = 0; // bytes in use of a mounted file system, else 0
};

struct DriveRecord
{
    quint32 id = 0; // handed out by the registry
    QString identity; // what tells this attachment of a device from any other
    QString name; // kernel name: sda, nvme0n1
    QString devicePath; // /dev/sda
    QString model;
    QString serial;
    QString firmware;
    QString vendor;
    QString product;
    QString busType; // SATA, NVMe, USB, Virtio, SCSI, MMC, Loop
    QString instancePath; // udev's ID_PATH, else the sysfs path of the device
    quint64 size = 0; // bytes
    quint32 sataSupportedSpeed = SataSpeedUnknown;
    quint32 sataCurrentSpeed = SataSpeedUnknown;
    PartitionStyle partitionStyle = PartitionStyle::Raw;
    QVector<PartitionRecord> partitions; // ascending id
};

} // namespace Velmora::Daemon::Devices
