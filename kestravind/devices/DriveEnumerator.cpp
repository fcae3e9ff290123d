#include "devices/DriveEnumerator.h"

#include "devices/DevicesLog.h"
#include "common/Sysfs.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <sys/statvfs.h>

namespace Velmora::Daemon::Devices {

namespace {

const QString efiSystemGuid = QStringLiteral("c12a7328-f81f-11d2-ba4b-00a0c93ec93b");
// Where GRUB keeps its core on a GPT disk that a BIOS starts: the partition such a machine boots
// from, as the EFI system partition is for UEFI. The program asks for a migrated system to be made
// bootable only when its disk has a partition marked bootable.
const QString biosBootGuid = QStringLiteral("21686148-6449-6e6f-744e-656564454649");
// Containers of logical partitions; the kernel shows them as two sectors, the table knows better.
const QVector<quint32> extendedMbrTypes = {0x05, 0x0F, 0x1F, 0x3B, 0x85, 0x91, 0x9B, 0xC5, 0xCF, 0xD5, 0xE1, 0xE4};
const quint64 legacyBiosBootable = 1ULL << 2;
const quint64 sectorBytes = 512; // sysfs counts in 512-byte units whatever the device's block size

// The number N of the "ataN" port in a device's sysfs path, or -1 where it hangs on no ATA port.
int ataPort(const QString& canonicalPath)
{
    for (const QStringRef& part : canonicalPath.splitRef(QLatin1Char('/'))) {
        if (part.size() > 3 && part.startsWith(QLatin1String("ata"))) {
            bool ok = false;
            const int port = part.mid(3).toInt(&ok);
            if (ok)
                return port;
        }
    }
    return -1;
}

quint32 sataSpeed(const QString& text)
{
    if (text.startsWith(QLatin1String("6.0")))
        return SataGen3;
    if (text.startsWith(QLatin1String("3.0")))
        return SataGen2;
    if (text.startsWith(QLatin1String("1.5")))
        return SataGen1;
    return SataSpeedUnknown;
}

QString busTypeOf(const QString& name, const QString& canonicalPath, const Properties& properties)
{
    const QString bus = properties.value(QStringLiteral("ID_BUS"));
    if (name.startsWith(QLatin1String("loop")))
        return QStringLiteral("Loop");
    if (name.startsWith(QLatin1String("nvme")))
        return QStringLiteral("NVMe");
    // Before ATA: a USB bridge in front of a SATA drive makes it a USB drive.
    if (bus == QLatin1String("usb") || canonicalPath.contains(QLatin1String("/usb")))
        return QStringLiteral("USB");
    if (name.startsWith(QLatin1String("vd")) || canonicalPath.contains(QLatin1String("/virtio")))
        return QStringLiteral("Virtio");
    if (name.startsWith(QLatin1String("mmcblk")))
        return QStringLiteral("MMC");
    if (bus == QLatin1String("ata") || ataPort(canonicalPath) >= 0)
        return QStringLiteral("SATA");
    return QStringLiteral("SCSI");
}

// The unit serial number of SCSI inquiry page 0x80, which libata also answers for ATA drives.
QString serialFromVpdPage(const QString& path)
{
    const std::optional<QByteArray> page = Sysfs::read(path);
    if (!page || page->size() < 4)
        return QString();
    const int length = static_cast<unsigned char>(page->at(3));
    return QString::fromLatin1(page->mid(4, length)).trimmed();
}

quint64 hexOrDecimal(const QString& text)
{
    bool ok = false;
    const quint64 value = text.toULongLong(&ok, 0);
    return ok ? value : 0;
}

QString firstNonEmpty(std::initializer_list<QString> candidates)
{
    for (const QString& candidate : candidates) {
        if (!candidate.isEmpty())
            return candidate;
    }
    return QString();
}

// Bytes in use of a mounted file system, as statvfs reports them: all blocks less the free ones.
std::optional<quint64> statvfsUsedBytes(const QString& mountPoint)
{
    struct statvfs stats;
    if (::statvfs(QFile::encodeName(mountPoint).constData(), &stats) != 0)
        return std::nullopt;
    return static_cast<quint64>(stats.f_blocks - stats.f_bfree) * stats.f_frsize;
}

} // namespace

DriveEnumerator::DriveEnumerator(EnumeratorOptions options, std::shared_ptr<PropertySource> properties)
    : m_options(std::move(options))
    , m_properties(std::move(properties))
{
    if (!m_options.usedBytes)
        m_options.usedBytes = statvfsUsedBytes;
}

QString DriveEnumerator::blockPath(const QString& name) const
{
    return m_options.sysfsRoot + QLatin1String("/block/") + name;
}

QVector<DriveRecord> DriveEnumerator::enumerate() const
{
    const MountTable mounts = MountTable::fromFile(m_options.mountInfoPath);
    QVector<DriveRecord> drives;
    for (const QString& name : Sysfs::entries(m_options.sysfsRoot + QLatin1String("/block"))) {
        if (!isDriveCandidate(name))
            continue;
        if (std::optional<DriveRecord> drive = readDrive(name, mounts))
            drives.append(std::move(*drive));
    }
    return drives;
}

bool DriveEnumerator::isDriveCandidate(const QString& name) const
{
    const QString directory = blockPath(name);
    if (name.startsWith(QLatin1String("loop")))
        return m_options.includeLoop && Sysfs::exists(directory + QLatin1String("/loop/backing_file"));
    for (const char* prefix : {"ram", "zram", "dm-", "md", "sr", "fd", "nbd"}) {
        if (name.startsWith(QLatin1String(prefix)))
            return false;
    }
    // The boot areas of an eMMC are no drive of their own.
    if (name.startsWith(QLatin1String("mmcblk")) && name.contains(QLatin1String("boot")))
        return false;
    // Only hardware has a device behind it; multipath paths of NVMe are hidden.
    if (!Sysfs::exists(directory + QLatin1String("/device")) || Sysfs::text(directory + QLatin1String("/hidden")) == QLatin1String("1"))
        return false;
    const bool optical = Sysfs::text(directory + QLatin1String("/device/type")) == QLatin1String("5");
    return !optical;
}

std::optional<DriveRecord> DriveEnumerator::readDrive(const QString& name, const MountTable& mounts) const
{
    const QString directory = blockPath(name);
    const std::optional<quint64> sectors = Sysfs::number(directory + QLatin1String("/size"));
    if (!sectors) {
        if (!Sysfs::exists(directory))
            qCWarning(devicesLog, "Drive %s vanished during the scan; left out", qPrintable(name));
        else
            qCWarning(devicesLog, "Drive %s has no readable size; left out", qPrintable(name));
        return std::nullopt;
    }
    // A card reader or an optical-like USB device without a medium.
    if (*sectors == 0)
        return std::nullopt;

    DriveRecord drive;
    drive.name = name;
    drive.devicePath = m_options.deviceRoot + QLatin1Char('/') + QString(name).replace(QLatin1Char('!'), QLatin1Char('/'));
    drive.size = *sectors * sectorBytes;
    const Properties properties = m_properties->properties(name, drive.devicePath);
    const QString canonicalPath = QFileInfo(directory).canonicalFilePath();
    drive.busType = busTypeOf(name, canonicalPath, properties);
    readIdentity(&drive, directory, properties);
    drive.instancePath = firstNonEmpty({properties.value(QStringLiteral("ID_PATH")),
        canonicalPath.mid(m_options.sysfsRoot.size())});
    if (drive.busType == QLatin1String("SATA"))
        readLinkSpeeds(&drive, canonicalPath);

    // A disk seen again under the same name after a replug has a new sequence number.
    const QString sequence = Sysfs::text(directory + QLatin1String("/diskseq"));
    drive.identity = name + QLatin1Char('|')
        + (sequence.isEmpty() ? drive.model + QLatin1Char('|') + drive.serial : sequence);

    const QString tableType = properties.value(QStringLiteral("ID_PART_TABLE_TYPE"));
    if (tableType == QLatin1String("gpt"))
        drive.partitionStyle = PartitionStyle::Gpt;
    else if (tableType == QLatin1String("dos"))
        drive.partitionStyle = PartitionStyle::Mbr;

    for (const QString& entry : Sysfs::entries(directory)) {
        if (!Sysfs::exists(directory + QLatin1Char('/') + entry + QLatin1String("/partition")))
            continue;
        if (std::optional<PartitionRecord> partition = readPartition(drive, entry, tableType, mounts))
            drive.partitions.append(std::move(*partition));
    }
    std::sort(drive.partitions.begin(), drive.partitions.end(),
        [](const PartitionRecord& a, const PartitionRecord& b) { return a.id < b.id; });

    // A file system on the whole disk, as many USB sticks and virtual disks have: shown as the one
    // partition of a drive without a table.
    if (drive.partitions.isEmpty() && tableType.isEmpty()) {
        PartitionRecord whole;
        whole.id = 1;
        whole.devicePath = drive.devicePath;
        whole.size = drive.size;
        whole.fileSystem = properties.value(QStringLiteral("ID_FS_TYPE"));
        whole.label = readableProperty(properties, QStringLiteral("ID_FS_LABEL"), false);
        placeMount(&whole, Sysfs::text(directory + QLatin1String("/dev")), mounts);
        if (!whole.fileSystem.isEmpty())
            drive.partitions.append(whole);
    }

    if (!Sysfs::exists(directory)) {
        qCWarning(devicesLog, "Drive %s vanished during the scan; left out", qPrintable(name));
        return std::nullopt;
    }
    return drive;
}

void DriveEnumerator::readIdentity(DriveRecord* drive, const QString& directory, const Properties& properties) const
{
    const QString device = directory + QLatin1String("/device/");
    QString backingFileName;
    if (drive->busType == QLatin1String("Loop"))
        backingFileName = QFileInfo(Sysfs::text(directory + QLatin1String("/loop/backing_file"))).fileName();
    const QString sysfsModel = Sysfs::text(device + QLatin1String("model"));
    drive->model = firstNonEmpty({readableProperty(properties, QStringLiteral("ID_MODEL"), true), sysfsModel,
        backingFileName, drive->busType + QLatin1String(" disk")});
    drive->serial = firstNonEmpty({properties.value(QStringLiteral("ID_SERIAL_SHORT")).trimmed(),
        Sysfs::text(device + QLatin1String("serial")), Sysfs::text(directory + QLatin1String("/serial")),
        serialFromVpdPage(device + QLatin1String("vpd_pg80"))});
    drive->firmware = firstNonEmpty({properties.value(QStringLiteral("ID_REVISION")).trimmed(),
        Sysfs::text(device + QLatin1String("firmware_rev")), Sysfs::text(device + QLatin1String("rev"))});
    drive->vendor = firstNonEmpty(
        {readableProperty(properties, QStringLiteral("ID_VENDOR"), true), Sysfs::text(device + QLatin1String("vendor"))});
    drive->product = firstNonEmpty({sysfsModel, drive->model});
}

void DriveEnumerator::readLinkSpeeds(DriveRecord* drive, const QString& canonicalPath) const
{
    const int port = ataPort(canonicalPath);
    if (port < 0)
        return;
    const QString link = m_options.sysfsRoot + QLatin1String("/class/ata_link/link") + QString::number(port);
    drive->sataCurrentSpeed = sataSpeed(Sysfs::text(link + QLatin1String("/sata_spd")));
    drive->sataSupportedSpeed = sataSpeed(Sysfs::text(link + QLatin1String("/hw_sata_spd_limit")));
}

std::optional<PartitionRecord> DriveEnumerator::readPartition(
    const DriveRecord& drive, const QString& name, const QString& tableType, const MountTable& mounts) const
{
    const QString directory = blockPath(drive.name) + QLatin1Char('/') + name;
    const std::optional<quint64> number = Sysfs::number(directory + QLatin1String("/partition"));
    const std::optional<quint64> start = Sysfs::number(directory + QLatin1String("/start"));
    const std::optional<quint64> sectors = Sysfs::number(directory + QLatin1String("/size"));
    if (!number || !start || !sectors) {
        qCWarning(devicesLog, "Partition %s vanished during the scan; left out", qPrintable(name));
        return std::nullopt;
    }
    PartitionRecord partition;
    partition.id = static_cast<quint32>(*number);
    partition.devicePath = m_options.deviceRoot + QLatin1Char('/') + QString(name).replace(QLatin1Char('!'), QLatin1Char('/'));
    partition.offset = *start * sectorBytes;
    partition.size = *sectors * sectorBytes;

    const Properties properties = m_properties->properties(name, partition.devicePath);
    const QString scheme = firstNonEmpty({properties.value(QStringLiteral("ID_PART_ENTRY_SCHEME")), tableType});
    const QString entryType = properties.value(QStringLiteral("ID_PART_ENTRY_TYPE"));
    const quint64 flags = hexOrDecimal(properties.value(QStringLiteral("ID_PART_ENTRY_FLAGS")));
    if (scheme == QLatin1String("gpt")) {
        partition.type = PartitionStyle::Gpt;
        partition.gptType = entryType.toLower();
        partition.gptId = properties.value(QStringLiteral("ID_PART_ENTRY_UUID")).toLower();
        partition.gptName = decodedValue(properties.value(QStringLiteral("ID_PART_ENTRY_NAME")));
        partition.gptAttributes = flags;
        partition.bootable =
            partition.gptType == efiSystemGuid || partition.gptType == biosBootGuid || (flags & legacyBiosBootable);
    } else if (scheme == QLatin1String("dos")) {
        partition.type = PartitionStyle::Mbr;
        partition.mbrType = static_cast<quint32>(hexOrDecimal(entryType));
        partition.bootable = flags & 0x80;
        partition.logical = partition.id > 4;
        const quint64 entrySectors = hexOrDecimal(properties.value(QStringLiteral("ID_PART_ENTRY_SIZE")));
        if (extendedMbrTypes.contains(partition.mbrType) && entrySectors > 0)
            partition.size = entrySectors * sectorBytes;
    }
    partition.fileSystem = properties.value(QStringLiteral("ID_FS_TYPE"));
    partition.label = readableProperty(properties, QStringLiteral("ID_FS_LABEL"), false);
    placeMount(&partition, Sysfs::text(directory + QLatin1String("/dev")), mounts);
    return partition;
}

void DriveEnumerator::placeMount(PartitionRecord* partition, const QString& majorMinor, const MountTable& mounts) const
{
    const MountTable::Mount* mount = mounts.mountOf(majorMinor, partition->devicePath);
    if (!mount)
        return;
    partition->mountPoint = mount->mountPoint;
    partition->used = m_options.usedBytes(partition->mountPoint).value_or(0);
    // A device this service may not open (a sandbox, a device held exclusively) still tells its
    // file system through the mount.
    if (partition->fileSystem.isEmpty())
        partition->fileSystem = mount->fileSystem;
}

} // namespace Velmora::Daemon::Devices
