#include "copy/FileCopy.h"
#include "copy/RsyncOutput.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Velmora::Daemon::Copy;
namespace Wire = Velmora::Message;

namespace {

bool exec(const QString& program, const QStringList& arguments, QString* output = nullptr)
{
    QProcess process;
    process.start(program, arguments);
    const bool done = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (output)
        *output = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    return done;
}

QByteArray hashOf(const QString& path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

bool write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray xattrs(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    char list[4096];
    const ssize_t size = ::llistxattr(name.constData(), list, sizeof list);
    QByteArrayList entries;
    for (ssize_t at = 0; at < size; at += ssize_t(qstrlen(list + at)) + 1) {
        char value[4096];
        const ssize_t length = ::lgetxattr(name.constData(), list + at, value, sizeof value);
        entries << QByteArray(list + at) + '=' + QByteArray(value, int(qMax<ssize_t>(length, 0)));
    }
    std::sort(entries.begin(), entries.end());
    return entries.join(';');
}

// Images, loop devices and mounts made in the test's own folder, undone in
// reverse order whatever the outcome.
class Rig
{
public:
    ~Rig()
    {
        for (const QString& mount : mounts)
            exec("umount", {mount});
        // The read-only flag outlives the loop device's image.
        for (const QString& loop : loops)
            exec("blockdev", {"--setrw", loop}) && exec("losetup", {"-d", loop});
    }
    QString disk(const QString& name, int mib)
    {
        const QString image = folder.filePath(name + ".img");
        QString device;
        if (exec("truncate", {"-s", QString::number(mib) + "M", image}) && exec("mkfs.ext4", {"-q", "-b", "4096", image})
            && exec("losetup", {"--find", "--show", image}, &device) && device.startsWith("/dev/loop"))
            loops << device;
        return device;
    }
    QString mount(const QString& device, const QString& name, const QString& options = "rw")
    {
        const QString target = folder.filePath(name);
        QDir().mkpath(target);
        if (!exec("mount", {"-o", options, device, target}))
            return QString();
        mounts.prepend(target);
        return target;
    }
    void unmount(const QString& target)
    {
        QVERIFY(mounts.removeOne(target));
        QVERIFY(exec("umount", {target}));
    }
    QTemporaryDir folder;
    QStringList loops, mounts;
};

const FileCopy::Options QuickReports {"/usr/bin/rsync", std::chrono::minutes(1), std::chrono::milliseconds(0)};

// Nothing of a copy may stay behind: no mount below the state folder, no private folder in it.
void verifyNothingLeft(const QString& state)
{
    QFile mountInfo("/proc/self/mountinfo");
    QVERIFY(mountInfo.open(QIODevice::ReadOnly));
    QVERIFY(!mountInfo.readAll().contains(state.toUtf8()));
    QVERIFY(QDir(state).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).isEmpty());
}

} // namespace

