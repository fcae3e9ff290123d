#include "boot/Bootability.h"
#include "boot/BootabilityCode.h"
#include "boot/DeviceTable.h"

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

#include <optional>

using namespace Velmora::Daemon::Boot;

namespace {

const QString OldRoot = QStringLiteral("3f1c2a9e-5b7d-4e21-9a0c-1d2e3f4a5b6c");
const QString NewRoot = QStringLiteral("8a7b6c5d-4e3f-4a1b-8c9d-0e1f2a3b4c5d");
const QString OldEfi = QStringLiteral("0c0c0c0c-1111-4222-8333-444455556666");
const QString NewEfi = QStringLiteral("0e0e0e0e-1111-4222-8333-444455556666");

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

std::optional<QByteArray> run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    const bool ok = process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return ok ? std::optional<QByteArray>(process.readAllStandardOutput()) : std::nullopt;
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
    QTest::addColumn<QString>("grub"); // the GRUB the new system has: none, bios, uefi; bios-path writes a menu naming the root by its device
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("ran"); // what its GRUB tools were called with; %1 the disk
    QTest::newRow("fstab, no GRUB") << "folder" << "none" << int(NoGrub) << QByteArray();
    QTest::newRow("no fstab") << "missing" << "none" << int(NoFstab) << QByteArray();
    // A link out of the new system is not followed, and what it points at is not written.
    QTest::newRow("etc a link out of the system") << "link" << "none" << int(NoFstab) << QByteArray();
    const QByteArray bios("/usr/sbin/grub-install --target=i386-pc %1\n/usr/sbin/update-grub\n");
    QTest::newRow("BIOS") << "folder" << "bios" << int(Success) << bios;
    // A machine without udev: the moved disk would not find its root by that name.
    QTest::newRow("BIOS, menu by device path") << "folder" << "bios-path" << int(GrubMenuByDevicePath) << bios;
    // This machine has no UEFI: the loader also goes to the fallback path, and the answer says
    // that no boot entry could be written.
    const QByteArray efi("/usr/sbin/grub-install --target=x86_64-efi --efi-directory=/boot/efi --bootloader-id=debian");
    QTest::newRow("UEFI on a BIOS machine") << "folder" << "uefi" << int(NotUefiHere)
                                            << efi + " --no-nvram\n" + efi + " --removable\n/usr/sbin/update-grub\n";
}

