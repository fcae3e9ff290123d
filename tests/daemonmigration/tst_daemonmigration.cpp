#include "migration/DiskEngines.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

using namespace Velmora::Daemon::Migration;
namespace Wire = Velmora::Message;

namespace {

constexpr quint64 MiB = 1024 * 1024;
const char* const EspGuid = "C12A7328-F81F-11D2-BA4B-00A0C93EC93B";
const char* const LinuxGuid = "0FC63DAF-8483-4772-8E79-3D69D8477DE4";
const char* const BasicDataGuid = "EBD0A0A2-B9E5-4433-87C0-68B6B72699C7";
const char* const SwapGuid = "0657FD6D-A4AB-43C4-84E5-0933C84B4F4F";

QStringList g_log;

void captureLog(QtMsgType, const QMessageLogContext& context, const QString& text)
{
    if (QByteArray(context.category).startsWith("kestravind.migration"))
        g_log << text;
}

QByteArray tool(const QString& program, const QStringList& arguments, const QByteArray& input = {}, bool* ok = nullptr)
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    const bool finished = process.waitForFinished(60000);
    if (ok)
        *ok = finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return process.readAllStandardOutput().trimmed();
}

// A sparse image under the test's own folder, attached with its partitions; detached by the path
// it was given, whatever the outcome.
class LoopDisk
{
public:
    LoopDisk(const QString& folder, const QString& name, quint64 size, bool readOnly = false)
    {
        QFile image(folder + QLatin1Char('/') + name);
        if (image.open(QIODevice::WriteOnly) && image.resize(qint64(size)))
            path = QString::fromLatin1(tool(QStringLiteral("losetup"), {QStringLiteral("-P"), QStringLiteral("-f"),
                readOnly ? QStringLiteral("-r") : QStringLiteral("-P"), QStringLiteral("--show"), image.fileName()}));
    }
    ~LoopDisk()
    {
        if (!mountPoint.isEmpty())
            tool(QStringLiteral("umount"), {mountPoint});
        if (path.startsWith(QLatin1String("/dev/loop")))
            tool(QStringLiteral("losetup"), {QStringLiteral("-d"), path});
    }
    QString table() const { return QString::fromUtf8(tool(QStringLiteral("sfdisk"), {QStringLiteral("--json"), path})); }
    QString partition(int number) const { return path + QStringLiteral("p%1").arg(number); }

    QString path;
    QString mountPoint;
};

class Recorder : public CommandRunner
{
public:
    QStringList ran;

protected:
    CommandResult execute(const Command& command, const std::atomic_bool&) override
    {
        ran << command.text();
        return {};
    }
};

Wire::PartitionInfo planned(quint64 offsetMiB, quint64 sizeMiB, const char* gptType, quint32 mbrType = 0)
{
    Wire::PartitionInfo partition;
    partition.set_offset(offsetMiB * MiB);
    partition.set_size(sizeMiB * MiB);
    partition.set_type(gptType ? Wire::PartitionInfo::GPT : Wire::PartitionInfo::MBR);
    partition.set_gpttype(gptType ? gptType : "");
    partition.set_mbrtype(mbrType);
    return partition;
}

} // namespace

class DaemonMigrationTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { g_log.clear(); }
    void cleanDiskRefusals_data();
    void cleanDiskRefusals();
    void layoutOnLoopDisk_data();
    void layoutOnLoopDisk();
    void badPlansLeaveTheDisk_data();
    void badPlansLeaveTheDisk();
    void missingTargetsRefused_data();
    void missingTargetsRefused();

private:
    std::unique_ptr<LoopDisk> disk(quint64 size, bool readOnly = false);
    // A disk with one ext4 partition, mounted under the test's folder.
    std::unique_ptr<LoopDisk> mountedDisk();

    QTemporaryDir m_folder;
    int m_images = 0;
    std::atomic_bool m_stop{false};
};

void DaemonMigrationTest::initTestCase()
{
    if (geteuid() != 0)
        QSKIP("Needs root: the migration module is tried on loop devices");
    QVERIFY(m_folder.isValid());
    if (!disk(MiB)->path.startsWith(QLatin1String("/dev/loop")))
        QSKIP("This machine gives no loop devices");
    qInstallMessageHandler(captureLog);
}

std::unique_ptr<LoopDisk> DaemonMigrationTest::disk(quint64 size, bool readOnly)
{
    return std::make_unique<LoopDisk>(m_folder.path(), QStringLiteral("disk%1.img").arg(++m_images), size, readOnly);
}

