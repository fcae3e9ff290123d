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
using DriveInfo = Velmora::Message::SystemInfo::DriveInfo;
using PartitionInfo = Velmora::Message::PartitionInfo;

namespace {

const QString fixtures = QStringLiteral(KESTRAVIND_DEVICES_FIXTURES);

// Stands in for statvfs over the recorded mount points, which do not exist on this machine.
std::optional<quint64> recordedUsage(const QString& mountPoint)
{
    return static_cast<quint64>(mountPoint.size()) * 1000000;
}

Velmora::Message::SystemInfo recordedMachine(bool includeLoop, const QString& sysfs = fixtures + QLatin1String("/sys"),
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

const DriveInfo* findDrive(const Velmora::Message::SystemInfo& info, const QString& model)
{
    for (const DriveInfo& drive : info.drives()) {
        if (QString::fromStdString(drive.model()) == model)
            return &drive;
    }
    return nullptr;
}

QString models(const Velmora::Message::SystemInfo& info)
{
    QStringList names;
    for (const DriveInfo& drive : info.drives())
        names << QString::fromStdString(drive.model());
    return names.join(QLatin1Char(','));
}

QString partitionIds(const DriveInfo& drive)
{
    QStringList ids;
    for (const PartitionInfo& partition : drive.partitions())
        ids << QString::number(partition.id());
    return ids.join(QLatin1Char(','));
}

// Removes a path of a copied sysfs tree at the moment the scan asks for a device's properties, as
// if the device went away in the middle of it.
class VanishingSource : public PropertySource
{
public:
    VanishingSource(const QString& trigger, const QString& victim)
        : m_trigger(trigger)
        , m_victim(victim)
        , m_recorded(fixtures + QLatin1String("/udev"))
    {
    }
    Properties properties(const QString& name, const QString& devicePath) override
    {
        if (name == m_trigger)
            QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-r"), m_victim});
        return m_recorded.properties(name, devicePath);
    }

private:
    QString m_trigger;
    QString m_victim;
    FilePropertySource m_recorded;
};

bool kernelMounts(const QByteArray& fileSystem)
{
    QFile list(QStringLiteral("/proc/filesystems"));
    if (!list.open(QIODevice::ReadOnly))
        return false;
    for (const QByteArray& line : list.readAll().split('\n')) {
        if (line.split('\t').value(1) == fileSystem)
            return true;
    }
    return false;
}

DriveRecord scanned(const QString& name, const QString& identity)
{
    DriveRecord drive;
    drive.name = name;
    drive.identity = identity;
    drive.devicePath = QLatin1String("/dev/") + name;
    PartitionRecord partition;
    partition.id = 1;
    partition.devicePath = drive.devicePath + QLatin1Char('1');
    drive.partitions.append(partition);
    return drive;
}

} // namespace

class DaemonDevicesTest : public QObject
{
    Q_OBJECT

private slots:
    void mountPoint_data();
    void mountPoint();
    void drives_data();
    void drives();
    void driveFacts_data();
    void driveFacts();
    void partitionFacts_data();
    void partitionFacts();
    void vanishingDevice_data();
    void vanishingDevice();
    void registryIds();
    void loopDevice();
};

void DaemonDevicesTest::mountPoint_data()
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

void DaemonDevicesTest::mountPoint()
{
    QFETCH(QString, device);
    QFETCH(QString, source);
    QFETCH(QString, expected);
    const MountTable table = MountTable::fromFile(fixtures + QLatin1String("/mountinfo"));
    QCOMPARE(table.mounts().size(), 10); // the line that is no mount left out
    const MountTable::Mount* mount = table.mountOf(device, source);
    QCOMPARE(mount ? mount->mountPoint : QString(), expected);
}

void DaemonDevicesTest::drives_data()
{
    QTest::addColumn<bool>("includeLoop");
    QTest::addColumn<QString>("expected");
    QTest::newRow("drives only") << false << "Norvane N9 1TB,Norvane S5 480GB,Stick 3.0";
    QTest::newRow("with loop devices") << true << "demo disk.img,Norvane N9 1TB,Norvane S5 480GB,Stick 3.0";
}

void DaemonDevicesTest::drives()
{
    QFETCH(bool, includeLoop);
    QFETCH(QString, expected);
    QCOMPARE(models(recordedMachine(includeLoop)), expected);
}

void DaemonDevicesTest::driveFacts_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("serial");
    QTest::addColumn<QString>("firmware");
    QTest::addColumn<QString>("type");
    QTest::addColumn<quint64>("size");
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("supportedSpeed");
    QTest::addColumn<int>("currentSpeed");
    QTest::addColumn<QString>("instancePath");
    QTest::addColumn<QString>("partitions");
    QTest::newRow("SATA") << "Norvane S5 480GB" << "NV5S2241A0093" << "NV5R12B" << "SATA" << quint64(480103981056)
                          << int(DriveInfo::GPT) << 4 << 2 << "pci-0000:00:17.0-ata-2" << "1,2,3";
    QTest::newRow("NVMe, names from sysfs") << "Norvane N9 1TB" << "NV9A2304001234" << "N9F1021" << "NVMe"
                                            << quint64(1000204886016) << int(DriveInfo::GPT) << 0 << 0
                                            << "pci-0000:3d:00.0-nvme-1" << "1,2";
    QTest::newRow("USB") << "Stick 3.0" << "0401396a1c2b" << "1.00" << "USB" << quint64(31914983424)
                         << int(DriveInfo::MBR) << 0 << 0 << "pci-0000:00:14.0-usb-0:1:1.0-scsi-0:0:0:0" << "1,2,5";
    QTest::newRow("loop") << "demo disk.img" << "" << "" << "Loop" << quint64(67108864) << int(DriveInfo::GPT) << 0
                          << 0 << "/devices/virtual/block/loop0" << "1";
}