void DaemonBootTest::makesLoopSystemBootable()
{
    QFETCH(QString, etc);
    QFETCH(QString, grub);
    QFETCH(int, code);
    QFETCH(QByteArray, ran);
    for (const char* tool : {"losetup", "mkfs.ext4", "debugfs", "ldd"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool), {"/usr/sbin", "/sbin", "/usr/bin"}).isEmpty())
            QSKIP(qPrintable(QStringLiteral("%1 is not installed").arg(tool)));
    }
    if (::geteuid() != 0 || !QFile::exists("/dev/loop-control"))
        QSKIP("Needs root and loop devices to mount the test's disk images");

    QTemporaryDir scratch;
    QVERIFY(scratch.isValid());
    const QString tree = scratch.filePath("tree");
    const QString outside = scratch.filePath("outside");
    const bool uefi = grub == "uefi";
    auto put = [](const QString& path, const QByteArray& content, QFile::Permissions mode) {
        QFile file(path);
        return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
            && file.setPermissions(mode);
    };
    const QFile::Permissions plain = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther;
    QByteArray fstab = "# the old disk\nUUID=" + OldRoot.toLatin1() + " / ext4 errors=remount-ro 0 1\n";
    if (uefi)
        fstab += "UUID=" + OldEfi.toLatin1() + " /boot/efi ext4 defaults 0 2\n";
    QVERIFY(QDir().mkpath(tree + "/boot/efi") && QDir().mkpath(outside));
    QVERIFY(put((etc == "folder" ? tree + "/etc" : outside) + "/fstab", fstab, plain));
    QVERIFY(put(tree + "/usr/lib/os-release", "NAME=\"Test\"\nID=debian\n", plain));
    if (etc == "link")
        QVERIFY(QFile::link(outside, tree + "/etc"));
    if (grub != "none") {
        // GRUB's tools as scripts that note how they were called, run by this machine's shell.
        const QString shell = QFileInfo("/bin/sh").canonicalFilePath();
        QStringList files{shell};
        for (const QByteArray& line : run("ldd", {shell}).value_or(QByteArray()).split('\n')) {
            const int slash = line.indexOf('/');
            if (slash >= 0)
                files << QString::fromLatin1(line.mid(slash, line.indexOf(' ', slash) - slash));
        }
        for (const QString& file : std::as_const(files))
            QVERIFY(QDir().mkpath(QFileInfo(tree + file).path()) && QFile::copy(file, tree + file));
        QVERIFY(QDir().mkpath(tree + "/bin") && QFile::link(shell, tree + "/bin/sh"));
        const QByteArray log = "#!/bin/sh\necho \"$0\" \"$@\" >> /grub.log\n";
        // The menu's root as GRUB names it: by UUID, or by the device mounted at / without udev.
        const QByteArray menu = log
            + "while read -r line; do case \"$line\" in *' / / '*) device=${line#* - }; device=${device#* }; device=${device%% *};; esac;"
              " done </proc/self/mountinfo\n"
            + "echo \"linux /vmlinuz root=" + (grub == "bios-path" ? "$device" : "UUID=" + NewRoot.toLatin1()) + " ro\" >/boot/grub/grub.cfg\n";
        QVERIFY(put(tree + "/usr/sbin/grub-install", log, plain | QFile::ExeOwner));
        QVERIFY(put(tree + "/usr/sbin/update-grub", menu, plain | QFile::ExeOwner));
        QVERIFY(QDir().mkpath(tree + "/boot/grub"));
        QVERIFY(QDir().mkpath(tree + (uefi ? "/usr/lib/grub/x86_64-efi" : "/usr/lib/grub/i386-pc")));
    }
    // The EFI partitions are not FAT, so that kernels without it run this too; the boot partition
    // named stands for it.
    const QStringList uuids{NewRoot, OldRoot, NewEfi, OldEfi};
    const QStringList images = QStringList{"new.img", "old.img", "new-efi.img", "old-efi.img"}.mid(0, uefi ? 4 : 2);
    for (int i = 0; i < images.size(); ++i)
        QVERIFY(run("mkfs.ext4", QStringList{"-q", "-F", "-U", uuids[i]} + (i == 0 ? QStringList{"-d", tree} : QStringList())
                + QStringList{scratch.filePath(images[i]), "16M"}));

    QStringList loops;
    auto detach = qScopeGuard([&] {
        for (const QString& loop : std::as_const(loops))
            run("losetup", {"-d", loop});
    });
    for (const QString& image : std::as_const(images)) {
        const std::optional<QByteArray> attached = run("losetup", {"--find", "--show", scratch.filePath(image)});
        if (!attached)
            QSKIP("No free loop device");
        loops << QString::fromLatin1(attached->trimmed());
    }
    const QString work = scratch.filePath("work");
    QVERIFY(QDir().mkpath(work));

    BootabilityTarget target;
    target.destinationDisk = target.osPartition = loops[0];
    target.pairs = {{loops[1], loops[0]}};
    if (uefi) {
        target.bootPartition = loops[2];
        target.pairs.append({loops[3], loops[2]});
    }
    target.style = uefi ? BootStyle::Uefi : BootStyle::Bios;
    target.workFolder = work;
    Velmora::Message::MigrationBootability request;
    request.set_driveid(7);
    const std::atomic_bool stop{false};
    const auto answer = Bootability(target).run(request, stop);

    QCOMPARE(int(answer.code()), code);
    QCOMPARE(answer.driveid(), 7u);
    QFile mountInfo("/proc/self/mountinfo");
    QVERIFY(mountInfo.open(QIODevice::ReadOnly) && !mountInfo.readAll().contains(work.toLocal8Bit()));
    QVERIFY(QDir(work).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden));
    auto readBack = [&](const char* path) {
        return run("debugfs", {"-R", QStringLiteral("cat %1").arg(path), scratch.filePath("new.img")}).value_or("failed");
    };
    if (etc == "folder")
        QCOMPARE(readBack("/etc/fstab"), QByteArray(fstab).replace(OldRoot.toLatin1(), NewRoot.toLatin1()).replace(OldEfi.toLatin1(), NewEfi.toLatin1()));
    QCOMPARE(readBack("/grub.log"), ran.replace("%1", loops[0].toLatin1()));
    QFile untouched(outside + "/fstab");
    QVERIFY(etc != "link" || (untouched.open(QIODevice::ReadOnly) && untouched.readAll() == fstab));
}

QTEST_GUILESS_MAIN(DaemonBootTest)
#include "tst_daemonboot.moc"
