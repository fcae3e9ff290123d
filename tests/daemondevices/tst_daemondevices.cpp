#include "LoopDisk.h"

#include "devices/DriveEnumerator.h"
#include "devices/DriveRegistry.h"
#include "devices/FilePropertySource.h"
#include "devices/LivePropertySource.h"
#include "devices/MountTable.h"
#include "devices/SystemInfoMessage.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/statvfs.h>
#include <unistd.h>

using namespace Velmora::Daemon::Devices;
using SystemInfo = Velmora::Message::SystemInfo;
using DriveInfo = SystemInfo::DriveInfo;
using PartitionInfo = Velmora::Message::PartitionInfo;

namespace {

const QString fixtures = QStringLiteral(KESTRAVIND_DEVICES_FIXTURES);

// Stands in for statvfs over the recorded mount points, which do not exist on this machine.
std::optional<quint64> recordedUsage(const QString& mountPoint)
{
    return static_cast<quint64>(mountPoint.size()) * 1000000;
}

SystemInfo recordedMachine(bool includeLoop, const QString& sysfs = fixtures + QLatin1String("/sys"),
    std::shared_ptr<PropertySource> properties = nullptr)
{
    EnumeratorOptions options;
    options.sysfsRoot = sysfs;
    options.mountInfoPath = fixtures + QLatin1String("/mountinfo");
    options.includeLoop = includeLoop;
    options.usedBytes = recordedUsage;
    if (!properties)
        properties = std::make_shared<FilePropertySource>(fixtures + QLatin1String("/udev"));
    DriveEnumerator enumerator(options, properties);
    DriveRegistry registry([&enumerator] { return enumerator.enumerate(); });
    return registry.rescan();
}

QString text(const std::string& value)
{
    return QString::fromStdString(value);
}

const DriveInfo* findDrive(const SystemInfo& info, const QString& model)
{
    const auto found = std::find_if(info.drives().begin(), info.drives().end(),
        [&model](const DriveInfo& drive) { return text(drive.model()) == model; });
    return found == info.drives().end() ? nullptr : &*found;
}

QString models(const SystemInfo& info)
{
    QStringList names;
    for (const DriveInfo& drive : info.drives())
        names << text(drive.model());
    return names.join(QLatin1Char(','));
}

QString describe(const DriveInfo& d)
{
    QStringList partitions;
    for (const PartitionInfo& partition : d.partitions())
        partitions << QString::number(partition.id());
    return QStringList{text(d.serial()), text(d.warrantyinfo()), text(d.firmwareversion()), text(d.type()),
        QString::number(d.size()), text(DriveInfo::PartitionStyle_Name(d.partitionformatstyle())),
        QString::number(d.satasupportedspeed()), QString::number(d.satacurrentspeed()), text(d.deviceinstancepath()),
        partitions.join(QLatin1Char(','))}
        .join(QLatin1Char('|'));
}

QString describe(const PartitionInfo& p)
{
    return QStringList{QString::number(p.id()), QString::number(p.offset()), QString::number(p.size()),
        text(PartitionInfo::PartitionType_Name(p.type())), text(p.gpttype()), text(p.gptid()), text(p.gptname()),
        QString::number(p.mbrtype(), 16), p.isbootable() ? "boot" : "", p.islogical() ? "logical" : "", text(p.filesystem()),
        text(p.label()), text(p.letter()), text(p.volumename()), QString::number(p.used())}
        .join(QLatin1Char('|'));
}

// Removes a device's link of a copied sysfs tree at the moment the scan asks for a device's properties, as
// if the device went away in the middle of it.
class VanishingSource : public FilePropertySource
{
public:
    VanishingSource(const QString& trigger, const QString& victim)
        : FilePropertySource(fixtures + QLatin1String("/udev")), m_trigger(trigger), m_victim(victim)
    {
    }
    Properties properties(const QString& name, const QString& devicePath) override
    {
        if (name == m_trigger)
            QFile::remove(m_victim);
        return FilePropertySource::properties(name, devicePath);
    }

private:
    QString m_trigger;
    QString m_victim;
};

bool kernelMounts(const QByteArray& fileSystem)
{
    QFile list(QStringLiteral("/proc/filesystems"));
    return list.open(QIODevice::ReadOnly) && list.readAll().contains('\t' + fileSystem + '\n');
}

DriveRecord scanned(const QString& name, const QString& identity)
{
    DriveRecord drive;
    drive.name = name;
    drive.identity = identity;
    drive.partitions = {PartitionRecord()};
    drive.partitions[0].id = 1;
    drive.partitions[0].devicePath = QLatin1String("/dev/") + name + QLatin1Char('1');
    return drive;
}

} // namespace

class DaemonDevicesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("kestravind.devices.debug=false")); }

    void mountPoint_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("expected");
        QTest::newRow("root, also mounted a second time") << "8:2" << "/dev/sda2" << "/";
        QTest::newRow("nested") << "8:1" << "/dev/sda1" << "/boot/efi";
        QTest::newRow("bind of a folder on a shorter path") << "8:3" << "/dev/sda3" << "/home";
        QTest::newRow("escaped blank, twice, nested") << "8:17" << "/dev/sdb1" << "/home/alex/Quillet Stick";
        QTest::newRow("subvolumes only, by source") << "0:0" << "/dev/nvme0n1p2" << "/data";
        QTest::newRow("not mounted") << "8:21" << "/dev/sdb5" << "";
    }

    void mountPoint()
    {
        QFETCH(QString, device);
        QFETCH(QString, source);
        const MountTable table = MountTable::fromFile(fixtures + QLatin1String("/mountinfo"));
        QCOMPARE(table.mounts().size(), 10); // the line that is no mount left out
        const MountTable::Mount* mount = table.mountOf(device, source);
        QTEST(mount ? mount->mountPoint : QString(), "expected");
    }

    void drivesNeverRamDisksLoopDevicesWhenAskedFor()
    {
        QCOMPARE(models(recordedMachine(false)), QStringLiteral("Norvane N9 1TB,Norvane S5 480GB,Stick 3.0"));
        QCOMPARE(models(recordedMachine(true)), QStringLiteral("demo disk.img,Norvane N9 1TB,Norvane S5 480GB,Stick 3.0"));
    }

    void driveFacts_data()
    {
        // serial | warranty | firmware | type | size | style | supported and current link speed | path | partitions
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("expected");
        QTest::newRow("SATA") << "Norvane S5 480GB"
                              << "NV5S2241A0093|NV5S2241A0093|NV5R12B|SATA|480103981056|GPT|4|2|pci-0000:00:17.0-ata-2|1,2,3";
        QTest::newRow("NVMe, names from sysfs")
            << "Norvane N9 1TB" << "NV9A2304001234|NV9A2304001234|N9F1021|NVMe|1000204886016|GPT|0|0|pci-0000:3d:00.0-nvme-1|1,2";
        QTest::newRow("USB") << "Stick 3.0"
                             << "0401396a1c2b|0401396a1c2b|1.00|USB|31914983424|MBR|0|0|pci-0000:00:14.0-usb-0:1:1.0-scsi-0:0:0:0|1,2,5";
        QTest::newRow("loop, named by its image") << "demo disk.img" << "|||Loop|67108864|GPT|0|0|/devices/virtual/block/loop0|1";
    }

    void driveFacts()
    {
        QFETCH(QString, model);
        const SystemInfo info = recordedMachine(true);
        const DriveInfo* drive = findDrive(info, model);
        QVERIFY2(drive, qPrintable(models(info)));
        QTEST(describe(*drive), "expected");
    }

    void partitionFacts_data()
    {
        // id | offset | size | type | GPT type | GPT id | GPT name | MBR type | bootable | logical | file system | label
        // | mount point | device | used
        QTest::addColumn<QString>("model");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("expected");
        QTest::newRow("EFI system") << "Norvane S5 480GB" << 0
            << "1|1048576|536870912|GPT|c12a7328-f81f-11d2-ba4b-00a0c93ec93b|0f3e6a41-77c2-4d8b-a5e0-3b9d14c2f860|"
               "EFI system partition|0|boot||vfat||/boot/efi|/dev/sda1|9000000";
        QTest::newRow("root, GUIDs in capitals") << "Norvane S5 480GB" << 1
            << "2|537919488|107374182400|GPT|4f68bce3-e8cd-4db1-96e7-fbcaf984b709|a3c5e7f9-1b2d-4f60-8a9c-0e1f2a3b4c5d||0|||ext4|"
               "root|/|/dev/sda2|1000000";
        QTest::newRow("legacy bootable, escaped label") << "Norvane S5 480GB" << 2
            << "3|107912101888|372191002624|GPT|933ac7e1-2eb4-4f13-b844-0e14e2aef915|5e6f7081-92a3-44b5-86c7-d8e9fa0b1c2d|home|0|"
               "boot||ext4|home files|/home|/dev/sda3|5000000";
        QTest::newRow("NVMe, not mounted") << "Norvane N9 1TB" << 0
            << "1|1048576|134217728|GPT|ebd0a0a2-b9e5-4433-87c0-68b6b72699c7|77d0e3a2-5b14-4c9e-b3f6-a1d2c4e6f809|"
               "Basic data partition|0|||ntfs|Windows||/dev/nvme0n1p1|0";
        QTest::newRow("btrfs subvolume") << "Norvane N9 1TB" << 1
            << "2|135266304|1000068874240|GPT|0fc63daf-8483-4772-8e79-3d69d8477de4|0b9a8c7d-6e5f-4a3b-9c2d-1e0f9a8b7c6d||0|||btrfs|"
               "data|/data|/dev/nvme0n1p2|5000000";
        QTest::newRow("MBR active") << "Stick 3.0" << 0
                                    << "1|1048576|20480000000|MBR||||c|boot||vfat|Quillet Stick|/home/alex/Quillet Stick|/dev/sdb1|24000000";
        QTest::newRow("extended, its size from the table") << "Stick 3.0" << 1 << "2|20481048576|11433934848|MBR||||5||||||/dev/sdb2|0";
        QTest::newRow("logical") << "Stick 3.0" << 2 << "5|20482097152|10240000000|MBR||||83||logical|ext4|||/dev/sdb5|0";
        // GRUB's core for a BIOS on a GPT disk: the partition such a machine starts from.
        QTest::newRow("BIOS boot") << "demo disk.img" << 0
                                   << "1|1048576|65011712|GPT|21686148-6449-6e6f-744e-656564454649|||0|boot|||||/dev/loop0p1|0";
    }

    void partitionFacts()
    {
        QFETCH(QString, model);
        QFETCH(int, index);
        const SystemInfo info = recordedMachine(true);
        const DriveInfo* drive = findDrive(info, model);
        QVERIFY(drive && index < drive->partitions_size());
        QTEST(describe(drive->partitions(index)), "expected");
    }

    void vanishingDrive_data()
    {
        QTest::addColumn<QString>("trigger");
        QTest::addColumn<QString>("victim");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("drives");
        QTest::newRow("before its partitions") << "sda" << "block/sda" << "Drive sda vanished during the scan; left out"
                                               << "Norvane N9 1TB,Stick 3.0";
        QTest::newRow("among its partitions") << "sdb1" << "block/sdb" << "Drive sdb vanished during the scan; left out"
                                              << "Norvane N9 1TB,Norvane S5 480GB";
    }

    void vanishingDrive()
    {
        QFETCH(QString, trigger);
        QFETCH(QString, victim);
        QFETCH(QString, message);
        QTemporaryDir copy;
        QVERIFY(copy.isValid());
        QCOMPARE(QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-a"), fixtures + QLatin1String("/sys"), copy.path()}), 0);
        const QString sysfs = copy.path() + QLatin1String("/sys");
        QTest::ignoreMessage(QtWarningMsg, qPrintable(message));
        QTEST(models(recordedMachine(false, sysfs, std::make_shared<VanishingSource>(trigger, sysfs + QLatin1Char('/') + victim))),
            "drives");
    }

    void registryIds()
    {
        QVector<DriveRecord> found = {scanned("sda", "sda|3"), scanned("sdb", "sdb|7")};
        DriveRegistry registry([&found] { return found; });
        auto ids = [&registry] {
            QStringList list;
            const SystemInfo info = registry.rescan();
            for (const DriveInfo& drive : info.drives())
                list << QStringLiteral("%1=%2").arg(drive.driveid()).arg(registry.drive(drive.driveid())->name);
            return list.join(QLatin1Char(' '));
        };
        QCOMPARE(ids(), QStringLiteral("0=sda 1=sdb"));
        QCOMPARE(ids(), QStringLiteral("0=sda 1=sdb"));
        // sda unplugged, a new disk comes: the remaining one keeps its id, the new one gets a new id.
        found = {scanned("sdb", "sdb|7"), scanned("sdc", "sdc|9")};
        QCOMPARE(ids(), QStringLiteral("1=sdb 2=sdc"));
        QVERIFY(!registry.drive(0));
        // The same name again, attached anew: another device for the program.
        found = {scanned("sda", "sda|11"), scanned("sdb", "sdb|7"), scanned("sdc", "sdc|9")};
        QCOMPARE(ids(), QStringLiteral("1=sdb 2=sdc 3=sda"));
        QCOMPARE(registry.partition(3, 1)->devicePath, QStringLiteral("/dev/sda1"));
        QVERIFY(!registry.partition(3, 2));
    }

    void loopDevice()
    {
        const QString unavailable = LoopDisk::unavailableReason();
        if (!unavailable.isEmpty())
            QSKIP(qPrintable(QLatin1String("Live loop device test skipped: ") + unavailable));
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString image = folder.filePath(QStringLiteral("disk.img"));
        LoopDisk disk;
#define DISK_STEP(step) QVERIFY2(disk.step, qPrintable(disk.error()))
        DISK_STEP(run(QStringLiteral("truncate"), {QStringLiteral("--size=64M"), image}));
        const QByteArray table = "label: gpt\n"
                                 "start=2048, size=49152, type=0FC63DAF-8483-4772-8E79-3D69D8477DE4, "
                                 "uuid=1C2D3E4F-5A6B-4C7D-8E9F-0A1B2C3D4E5F, name=\"kestravin data\"\n"
                                 "start=51200, size=65536, type=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7, "
                                 "uuid=6A7B8C9D-0E1F-4A2B-9C3D-4E5F6A7B8C9D, name=shared\n";
        DISK_STEP(run(QStringLiteral("sfdisk"), {QStringLiteral("--quiet"), image}, table));
        DISK_STEP(attach(image));
        DISK_STEP(run(QStringLiteral("mkfs.ext4"), {QStringLiteral("-q"), QStringLiteral("-L"), QStringLiteral("kvdata"), disk.partition(1)}));
        DISK_STEP(run(QStringLiteral("mkfs.vfat"), {QStringLiteral("-n"), QStringLiteral("KVSHARED"), disk.partition(2)}));
        QStringList mountPoints = {folder.filePath(QStringLiteral("data")), folder.filePath(QStringLiteral("shared"))};
        DISK_STEP(mount(disk.partition(1), mountPoints[0]));
        // Some kernels are built without FAT: the partition is then still found, unmounted.
        if (kernelMounts("vfat")) {
            DISK_STEP(mount(disk.partition(2), mountPoints[1]));
        } else {
            qInfo("This kernel cannot mount vfat: the vfat partition stays unmounted");
            mountPoints[1].clear();
        }
        QStringList used;
        for (const QString& mountPoint : mountPoints) {
            struct statvfs stats = {};
            for (int i = 1; i <= 3 && !mountPoint.isEmpty(); ++i) {
                QFile data(mountPoint + QStringLiteral("/file%1.bin").arg(i));
                QVERIFY(data.open(QIODevice::WriteOnly) && data.write(QByteArray(i * 300000, 'k')) == i * 300000);
            }
            QVERIFY(mountPoint.isEmpty() || ::statvfs(QFile::encodeName(mountPoint).constData(), &stats) == 0);
            used << QString::number(quint64(stats.f_blocks - stats.f_bfree) * stats.f_frsize);
        }

        EnumeratorOptions options;
        options.includeLoop = true;
        QVector<DriveRecord> drives = DriveEnumerator(options, std::make_shared<LivePropertySource>()).enumerate();
        drives.erase(std::remove_if(drives.begin(), drives.end(),
                         [&disk](const DriveRecord& drive) { return drive.devicePath != disk.device(); }),
            drives.end());
        const SystemInfo info = toSystemInfo(drives);
        QCOMPARE(info.drives_size(), 1);
        QCOMPARE(describe(info.drives(0)), QStringLiteral("|||Loop|67108864|GPT|0|0|%1|1,2").arg(drives[0].instancePath));
        QCOMPARE(describe(info.drives(0).partitions(0)),
            QStringLiteral("1|1048576|25165824|GPT|0fc63daf-8483-4772-8e79-3d69d8477de4|1c2d3e4f-5a6b-4c7d-8e9f-0a1b2c3d4e5f|"
                           "kestravin data|0|||ext4|kvdata|%1|%2|%3")
                .arg(mountPoints[0], disk.partition(1), used[0]));
        QCOMPARE(describe(info.drives(0).partitions(1)),
            QStringLiteral("2|26214400|33554432|GPT|ebd0a0a2-b9e5-4433-87c0-68b6b72699c7|6a7b8c9d-0e1f-4a2b-9c3d-4e5f6a7b8c9d|"
                           "shared|0|||vfat|KVSHARED|%1|%2|%3")
                .arg(mountPoints[1], disk.partition(2), used[1]));
    }
};

QTEST_GUILESS_MAIN(DaemonDevicesTest)
#include "tst_daemondevices.moc"