void DaemonDevicesTest::driveFacts()
{
    QFETCH(QString, model);
    const Velmora::Message::SystemInfo info = recordedMachine(true);
    const DriveInfo* drive = findDrive(info, model);
    QVERIFY2(drive, qPrintable(models(info)));
    QTEST(QString::fromStdString(drive->serial()), "serial");
    QTEST(QString::fromStdString(drive->warrantyinfo()), "serial");
    QTEST(QString::fromStdString(drive->firmwareversion()), "firmware");
    QTEST(QString::fromStdString(drive->type()), "type");
    QTEST(quint64(drive->size()), "size");
    QTEST(int(drive->partitionformatstyle()), "style");
    QTEST(int(drive->satasupportedspeed()), "supportedSpeed");
    QTEST(int(drive->satacurrentspeed()), "currentSpeed");
    QTEST(QString::fromStdString(drive->deviceinstancepath()), "instancePath");
    QTEST(partitionIds(*drive), "partitions");
}

void DaemonDevicesTest::partitionFacts_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("index");
    QTest::addColumn<quint64>("offset");
    QTest::addColumn<quint64>("size");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("gptType");
    QTest::addColumn<QString>("gptName");
    QTest::addColumn<int>("mbrType");
    QTest::addColumn<bool>("bootable");
    QTest::addColumn<bool>("logical");
    QTest::addColumn<QString>("fileSystem");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("letter");
    QTest::addColumn<QString>("volume");
    const int gpt = PartitionInfo::GPT;
    const int mbr = PartitionInfo::MBR;
    QTest::newRow("EFI system") << "Norvane S5 480GB" << 0 << quint64(1048576) << quint64(536870912) << gpt
                                << "c12a7328-f81f-11d2-ba4b-00a0c93ec93b" << "EFI system partition" << 0 << true
                                << false << "vfat" << "" << "/boot/efi" << "/dev/sda1";
    QTest::newRow("root, type GUID in capitals") << "Norvane S5 480GB" << 1 << quint64(537919488)
                                                 << quint64(107374182400) << gpt
                                                 << "4f68bce3-e8cd-4db1-96e7-fbcaf984b709" << "" << 0 << false << false
                                                 << "ext4" << "root" << "/" << "/dev/sda2";
    QTest::newRow("legacy bootable, escaped label") << "Norvane S5 480GB" << 2 << quint64(107912101888)
                                                    << quint64(372191002624) << gpt
                                                    << "933ac7e1-2eb4-4f13-b844-0e14e2aef915" << "home" << 0 << true
                                                    << false << "ext4" << "home files" << "/home" << "/dev/sda3";
    QTest::newRow("NVMe, not mounted") << "Norvane N9 1TB" << 0 << quint64(1048576) << quint64(134217728) << gpt
                                       << "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7" << "Basic data partition" << 0
                                       << false << false << "ntfs" << "Windows" << "" << "/dev/nvme0n1p1";
    QTest::newRow("btrfs subvolume") << "Norvane N9 1TB" << 1 << quint64(135266304) << quint64(1000068874240) << gpt
                                     << "0fc63daf-8483-4772-8e79-3d69d8477de4" << "" << 0 << false << false << "btrfs"
                                     << "data" << "/data" << "/dev/nvme0n1p2";
    QTest::newRow("MBR active") << "Stick 3.0" << 0 << quint64(1048576) << quint64(20480000000) << mbr << "" << ""
                                << 0x0c << true << false << "vfat" << "Quillet Stick" << "/home/alex/Quillet Stick"
                                << "/dev/sdb1";
    QTest::newRow("extended, its size from the table") << "Stick 3.0" << 1 << quint64(20481048576)
                                                       << quint64(11433934848) << mbr << "" << "" << 0x05 << false
                                                       << false << "" << "" << "" << "/dev/sdb2";
    QTest::newRow("logical") << "Stick 3.0" << 2 << quint64(20482097152) << quint64(10240000000) << mbr << "" << ""
                             << 0x83 << false << true << "ext4" << "" << "" << "/dev/sdb5";
}

