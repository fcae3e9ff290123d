#include "boot/Bootability.h"
#include "boot/BootabilityCode.h"
#include "boot/DeviceTable.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

using namespace Velmora::Daemon::Boot;

namespace {

const QString OldRoot = QStringLiteral("3f1c2a9e-5b7d-4e21-9a0c-1d2e3f4a5b6c");
const QString NewRoot = QStringLiteral("8a7b6c5d-4e3f-4a1b-8c9d-0e1f2a3b4c5d");

// The source disk sda and the destination sdb: the root, a swap without a label on the
// destination, and an EFI partition whose UUID vfat writes in capitals.
QVector<IdentityPair> pairs()
{
    return {
        {{"/dev/sda2", OldRoot, "11111111-02", "old root", "ext4"}, {"/dev/sdb2", NewRoot, "22222222-02", "new root", "ext4"}},
        {{"/dev/sda3", "0b1c-swap-old", "11111111-03", "oldswap", "swap"}, {"/dev/sdb3", "9d8e-swap-new", "", "", "swap"}},
        {{"/dev/sda1", "ABCD-1234", "11111111-01", "", "vfat"}, {"/dev/sdb1", "EF01-2345", "22222222-01", "", "vfat"}},
    };
}

struct Run
{
    int status;
    QByteArray output;
};

Run run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(30000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput()};
}

} // namespace

class DaemonBootTest : public QObject
{
    Q_OBJECT

private slots:
    void rewritesDeviceTables_data();
    void rewritesDeviceTables();
    void makesLoopSystemBootable_data();
    void makesLoopSystemBootable();
};

void DaemonBootTest::rewritesDeviceTables_data()
{
    QTest::addColumn<bool>("crypttab");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("expected");

    const QByteArray oldRoot = OldRoot.toLatin1();
    const QByteArray newRoot = NewRoot.toLatin1();
    QTest::newRow("UUID") << false << "UUID=" + oldRoot + " / ext4 errors=remount-ro 0 1\n"
                          << "UUID=" + newRoot + " / ext4 errors=remount-ro 0 1\n";
    QTest::newRow("quoted UUID, tabs") << false << "UUID=\"" + oldRoot + "\"\t/\text4\tdefaults\t0\t1\n"
                                       << "UUID=\"" + newRoot + "\"\t/\text4\tdefaults\t0\t1\n";
    QTest::newRow("vfat UUID in other case") << false << QByteArray("UUID=abcd-1234  /boot/efi vfat umask=0077 0 1\n")
                                             << QByteArray("UUID=EF01-2345  /boot/efi vfat umask=0077 0 1\n");
    QTest::newRow("PARTUUID") << false << QByteArray("PARTUUID=11111111-02 / ext4 defaults 0 1\n")
                              << QByteArray("PARTUUID=22222222-02 / ext4 defaults 0 1\n");
    QTest::newRow("LABEL with a space") << false << QByteArray("LABEL=old\\040root / ext4 defaults 0 1\n")
                                        << QByteArray("LABEL=new\\040root / ext4 defaults 0 1\n");
    QTest::newRow("swap by LABEL, new one unlabelled") << false << QByteArray("LABEL=oldswap none swap sw 0 0\n")
                                                       << QByteArray("UUID=9d8e-swap-new none swap sw 0 0\n");
    QTest::newRow("/dev path and by-uuid link") << false
        << "/dev/sda2 / ext4 defaults 0 1\n/dev/disk/by-uuid/" + oldRoot + " /mnt ext4 ro 0 0\n"
        << "/dev/sdb2 / ext4 defaults 0 1\n/dev/disk/by-uuid/" + newRoot + " /mnt ext4 ro 0 0\n";
    QTest::newRow("comments, blank lines and spacing kept")
        << false << "# / was on /dev/sda2 during installation\n\n   UUID=" + oldRoot + "   /   ext4  defaults  0  1  \n"
        << "# / was on /dev/sda2 during installation\n\n   UUID=" + newRoot + "   /   ext4  defaults  0  1  \n";
    const QByteArray others("UUID=5555-other /data ext4 defaults 0 2\n/dev/sda21 /srv xfs defaults 0 0\n"
                            "tmpfs /tmp tmpfs nosuid 0 0\nLABEL=oldswapx none swap sw 0 0");
    QTest::newRow("other disks' entries left alone, no last newline") << false << others << others;
    QTest::newRow("crypttab: the device field only") << true << QByteArray("sda2_crypt /dev/sda2 none luks,discard\n")
                                                     << QByteArray("sda2_crypt /dev/sdb2 none luks,discard\n");
    QTest::newRow("crypttab by UUID") << true << "root_crypt UUID=" + oldRoot + " none luks\n"
                                      << "root_crypt UUID=" + newRoot + " none luks\n";
}