std::unique_ptr<LoopDisk> DaemonMigrationTest::mountedDisk()
{
    auto mounted = disk(64 * MiB);
    bool ok = false;
    tool(QStringLiteral("sfdisk"), {QStringLiteral("-q"), mounted->path}, "label: gpt\nstart=2048, size=40960\n", &ok);
    tool(QStringLiteral("partx"), {QStringLiteral("-u"), mounted->path});
    tool(QStringLiteral("mkfs.ext4"), {QStringLiteral("-q"), mounted->partition(1)}, {}, &ok);
    const QString mountPoint = m_folder.path() + QStringLiteral("/mnt%1").arg(m_images);
    QDir().mkpath(mountPoint);
    tool(QStringLiteral("mount"), {mounted->partition(1), mountPoint}, {}, &ok);
    if (ok)
        mounted->mountPoint = mountPoint;
    return mounted;
}

void DaemonMigrationTest::cleanDiskRefusals_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("reason");

    QTest::newRow("the system's own disk") << "system" << int(Wire::ACCESS_DENIED) << "it holds the running system";
    QTest::newRow("the source") << "source" << int(Wire::ACCESS_DENIED) << "it is the source of the migration";
    QTest::newRow("a mounted partition") << "mounted" << int(Wire::ACCESS_DENIED) << "it has a file system mounted at";
    QTest::newRow("read-only") << "readonly" << int(Wire::ACCESS_DENIED) << "it is read-only";
    QTest::newRow("not in the list") << "unlisted" << int(Wire::NOT_FOUND) << "it is not in the drive list";
    QTest::newRow("a partition, not a disk") << "partition" << int(Wire::INVALID_REQUEST) << "it is not a whole disk";
}

void DaemonMigrationTest::cleanDiskRefusals()
{
    QFETCH(QString, kind);
    QFETCH(int, code);
    QFETCH(QString, reason);

    // The system's disk is only ever named, never attached or written: nothing here runs a tool.
    std::unique_ptr<LoopDisk> target = kind == QLatin1String("mounted") || kind == QLatin1String("partition")
        ? mountedDisk() : disk(16 * MiB, kind == QLatin1String("readonly"));
    if (kind != QLatin1String("system") && kind != QLatin1String("unlisted"))
        QVERIFY(!target->path.isEmpty());
    if (kind == QLatin1String("mounted"))
        QVERIFY(!target->mountPoint.isEmpty());
    const QString system = QStringLiteral("/dev/vda");
    if (kind == QLatin1String("system") && !QFile::exists(system))
        QSKIP("This machine has no /dev/vda");
    const QString path = kind == QLatin1String("system") ? system
        : kind == QLatin1String("partition")             ? target->partition(1)
        : kind == QLatin1String("unlisted")              ? QString()
                                                         : target->path;
    const QString tableBefore = target->table();

    Recorder recorder;
    DiskEngines engines(recorder, [path](quint32 id) { return id == 3 ? path : QString(); });
    Wire::CleanDisk request;
    request.set_driveid(3);
    request.set_partitionstyle(Wire::CleanDisk::GPT);
    const Wire::CleanDisk answer = engines.cleanDisk(request, kind == QLatin1String("source") ? path : QString(), m_stop);

    QCOMPARE(int(answer.code()), code);
    QCOMPARE(answer.driveid(), 3u);
    QVERIFY2(recorder.ran.isEmpty(), qPrintable(recorder.ran.join(QLatin1Char('\n'))));
    QVERIFY2(g_log.filter(QStringLiteral("Refused CleanDisk on drive 3")).filter(reason).size() == 1,
        qPrintable(g_log.join(QLatin1Char('\n'))));
    QCOMPARE(target->table(), tableBefore);
    // A refused disk does not count as cleaned: nothing may be partitioned on it either.
    Wire::PartitionCreate create;
    create.set_driveid(3);
    *create.mutable_partition() = planned(1, 1, LinuxGuid);
    QVERIFY(engines.createPartition(create, m_stop).code() != Wire::SUCCESS);
    QVERIFY(recorder.ran.isEmpty());
}

void DaemonMigrationTest::layoutOnLoopDisk_data()
{
    QTest::addColumn<bool>("gpt");
    QTest::addColumn<QStringList>("fileSystems"); // one per partition, "file system:label"

    QTest::newRow("GPT") << true
                         << QStringList{"vfat:ESP", "ext4:root", "xfs:data", "btrfs:tank", "ntfs:Windows", "swap:swp"};
    QTest::newRow("MBR") << false << QStringList{"vfat:BOOT", "ext4:root", "swap:swp"};
}