void DaemonDevicesTest::partitionFacts()
{
    QFETCH(QString, model);
    QFETCH(int, index);
    QFETCH(QString, letter);
    const Velmora::Message::SystemInfo info = recordedMachine(false);
    const DriveInfo* drive = findDrive(info, model);
    QVERIFY(drive);
    QVERIFY(index < drive->partitions_size());
    const PartitionInfo& partition = drive->partitions(index);
    QTEST(quint64(partition.offset()), "offset");
    QTEST(quint64(partition.size()), "size");
    QTEST(int(partition.type()), "type");
    QTEST(QString::fromStdString(partition.gpttype()), "gptType");
    QTEST(QString::fromStdString(partition.gptname()), "gptName");
    QTEST(int(partition.mbrtype()), "mbrType");
    QTEST(partition.isbootable(), "bootable");
    QTEST(partition.islogical(), "logical");
    QTEST(QString::fromStdString(partition.filesystem()), "fileSystem");
    QTEST(QString::fromStdString(partition.label()), "label");
    QCOMPARE(QString::fromStdString(partition.letter()), letter);
    QTEST(QString::fromStdString(partition.volumename()), "volume");
    QCOMPARE(quint64(partition.used()), letter.isEmpty() ? 0 : *recordedUsage(letter));
}

void DaemonDevicesTest::vanishingDevice_data()
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

