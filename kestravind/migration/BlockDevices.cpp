#include "BlockDevices.h"

#include "common/Sysfs.h"
#include "devices/MountTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace Velmora::Daemon::Migration::BlockDevices {

namespace {

constexpr quint64 SysfsSector = 512;
// Device-mapper over RAID over partitions is three deep; anything deeper is a loop of links.
constexpr int MaxStackDepth = 8;

QString sysBlock(const QString& disk)
{
    return QStringLiteral("/sys/block/") + disk;
}

// Unreadable counts as 0.
quint64 readNumber(const QString& path)
{
    return Sysfs::number(path).value_or(0);
}

bool deviceNumber(const QString& path, dev_t* device)
{
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISBLK(status.st_mode))
        return false;
    *device = status.st_rdev;
    return true;
}

void collectDisks(const QString& sysfsDir, int depth, QSet<QString>* disks)
{
    const QFileInfo info(sysfsDir);
    if (depth > MaxStackDepth || !info.exists())
        return;
    const QString real = info.canonicalFilePath();
    if (QFile::exists(real + QStringLiteral("/partition"))) {
        disks->insert(QFileInfo(QFileInfo(real).path()).fileName());
        return;
    }
    const QStringList slaves = QDir(real + QStringLiteral("/slaves")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (slaves.isEmpty()) {
        disks->insert(QFileInfo(real).fileName());
        return;
    }
    for (const QString& slave : slaves)
        collectDisks(QStringLiteral("/sys/class/block/") + slave, depth + 1, disks);
}

// A mount of a file system without a device number of its own (btrfs, some overlays) names its
// device as its source.
// The block device of a mount; a file system with a number of its own (btrfs) by its source.
dev_t mountDevice(const Devices::MountTable::Mount& mount)
{
    const QStringList numbers = mount.device.split(QLatin1Char(':'));
    const dev_t device = makedev(numbers.value(0).toUInt(), numbers.value(1).toUInt());
    if (major(device) != 0)
        return device;
    dev_t fromSource = 0;
    if (mount.source.startsWith(QLatin1String("/dev/")) && deviceNumber(mount.source, &fromSource))
        return fromSource;
    return 0;
}

} // namespace

QString wholeDiskName(const QString& devicePath)
{
    dev_t device = 0;
    if (!deviceNumber(devicePath, &device))
        return QString();
    const QFileInfo link(QStringLiteral("/sys/dev/block/%1:%2").arg(major(device)).arg(minor(device)));
    const QString name = QFileInfo(link.canonicalFilePath()).fileName();
    if (name.isEmpty() || !QFileInfo::exists(sysBlock(name)))
        return QString();
    return name;
}

QVector<KernelPartition> partitions(const QString& disk)
{
    QVector<KernelPartition> found;
    const QStringList children = QDir(sysBlock(disk)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& child : children) {
        const QString dir = sysBlock(disk) + QLatin1Char('/') + child;
        if (!QFile::exists(dir + QStringLiteral("/partition")))
            continue;
        found.append({child, static_cast<quint32>(readNumber(dir + QStringLiteral("/partition"))),
            readNumber(dir + QStringLiteral("/start")) * SysfsSector, readNumber(dir + QStringLiteral("/size")) * SysfsSector});
    }
    return found;
}

quint64 sizeBytes(const QString& disk)
{
    return readNumber(sysBlock(disk) + QStringLiteral("/size")) * SysfsSector;
}

bool readOnly(const QString& disk)
{
    return Sysfs::text(sysBlock(disk) + QStringLiteral("/ro")) != QLatin1String("0");
}

QStringList holders(const QString& disk)
{
    QStringList dirs{sysBlock(disk)};
    for (const KernelPartition& partition : partitions(disk))
        dirs << sysBlock(disk) + QLatin1Char('/') + partition.name;
    QStringList found;
    for (const QString& dir : dirs)
        found << QDir(dir + QStringLiteral("/holders")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return found;
}

QString identity(const QString& disk)
{
    // diskseq grows with every attachment; kernels without it fall back on the size.
    return QStringLiteral("%1/%2/%3")
        .arg(Sysfs::text(sysBlock(disk) + QStringLiteral("/dev")), Sysfs::text(sysBlock(disk) + QStringLiteral("/diskseq")))
        .arg(sizeBytes(disk));
}

QSet<QString> disksOf(dev_t device)
{
    QSet<QString> disks;
    collectDisks(QStringLiteral("/sys/dev/block/%1:%2").arg(major(device)).arg(minor(device)), 0, &disks);
    disks.remove(QString());
    return disks;
}

DiskUse currentUse()
{
    DiskUse use;
    const Devices::MountTable table = Devices::MountTable::fromFile(QStringLiteral("/proc/self/mountinfo"));
    for (const Devices::MountTable::Mount& mount : table.mounts()) {
        const dev_t device = mountDevice(mount);
        if (device == 0)
            continue;
        for (const QString& disk : disksOf(device)) {
            use.mounted.insert(disk, mount.mountPoint);
            if (mount.mountPoint == QLatin1String("/"))
                use.rootDisks.insert(disk);
        }
    }
    QFile swaps(QStringLiteral("/proc/swaps"));
    if (swaps.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = swaps.readAll().split('\n');
        for (int i = 1; i < lines.size(); ++i) {
            const QString area = QString::fromUtf8(lines.at(i).simplified().split(' ').value(0));
            dev_t device = 0;
            if (area.isEmpty() || !deviceNumber(area, &device))
                continue; // a swap file lies on a mounted file system, which counts already
            for (const QString& disk : disksOf(device))
                use.swap.insert(disk, area);
        }
    }
    return use;
}

bool exclusivelyOpenable(const QString& disk)
{
    const QByteArray path = QFile::encodeName(QStringLiteral("/dev/") + disk);
    const int fd = ::open(path.constData(), O_RDONLY | O_EXCL | O_CLOEXEC);
    if (fd < 0)
        return false;
    ::close(fd);
    return true;
}

} // namespace Velmora::Daemon::Migration::BlockDevices