void DaemonMigrationTest::layoutOnLoopDisk()
{
    QFETCH(bool, gpt);
    QFETCH(QStringList, fileSystems);
    const char* const gptTypes[] = {EspGuid, LinuxGuid, LinuxGuid, LinuxGuid, BasicDataGuid, SwapGuid};
    const quint32 mbrTypes[] = {0x0c, 0x83, 0x82};
    const quint64 sizes[] = {40, 64, 320, 128, 16, 16}; // MiB; xfs wants 300 at least

    auto destination = disk(800 * MiB);
    QVERIFY(!destination->path.isEmpty());
    // An old table and file system that the clean has to take away.
    bool ok = false;
    tool(QStringLiteral("sfdisk"), {QStringLiteral("-q"), destination->path}, "label: dos\nstart=2048, size=40960\n", &ok);
    QVERIFY(ok);
    ProcessRunner runner;
    DiskEngines engines(runner, [&destination](quint32 id) { return id == 5 ? destination->path : QString(); });
    Wire::CleanDisk clean;
    clean.set_driveid(5);
    clean.set_partitionstyle(gpt ? Wire::CleanDisk::GPT : Wire::CleanDisk::MBR);
    QCOMPARE(int(engines.cleanDisk(clean, QString(), m_stop).code()), int(Wire::SUCCESS));

    quint64 offset = 1;
    for (int i = 0; i < fileSystems.size(); ++i) {
        Wire::PartitionCreate create;
        create.set_driveid(5);
        *create.mutable_partition() = planned(offset, sizes[i], gpt ? gptTypes[i] : nullptr, gpt ? 0 : mbrTypes[i]);
        create.mutable_partition()->set_id(10 + i);
        const Wire::PartitionCreate created = engines.createPartition(create, m_stop);
        QVERIFY2(created.code() == Wire::SUCCESS, qPrintable(g_log.join(QLatin1Char('\n'))));
        QCOMPARE(created.partition().id(), quint32(10 + i));
        QCOMPARE(created.newpartitionid(), quint32(i + 1));
        offset += sizes[i];

        Wire::PartitionFormat format;
        format.set_driveid(5);
        format.mutable_partition()->set_id(created.newpartitionid());
        format.mutable_partition()->set_filesystem(fileSystems[i].section(QLatin1Char(':'), 0, 0).toStdString());
        format.mutable_partition()->set_label(fileSystems[i].section(QLatin1Char(':'), 1).toStdString());
        QVERIFY2(engines.formatPartition(format, m_stop).code() == Wire::SUCCESS, qPrintable(g_log.join(QLatin1Char('\n'))));
    }

    const QJsonObject table = QJsonDocument::fromJson(destination->table().toUtf8()).object().value("partitiontable").toObject();
    QCOMPARE(table.value("label").toString(), gpt ? QStringLiteral("gpt") : QStringLiteral("dos"));
    const QJsonArray partitions = table.value("partitions").toArray();
    QCOMPARE(partitions.size(), fileSystems.size());
    offset = 1;
    for (int i = 0; i < partitions.size(); ++i) {
        const QJsonObject partition = partitions.at(i).toObject();
        QCOMPARE(quint64(partition.value("start").toDouble()) * 512, offset * MiB);
        QCOMPARE(quint64(partition.value("size").toDouble()) * 512, sizes[i] * MiB);
        QCOMPARE(partition.value("type").toString(), gpt ? QString::fromLatin1(gptTypes[i]) : QString::number(mbrTypes[i], 16));
        offset += sizes[i];
        const QList<QByteArray> probe = tool(QStringLiteral("blkid"), {QStringLiteral("-p"), QStringLiteral("-o"),
            QStringLiteral("export"), destination->partition(i + 1)}).split('\n');
        QVERIFY2(probe.contains("TYPE=" + fileSystems[i].section(QLatin1Char(':'), 0, 0).toLatin1()), probe.join(' ').constData());
        QVERIFY2(probe.contains("LABEL=" + fileSystems[i].section(QLatin1Char(':'), 1).toLatin1()), probe.join(' ').constData());
    }
}