void DaemonDevicesTest::vanishingDevice()
{
    QFETCH(QString, trigger);
    QFETCH(QString, victim);
    QFETCH(QString, message);
    QTemporaryDir copy;
    QVERIFY(copy.isValid());
    QCOMPARE(QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-a"), fixtures + QLatin1String("/sys"), copy.path()}), 0);
    const QString sysfs = copy.path() + QLatin1String("/sys");

    QTest::ignoreMessage(QtWarningMsg, qPrintable(message));
    const Velmora::Message::SystemInfo info
        = recordedMachine(false, sysfs, std::make_shared<VanishingSource>(trigger, sysfs + QLatin1Char('/') + victim));
    QTEST(models(info), "drives");
}

void DaemonDevicesTest::registryIds()
{
    QVector<DriveRecord> found = {scanned("sda", "sda|3"), scanned("sdb", "sdb|7")};
    DriveRegistry registry([&found] { return found; });
    auto ids = [&registry] {
        QStringList list;
        const Velmora::Message::SystemInfo info = registry.rescan();
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

void DaemonDevicesTest::loopDevice()
{
    const QString unavailable = LoopDisk::unavailableReason();
    if (!unavailable.isEmpty())
        QSKIP(qPrintable(QLatin1String("Live loop device test skipped: ") + unavailable));

    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    LoopDisk disk;
    const QByteArray script = "label: gpt\n"
                              "start=2048, size=49152, type=0FC63DAF-8483-4772-8E79-3D69D8477DE4, "
                              "uuid=1C2D3E4F-5A6B-4C7D-8E9F-0A1B2C3D4E5F, name=\"kestravin data\"\n"
                              "start=51200, size=65536, type=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7, "
                              "uuid=6A7B8C9D-0E1F-4A2B-9C3D-4E5F6A7B8C9D, name=shared\n";
    QVERIFY2(disk.partition(folder.filePath(QStringLiteral("disk.img")), 64 << 20, script), qPrintable(disk.error()));
    QVERIFY2(disk.attach(folder.filePath(QStringLiteral("disk.img"))), qPrintable(disk.error()));
    QVERIFY2(disk.format(1, QStringLiteral("mkfs.ext4"), {QStringLiteral("-q"), QStringLiteral("-L"), QStringLiteral("kvdata")}),
        qPrintable(disk.error()));
    QVERIFY2(disk.format(2, QStringLiteral("mkfs.vfat"), {QStringLiteral("-n"), QStringLiteral("KVSHARED")}), qPrintable(disk.error()));
    QStringList mountPoints = {folder.filePath(QStringLiteral("data")), folder.filePath(QStringLiteral("shared"))};
    QVERIFY2(disk.mount(1, QStringLiteral("ext4"), mountPoints[0]), qPrintable(disk.error()));
    // Some kernels are built without FAT: the partition is then still found, unmounted.
    if (kernelMounts("vfat")) {
        QVERIFY2(disk.mount(2, QStringLiteral("vfat"), mountPoints[1]), qPrintable(disk.error()));
    } else {
        qInfo("This kernel cannot mount vfat: the vfat partition stays unmounted");
        mountPoints[1].clear();
    }
    for (const QString& mountPoint : mountPoints) {
        for (int i = 1; i <= 3 && !mountPoint.isEmpty(); ++i) {
            QFile file(mountPoint + QStringLiteral("/file%1.bin").arg(i));
            QVERIFY(file.open(QIODevice::WriteOnly));
            QCOMPARE(file.write(QByteArray(i * 300000, 'k')), qint64(i * 300000));
        }
    }
    ::sync();

    EnumeratorOptions options;
    options.includeLoop = true;
    DriveEnumerator enumerator(options, std::make_shared<LivePropertySource>());
    const QVector<DriveRecord> drives = enumerator.enumerate();
    const auto drive = std::find_if(drives.cbegin(), drives.cend(),
        [&disk](const DriveRecord& record) { return record.devicePath == disk.device(); });
    QVERIFY2(drive != drives.cend(), qPrintable(disk.device() + QLatin1String(" not found")));
    QCOMPARE(drive->busType, QStringLiteral("Loop"));
    QCOMPARE(drive->size, quint64(64 << 20));
    QCOMPARE(drive->partitionStyle, PartitionStyle::Gpt);
    QCOMPARE(drive->partitions.size(), 2);

    const QStringList types = {QStringLiteral("0fc63daf-8483-4772-8e79-3d69d8477de4"), QStringLiteral("ebd0a0a2-b9e5-4433-87c0-68b6b72699c7")};
    const QStringList ids = {QStringLiteral("1c2d3e4f-5a6b-4c7d-8e9f-0a1b2c3d4e5f"), QStringLiteral("6a7b8c9d-0e1f-4a2b-9c3d-4e5f6a7b8c9d")};
    const QStringList names = {QStringLiteral("kestravin data"), QStringLiteral("shared")};
    const QStringList fileSystems = {QStringLiteral("ext4"), QStringLiteral("vfat")};
    const QStringList labels = {QStringLiteral("kvdata"), QStringLiteral("KVSHARED")};
    const QList<quint64> offsets = {1 << 20, 25 << 20};
    const QList<quint64> sizes = {24 << 20, 32 << 20};
    for (int i = 0; i < 2; ++i) {
        const PartitionRecord& partition = drive->partitions.at(i);
        QCOMPARE(partition.id, quint32(i + 1));
        QCOMPARE(partition.devicePath, disk.partitionDevice(i + 1));
        QCOMPARE(partition.offset, offsets[i]);
        QCOMPARE(partition.size, sizes[i]);
        QCOMPARE(partition.type, PartitionStyle::Gpt);
        QCOMPARE(partition.gptType, types[i]);
        QCOMPARE(partition.gptId, ids[i]);
        QCOMPARE(partition.gptName, names[i]);
        QCOMPARE(partition.fileSystem, fileSystems[i]);
        QCOMPARE(partition.label, labels[i]);
        QCOMPARE(partition.mountPoint, mountPoints[i]);
        if (mountPoints[i].isEmpty()) {
            QCOMPARE(partition.used, quint64(0));
            continue;
        }
        struct statvfs stats;
        QCOMPARE(::statvfs(QFile::encodeName(mountPoints[i]).constData(), &stats), 0);
        QCOMPARE(partition.used, quint64(stats.f_blocks - stats.f_bfree) * stats.f_frsize);
        QVERIFY(partition.used >= 1800000);
    }
}

QTEST_GUILESS_MAIN(DaemonDevicesTest)
#include "tst_daemondevices.moc"