void DaemonBootTest::rewritesDeviceTables()
{
    QFETCH(bool, crypttab);
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, expected);
    const TableRewrite rewrite = rewriteDeviceTable(input, crypttab ? DeviceTableKind::Crypttab : DeviceTableKind::Fstab, pairs());
    QCOMPARE(rewrite.text, expected);
    QCOMPARE(rewrite.changedLines == 0, input == expected);
}

void DaemonBootTest::makesLoopSystemBootable_data()
{
    QTest::addColumn<QString>("etc"); // what /etc of the new system is
    QTest::addColumn<int>("code");
    // No grub-install in a tree this small: the fstab is rewritten, then the answer says so.
    QTest::newRow("fstab, no GRUB") << "folder" << int(NoGrub);
    QTest::newRow("no fstab") << "missing" << int(NoFstab);
    // A link out of the new system is not followed, and what it points at is not written.
    QTest::newRow("etc a link out of the system") << "link" << int(NoFstab);
}

void DaemonBootTest::makesLoopSystemBootable()
{
    QFETCH(QString, etc);
    QFETCH(int, code);
    for (const char* tool : {"losetup", "mkfs.ext4", "debugfs"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool), {"/usr/sbin", "/sbin", "/usr/bin"}).isEmpty())
            QSKIP(qPrintable(QStringLiteral("%1 is not installed").arg(tool)));
    }
    if (::geteuid() != 0 || !QFile::exists("/dev/loop-control"))
        QSKIP("Needs root and loop devices to mount the test's disk images");

    QTemporaryDir scratch;
    QVERIFY(scratch.isValid());
    const QString tree = scratch.filePath("tree");
    const QString outside = scratch.filePath("outside");
    const QByteArray fstab = "# the old disk\nUUID=" + OldRoot.toLatin1() + " / ext4 errors=remount-ro 0 1\n";
    QVERIFY(QDir().mkpath(outside) && QDir().mkpath(tree + "/boot"));
    for (const QString& folder : {QString(tree + "/etc"), outside}) {
        if ((etc == "folder") == (folder == outside))
            continue;
        QFile file(folder + "/fstab");
        QVERIFY(QDir().mkpath(folder) && file.open(QIODevice::WriteOnly) && file.write(fstab) == fstab.size());
    }
    if (etc == "link")
        QVERIFY(QFile::link(outside, tree + "/etc"));
    QCOMPARE(run("mkfs.ext4", {"-q", "-F", "-U", NewRoot, "-d", tree, scratch.filePath("new.img"), "8M"}).status, 0);
    QCOMPARE(run("mkfs.ext4", {"-q", "-F", "-U", OldRoot, scratch.filePath("old.img"), "4M"}).status, 0);

    QStringList loops;
    auto detach = qScopeGuard([&] {
        for (const QString& loop : std::as_const(loops))
            run("losetup", {"-d", loop});
    });
    for (const char* image : {"new.img", "old.img"}) {
        const Run attached = run("losetup", {"--find", "--show", scratch.filePath(image)});
        if (attached.status != 0)
            QSKIP("No free loop device");
        loops << QString::fromLatin1(attached.output.trimmed());
    }
    const QString work = scratch.filePath("work");
    QVERIFY(QDir().mkpath(work));

    BootabilityTarget target;
    target.destinationDisk = target.osPartition = loops[0];
    target.pairs = {{loops[1], loops[0]}};
    target.workFolder = work;
    Velmora::Message::MigrationBootability request;
    request.set_driveid(7);
    request.set_ospartitionid(2);
    request.set_bootpartitionid(1);
    const std::atomic_bool stop{false};
    const auto answer = Bootability(target).run(request, stop);

    QCOMPARE(int(answer.code()), code);
    QCOMPARE(answer.driveid(), 7u);
    QCOMPARE(answer.ospartitionid(), 2u);
    QFile mountInfo("/proc/self/mountinfo");
    QVERIFY(mountInfo.open(QIODevice::ReadOnly));
    QVERIFY(!mountInfo.readAll().contains(work.toLocal8Bit()));
    QVERIFY(QDir(work).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden));
    const QByteArray written = run("debugfs", {"-R", "cat /etc/fstab", scratch.filePath("new.img")}).output;
    if (etc == "folder")
        QCOMPARE(written, "# the old disk\nUUID=" + NewRoot.toLatin1() + " / ext4 errors=remount-ro 0 1\n");
    QFile untouched(outside + "/fstab");
    if (etc == "link")
        QVERIFY(untouched.open(QIODevice::ReadOnly) && untouched.readAll() == fstab);
}

QTEST_GUILESS_MAIN(DaemonBootTest)
#include "tst_daemonboot.moc"