class TestDaemonCopy : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (::geteuid() != 0 || !QFile::exists("/dev/loop-control") || !QFile::exists("/usr/bin/rsync"))
            QSKIP("Copies need root, loop devices and /usr/bin/rsync");
    }

    void faultLines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("directory");
        QTest::newRow("unreadable") << R"(rsync: [sender] read errors mapping "/s/src/a b/c": Input/output error (5))" << "a b/c" << false;
        QTest::newRow("unopenable") << R"(rsync: [sender] send_files failed to open "/s/src/x\#012y": Permission denied (13))" << "x\ny" << false;
        QTest::newRow("folder") << R"(rsync: [sender] opendir "/s/src/d/e" failed: Permission denied (13))" << "d/e" << true;
        QTest::newRow("vanished") << R"(file has vanished: "/s/src/gone")" << QString() << false;
    }
    void faultLines()
    {
        QFETCH(QString, line);
        QFETCH(QString, path);
        QFETCH(bool, directory);
        const auto fault = RsyncOutput::parseFault(line.toStdString(), "/s/src");
        QCOMPARE(fault.has_value(), !path.isEmpty());
        if (fault) {
            QCOMPARE(QString::fromStdString(fault->relativePath), path);
            QCOMPARE(fault->directory, directory);
        }
    }

    void refusesWhatIsNotThere_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("destination");
        QTest::addColumn<QString>("fileSystem");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("logLine");
        QTest::newRow("no source") << "" << "/dev/sdz2" << "ext4" << int(Wire::NOT_FOUND) << "the source partition is not in the drive list";
        QTest::newRow("no destination") << "/dev/sdz1" << "" << "" << int(Wire::NOT_FOUND) << "the destination partition is not in the drive list";
        QTest::newRow("unformatted") << "/dev/sdz1" << "/dev/sdz2" << "" << int(Wire::INVALID_REQUEST) << "the destination /dev/sdz2 has no file system";
    }
    void refusesWhatIsNotThere()
    {
        QFETCH(QString, source);
        QFETCH(QString, destination);
        QFETCH(QString, fileSystem);
        QFETCH(int, code);
        QFETCH(QString, logLine);
        const QTemporaryDir folder;
        const QString state = folder.filePath("state");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Copy refused: .*" + QRegularExpression::escape(logLine)));
        const FileCopyJob job {{source.toStdString(), "ext4", ""}, {destination.toStdString(), fileSystem.toStdString(), ""}, {}};
        std::atomic_bool stop {false};
        QCOMPARE(int(FileCopy(state.toStdString(), QuickReports).run(job, stop, {}).code()), code);
        QVERIFY(!QFile::exists(state));
    }

    void copiesTreeAsItIs_data()
    {
        QTest::addColumn<bool>("sourceMounted");
        QTest::newRow("source not mounted") << false;
        QTest::newRow("source mounted read-only") << true;
    }
    void copiesTreeAsItIs()
    {
        QFETCH(bool, sourceMounted);
        Rig rig;
        const QString loop = rig.disk("source", 48), destination = rig.disk("destination", 48);
        QVERIFY(!loop.isEmpty() && !destination.isEmpty());
        const QString tree = rig.mount(loop, "fill");
        QVERIFY(!tree.isEmpty());
        for (const char* folder : {"docs", "skip/keep", "skip/sub", "dir.tmp"})
            QVERIFY(QDir(tree).mkpath(folder));
        for (const char* file : {"notes.tmp", "docs/CAPS.TMP", "skip/a.txt", "skip/sub/b.txt", "skip/keep/k.tmp", "dir.tmp/in.txt", "tool"})
            QVERIFY(write(tree + '/' + file, QByteArray(file) + '\n'));
        const QString owned = tree + "/docs/a.txt";
        QVERIFY(write(owned, QByteArray(100000, 'a')));
        QVERIFY(::chown(owned.toUtf8(), 1234, 2345) == 0 && ::chmod(owned.toUtf8(), 0640) == 0);
        QVERIFY(::chmod((tree + "/tool").toUtf8(), 04755) == 0);
        QVERIFY(::setxattr(owned.toUtf8(), "user.kind", "demo", 4, 0) == 0);
        if (QFile::exists("/usr/bin/setfacl"))
            QVERIFY(exec("setfacl", {"-m", "u:4321:rw", owned}));
        const timespec times[2] = {{1000000000, 123456789}, {1200000000, 987654321}};
        QVERIFY(::utimensat(AT_FDCWD, owned.toUtf8(), times, 0) == 0);
        QVERIFY(::link(owned.toUtf8(), (tree + "/docs/hard.txt").toUtf8()) == 0);
        QVERIFY(::symlink("docs/a.txt", (tree + "/link").toUtf8()) == 0);
        QVERIFY(::mkfifo((tree + "/pipe").toUtf8(), 0600) == 0);
        QFile sparse(tree + "/sparse.img");
        QVERIFY(sparse.open(QIODevice::WriteOnly) && sparse.resize(16 << 20) && sparse.seek(4 << 20));
        sparse.write(QByteArray(4096, 's'));
        sparse.close();
        QVERIFY(write(tree + "/bad.bin", QByteArray(65536, 'b')));
        rig.unmount(tree);
        // Its data pointed past the end of the disk, every open or read of the file fails, for root too.
        QVERIFY(exec("debugfs", {"-w", "-R", "sif /bad.bin block[5] 0x7ffffff", loop}));

        // The test's own read-only mount must not record the damage on the disk either.
        const QString& source = loop;
        QVERIFY(!sourceMounted || exec("blockdev", {"--setro", source}));
        const QString view = sourceMounted ? rig.mount(source, "view", "ro,noload") : QString();
        const QByteArray before = hashOf(rig.folder.filePath("source.img"));
        const QString state = rig.folder.filePath("state");
        const QString root = sourceMounted ? view : QString();
        FileCopyJob job {{source.toStdString(), "ext4", root.toStdString()}, {destination.toStdString(), "ext4", ""}, {}};
        job.filter.add_paths((root + "\\skip").toStdString());
        job.filter.add_systempaths((root + "\\skip\\keep").toStdString());
        job.filter.add_extensions("*.tmp");
        std::atomic_bool stop {false};
        int interim = 0;
        const Wire::FileCopyReport report = FileCopy(state.toStdString(), QuickReports).run(job, stop, [&](const Wire::FileCopyReport& r) {
            interim += r.code() == Wire::PROGRESS ? 1 : 1000;
        });

        QCOMPARE(report.code(), Wire::SUCCESS);
        QVERIFY(interim < 1000); // interim reports are progress only
        QVERIFY(report.copiedsize() > 100000);
        QCOMPARE(report.faultedfiles_size(), 1);
        QCOMPARE(QString::fromStdString(report.faultedfiles(0)), root + "\\bad.bin");
        verifyNothingLeft(state);
        QCOMPARE(hashOf(rig.folder.filePath("source.img")), before);

        const QString from = sourceMounted ? view : rig.mount(source, "check-source", "ro,noload");
        const QString to = rig.mount(destination, "check-destination", "ro");
        const QStringList leftOut = {"notes.tmp", "docs/CAPS.TMP", "skip/a.txt", "skip/sub"};
        QDirIterator entries(from, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
        int compared = 0;
        while (entries.hasNext()) {
            const QString relative = QDir(from).relativeFilePath(entries.next());
            if (relative == "bad.bin")
                continue;
            struct stat a {}, b {};
            QVERIFY(::lstat(entries.filePath().toUtf8(), &a) == 0);
            const bool copied = ::lstat((to + '/' + relative).toUtf8(), &b) == 0;
            const bool excluded = leftOut.contains(relative) || relative.startsWith("skip/sub/");
            QVERIFY2(copied != excluded, qPrintable(relative));
            if (!copied)
                continue;
            ++compared;
            QVERIFY2(a.st_mode == b.st_mode && a.st_uid == b.st_uid && a.st_gid == b.st_gid && a.st_size == b.st_size, qPrintable(relative));
            QVERIFY2(a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec, qPrintable(relative));
            QCOMPARE(xattrs(to + '/' + relative), xattrs(entries.filePath()));
            if (S_ISREG(a.st_mode))
                QVERIFY2(hashOf(entries.filePath()) == hashOf(to + '/' + relative), qPrintable(relative));
            if (S_ISLNK(a.st_mode))
                QCOMPARE(QFile::symLinkTarget(to + '/' + relative), QFile::symLinkTarget(entries.filePath()).replace(from, to));
        }
        QVERIFY(compared >= 13);
        QVERIFY(xattrs(to + "/docs/a.txt").contains("user.kind=demo"));
        struct stat first {}, second {}, sparseCopy {};
        QVERIFY(::stat((to + "/docs/a.txt").toUtf8(), &first) == 0 && ::stat((to + "/docs/hard.txt").toUtf8(), &second) == 0);
        QCOMPARE(first.st_ino, second.st_ino);
        QVERIFY(::stat((to + "/sparse.img").toUtf8(), &sparseCopy) == 0);
        QVERIFY(sparseCopy.st_blocks * 512 < 1 << 20);
    }

    void stopEndsAtOnceAndCleansUp()
    {
        Rig rig;
        const QString source = rig.disk("source", 400), destination = rig.disk("destination", 400);
        QVERIFY(!source.isEmpty() && !destination.isEmpty());
        const QString tree = rig.mount(source, "fill");
        for (int i = 0; i < 24; ++i)
            QVERIFY(write(QString("%1/big-%2").arg(tree).arg(i), QByteArray(12 << 20, char('a' + i))));
        rig.unmount(tree);
        const QByteArray before = hashOf(rig.folder.filePath("source.img"));
        const QString state = rig.folder.filePath("state");

        std::atomic_bool stop {false};
        QElapsedTimer sinceStop;
        const FileCopyJob job {{source.toStdString(), "ext4", ""}, {destination.toStdString(), "ext4", ""}, {}};
        const Wire::FileCopyReport report = FileCopy(state.toStdString(), QuickReports).run(job, stop, [&](const Wire::FileCopyReport& interim) {
            if (interim.code() == Wire::PROGRESS && interim.copiedsize() > 0 && !stop.exchange(true))
                sinceStop.start();
        });

        QCOMPARE(report.code(), Wire::CANCELED);
        QVERIFY(sinceStop.isValid() && sinceStop.elapsed() < 3000);
        verifyNothingLeft(state);
        QCOMPARE(hashOf(rig.folder.filePath("source.img")), before);
    }

    void destinationLostEndsInFailure_data()
    {
        QTest::addColumn<int>("destinationMib");
        QTest::addColumn<bool>("unplug");
        QTest::newRow("unplugged mid-copy") << 400 << true;
        QTest::newRow("full") << 40 << false;
    }
    void destinationLostEndsInFailure()
    {
        QFETCH(int, destinationMib);
        QFETCH(bool, unplug);
        Rig rig;
        const QString source = rig.disk("lost-destination-source", 200);
        const QString destination = rig.disk("lost-destination-target", destinationMib);
        QVERIFY(!source.isEmpty() && !destination.isEmpty());
        const QString tree = rig.mount(source, "fill");
        for (int i = 0; i < 12; ++i)
            QVERIFY(write(QString("%1/big-%2").arg(tree).arg(i), QByteArray(12 << 20, char('a' + i))));
        rig.unmount(tree);
        const QByteArray before = hashOf(rig.folder.filePath("lost-destination-source.img"));
        const QString state = rig.folder.filePath("state");

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Copy of .* failed"));
        bool unplugged = false;
        std::atomic_bool stop {false};
        const FileCopyJob job {{source.toStdString(), "ext4", ""}, {destination.toStdString(), "ext4", ""}, {}};
        const Wire::FileCopyReport report = FileCopy(state.toStdString(), QuickReports).run(job, stop, [&](const Wire::FileCopyReport& interim) {
            // Pulled: the drive's size drops to nothing, and its loop device goes once unmounted.
            if (unplug && interim.copiedsize() > 0 && !unplugged)
                unplugged = QFile::resize(rig.folder.filePath("lost-destination-target.img"), 0) && exec("losetup", {"-c", destination})
                    && exec("losetup", {"-d", destination}) && rig.loops.removeOne(destination);
        });

        QCOMPARE(unplugged, unplug);
        QCOMPARE(report.code(), Wire::FAILED);
        verifyNothingLeft(state);
        QCOMPARE(hashOf(rig.folder.filePath("lost-destination-source.img")), before);
    }
};

QTEST_GUILESS_MAIN(TestDaemonCopy)
#include "tst_daemoncopy.moc"