void DaemonMigrationTest::badPlansLeaveTheDisk_data()
{
    QTest::addColumn<quint64>("offsetMiB");
    QTest::addColumn<quint64>("sizeMiB");
    QTest::addColumn<bool>("cleaned");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("reason");

    QTest::newRow("overlap") << quint64(8) << quint64(8) << true << int(Wire::INVALID_REQUEST)
                             << "the partition overlaps partition 1";
    QTest::newRow("beyond the end") << quint64(17) << quint64(64) << true << int(Wire::INVALID_REQUEST)
                                    << "the partition ends beyond the end of the disk";
    QTest::newRow("not a cleaned disk") << quint64(17) << quint64(8) << false << int(Wire::ACCESS_DENIED)
                                        << "it has not been cleaned for a migration";
}

void DaemonMigrationTest::badPlansLeaveTheDisk()
{
    QFETCH(quint64, offsetMiB);
    QFETCH(quint64, sizeMiB);
    QFETCH(bool, cleaned);
    QFETCH(int, code);
    QFETCH(QString, reason);

    auto destination = disk(64 * MiB);
    bool ok = false;
    tool(QStringLiteral("sfdisk"), {QStringLiteral("-q"), destination->path}, "label: gpt\n", &ok);
    QVERIFY(ok);
    ProcessRunner runner;
    DiskEngines engines(runner, [&destination](quint32) { return destination->path; });
    if (cleaned) {
        Wire::CleanDisk clean;
        clean.set_partitionstyle(Wire::CleanDisk::GPT);
        QCOMPARE(int(engines.cleanDisk(clean, QString(), m_stop).code()), int(Wire::SUCCESS));
        Wire::PartitionCreate first;
        *first.mutable_partition() = planned(1, 16, LinuxGuid);
        QCOMPARE(int(engines.createPartition(first, m_stop).code()), int(Wire::SUCCESS));
    }
    const QString before = destination->table();

    Wire::PartitionCreate create;
    *create.mutable_partition() = planned(offsetMiB, sizeMiB, LinuxGuid);
    QCOMPARE(int(engines.createPartition(create, m_stop).code()), code);
    QVERIFY2(!g_log.filter(reason).isEmpty(), qPrintable(g_log.join(QLatin1Char('\n'))));
    QCOMPARE(destination->table(), before);

    // A file system this system cannot make is its own refusal, and the partition stays as it was.
    Wire::PartitionFormat format;
    format.mutable_partition()->set_id(1);
    format.mutable_partition()->set_filesystem("zfs_member");
    QCOMPARE(int(engines.formatPartition(format, m_stop).code()), cleaned ? int(Wire::INVALID_REQUEST) : code);
    QCOMPARE(destination->table(), before);
}

void DaemonMigrationTest::missingTargetsRefused_data()
{
    QTest::addColumn<bool>("format");
    QTest::addColumn<QString>("logLine");
    QTest::newRow("create on no drive") << false << "Refused PartitionCreate on drive 3 (): it is not in the drive list";
    QTest::newRow("format on no drive") << true << "Refused PartitionFormat on drive 3 (): it is not in the drive list";
    QTest::newRow("format of no partition") << true << "Refused PartitionFormat on drive 3 (%1): it has no partition 2";
}

void DaemonMigrationTest::missingTargetsRefused()
{
    QFETCH(bool, format);
    QFETCH(QString, logLine);
    const bool listed = logLine.contains(QLatin1String("%1"));
    const auto target = disk(16 * MiB);
    const QString path = listed ? target->path : QString();
    ProcessRunner runner;
    DiskEngines engines(runner, [path](quint32) { return path; });
    const Wire::CleanDisk clean;
    QCOMPARE(int(engines.cleanDisk(clean, QString(), m_stop).code()), int(listed ? Wire::SUCCESS : Wire::NOT_FOUND));
    const QString tableBefore = target->table();
    g_log.clear();

    Wire::PartitionFormat request;
    request.set_driveid(3);
    *request.mutable_partition() = planned(1, 8, LinuxGuid);
    request.mutable_partition()->set_id(2);
    Wire::PartitionCreate create;
    create.set_driveid(3);
    *create.mutable_partition() = planned(1, 8, LinuxGuid);
    const Wire::Code code = format ? engines.formatPartition(request, m_stop).code() : engines.createPartition(create, m_stop).code();
    QCOMPARE(code, Wire::NOT_FOUND);
    QCOMPARE(target->table(), tableBefore);
    QVERIFY2(g_log.contains(logLine.arg(path)), qPrintable(g_log.join(QLatin1Char('\n'))));
}

QTEST_GUILESS_MAIN(DaemonMigrationTest)
#include "tst_daemonmigration.moc"
