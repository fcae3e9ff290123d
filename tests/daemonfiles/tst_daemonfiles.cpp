#include "files/DirectoryListing.h"
#include "files/FileCategoryScan.h"
#include "files/FilterSizeScan.h"
#include "files/LogCopy.h"
#include "files/SpeedTest.h"
#include "files/VolumePath.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Velmora::Daemon;
using namespace Velmora::Daemon::Files;
namespace Wire = Velmora::Message;

namespace {

const PeerCredentials Root {0, 0, 0};
const PeerCredentials Nobody {65534, 65534, 0};

void writeFile(const QString& path, int size)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(size, 'k'));
}

QString run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(10000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

// Bytes of the files that `find` selects below `root` on its own file system, counted by du
// (hard links once): the yardstick the walker is held to.
quint64 duOf(const QString& root, const QString& findTests)
{
    const QString script = QStringLiteral("find '%1' -xdev -type f %2 -print0 | du -b -c --files0-from=- | tail -n 1 | cut -f 1")
                               .arg(root, findTests);
    return run(QStringLiteral("sh"), {QStringLiteral("-c"), script}).toULongLong();
}

quint64 sizeOf(const Wire::FileTypeStructure& answer, quint32 id)
{
    for (const auto& type : answer.filetypes()) {
        if (type.id() == id)
            return type.size();
    }
    return ~quint64(0);
}

QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

class DaemonFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void categoriesAgreeWithDu();
    void stopEndsScanAtOnce();
    void filterSizesSplitTheVolume();
    void safeOpenConfinesPaths_data();
    void safeOpenConfinesPaths();
    void listingShowsWhatThePeerMayRead_data();
    void listingShowsWhatThePeerMayRead();
    void logCopyIsSafe_data();
    void logCopyIsSafe();
    void speedTestLeavesNothingBehind_data();
    void speedTestLeavesNothingBehind();
    void unpluggedDriveEndsRequest_data();
    void unpluggedDriveEndsRequest();

private:
    bool isRoot() const { return ::geteuid() == 0; }

    QTemporaryDir m_dir;
    QString m_volume;  // the tree that stands for a mounted volume
    QString m_mount;   // a tmpfs mounted inside it, when root
    bool m_mounted = false;
};

void DaemonFilesTest::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(QFile::setPermissions(m_dir.path(), QFile::permissions(m_dir.path()) | QFile::ReadOther | QFile::ExeOther));
    m_volume = m_dir.filePath(QStringLiteral("volume"));
    writeFile(m_volume + "/a.mp3", 100);
    writeFile(m_volume + "/Music/b.MP3", 200);
    writeFile(m_volume + "/docs/c.txt", 300);
    writeFile(m_volume + "/docs/d.pdf", 50);
    writeFile(m_volume + "/docs/deep/e.jpg", 70);
    writeFile(m_volume + "/docs/archive.tar.gz", 90);
    writeFile(m_volume + "/f.unknown", 10);
    writeFile(m_volume + "/windows/x.jpg", 400); // a path rule wins over the extension
    writeFile(m_volume + "/private/secret.txt", 33);
    QVERIFY(::link(QFile::encodeName(m_volume + "/docs/c.txt"), QFile::encodeName(m_volume + "/docs/deep/c-again.txt")) == 0);
    QVERIFY(QFile::link(QStringLiteral("/etc"), m_volume + "/etc-link"));
    QVERIFY(QFile::link(m_volume + "/a.mp3", m_volume + "/Music/link.mp3"));
    QVERIFY(QDir(m_volume).mkpath(QStringLiteral("mnt")));
    QVERIFY(::chmod(QFile::encodeName(m_volume + "/private"), 0700) == 0);
    m_mount = m_volume + "/mnt";
    if (isRoot()) {
        m_mounted = QProcess::execute(QStringLiteral("mount"), {"-t", "tmpfs", "-o", "size=16m", "tmpfs", m_mount}) == 0;
        if (m_mounted)
            writeFile(m_mount + "/big.mp3", 5000);
    }
}

void DaemonFilesTest::cleanupTestCase()
{
    if (m_mounted && m_mount.startsWith(m_dir.path() + '/'))
        QCOMPARE(QProcess::execute(QStringLiteral("umount"), {m_mount}), 0);
}

void DaemonFilesTest::categoriesAgreeWithDu()
{
    if (!m_mounted)
        QSKIP("Needs root to mount a tmpfs inside the tree");
    Wire::FileTypeStructureRequest request;
    request.set_driveid(3);
    request.set_partitionid(-1);
    const std::pair<quint32, const char*> rules[] = {{2, ".txt,.pdf,.tar.gz"}, {5, ".jpg"}, {4, "mp3"}};
    for (const auto& rule : rules) {
        auto* type = request.add_filetypes();
        type->set_id(rule.first);
        type->set_extensions(rule.second);
    }
    auto* system = request.add_filetypes();
    system->set_id(0);
    system->set_paths("Windows,swapfile.sys");

    const std::atomic_bool stop {false};
    const Wire::FileTypeStructure answer = FileCategoryScan().run(request, {m_volume.toStdString()}, stop, {});
    QCOMPARE(answer.code(), Wire::SUCCESS);
    QVERIFY(answer.finished());
    QCOMPARE(answer.driveid(), 3u);
    const QString notSystem = QStringLiteral("-not -path '%1/windows/*'").arg(m_volume);
    const quint64 documents = duOf(m_volume, notSystem + " \\( -iname '*.txt' -o -iname '*.pdf' -o -iname '*.tar.gz' \\)");
    const quint64 pictures = duOf(m_volume, notSystem + " -iname '*.jpg'");
    const quint64 sound = duOf(m_volume, notSystem + " -iname '*.mp3'");
    const quint64 systemSize = duOf(m_volume + "/windows", QString());
    QCOMPARE(sizeOf(answer, 2), documents);
    QCOMPARE(sizeOf(answer, 5), pictures);
    QCOMPARE(sizeOf(answer, 4), sound);
    QCOMPARE(sizeOf(answer, 0), systemSize);
    QCOMPARE(sizeOf(answer, FileCategoryScan::OtherCategory), duOf(m_volume, QString()) - documents - pictures - sound - systemSize);
    // The yardstick itself must see the hard link once and the mount not at all.
    QCOMPARE(documents, quint64(300 + 50 + 90 + 33));
}

void DaemonFilesTest::stopEndsScanAtOnce()
{
    Wire::FileTypeStructureRequest request;
    request.set_driveid(4);
    std::atomic_bool stop {false};
    int reports = 0;
    const Wire::FileTypeStructure answer = FileCategoryScan(std::chrono::milliseconds(0)).run(request,
        {m_volume.toStdString()}, stop, [&](const Wire::FileTypeStructure& report) {
            QCOMPARE(report.code(), Wire::IN_PROGRESS);
            ++reports;
            stop = true;
        });
    QCOMPARE(reports, 1);
    QCOMPARE(answer.code(), Wire::NOT_FOUND);
    QCOMPARE(answer.driveid(), 4u);
}

void DaemonFilesTest::filterSizesSplitTheVolume()
{
    Wire::FileTypeStructureRequest request;
    request.set_driveid(1);
    request.set_partitionid(2);
    const QString volume = m_volume;
    request.add_filetypes()->set_paths((volume + "\\Windows").toStdString());
    auto* leftOut = request.add_filetypes();
    leftOut->set_id(1);
    leftOut->set_paths((volume + "\\docs\\deep," + volume + "\\Windows\\x.jpg").toStdString());
    auto* extensions = request.add_filetypes();
    extensions->set_id(2);
    extensions->set_extensions("*.MP3,pdf");

    const std::atomic_bool stop {false};
    const Wire::FileTypeStructure answer = FilterSizeScan().run(request, m_volume.toStdString(), Root, stop, {});
    QCOMPARE(answer.code(), Wire::SUCCESS);
    QCOMPARE(answer.partitionid(), 2);
    QCOMPARE(sizeOf(answer, 0), quint64(400)); // the system path beats the left-out one
    // A folder's files count before its subfolders: c.txt is kept, its second link in deep is not
    // counted again.
    QCOMPARE(sizeOf(answer, 1), quint64(70 + 100 + 200 + 50));
    QCOMPARE(sizeOf(answer, 2), quint64(300 + 90 + 10 + 33));
}

void DaemonFilesTest::safeOpenConfinesPaths_data()
{
    QTest::addColumn<bool>("stepwise");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("error"); // 0: opens
    for (const bool stepwise : {false, true}) {
        const char* mode = stepwise ? "stepwise" : "openat2";
        QTest::addRow("%s: plain folder", mode) << stepwise << "\\docs\\deep" << 0;
        QTest::addRow("%s: dots inside", mode) << stepwise << "/docs/./deep/../deep" << 0;
        QTest::addRow("%s: link out", mode) << stepwise << "\\etc-link" << ELOOP;
        QTest::addRow("%s: through link", mode) << stepwise << "\\etc-link\\ssl" << ELOOP;
        QTest::addRow("%s: climbing out", mode) << stepwise << "\\docs\\..\\..\\volume" << EINVAL;
        QTest::addRow("%s: nested mount", mode) << stepwise << "\\mnt" << EXDEV;
    }
}

void DaemonFilesTest::safeOpenConfinesPaths()
{
    QFETCH(bool, stepwise);
    QFETCH(QString, path);
    QFETCH(int, error);
    if (error == EXDEV && !m_mounted)
        QSKIP("Needs root to mount a tmpfs inside the tree");
    const std::optional<VolumePath> located = VolumePath::locate((m_volume + path).toStdString(),
        std::vector<std::string> {"/", m_volume.toStdString()});
    QCOMPARE(located.has_value(), error != EINVAL);
    if (!located)
        return;
    QCOMPARE(QString::fromStdString(located->mountPoint), m_volume);
    errno = 0;
    const UniqueFd fd = SafeOpen(stepwise ? SafeOpen::Mode::PerComponent : SafeOpen::Mode::Automatic).openDirectory(*located);
    QCOMPARE(fd.valid(), error == 0);
    if (error)
        QCOMPARE(errno, error);
}

void DaemonFilesTest::listingShowsWhatThePeerMayRead_data()
{
    QTest::addColumn<uint>("uid");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("folders"); // "name=size"
    QTest::newRow("root, top") << 0u << "\\" << int(Wire::SUCCESS) << QStringList {"a.mp3", "etc-link", "f.unknown"}
                               << QStringList {"Music=200", "docs=510", "private=33", "windows=400"};
    QTest::newRow("nobody, top") << 65534u << "" << int(Wire::SUCCESS) << QStringList {"a.mp3", "etc-link", "f.unknown"}
                                 << QStringList {"Music=200", "docs=510", "private=0", "windows=400"};
    QTest::newRow("root, private") << 0u << "\\private\\" << int(Wire::SUCCESS) << QStringList {"secret.txt"} << QStringList();
    QTest::newRow("nobody, private") << 65534u << "\\private\\" << int(Wire::ACCESS_DENIED) << QStringList() << QStringList();
    QTest::newRow("through a link") << 0u << "\\etc-link\\" << int(Wire::ACCESS_DENIED) << QStringList() << QStringList();
    QTest::newRow("not there") << 0u << "\\gone\\" << int(Wire::NOT_FOUND) << QStringList() << QStringList();
    QTest::newRow("off the volume") << 0u << "\\..\\" << int(Wire::INVALID_REQUEST) << QStringList() << QStringList();
}

void DaemonFilesTest::listingShowsWhatThePeerMayRead()
{
    QFETCH(uint, uid);
    QFETCH(QString, path);
    QFETCH(int, code);
    QFETCH(QStringList, files);
    QFETCH(QStringList, folders);
    if (uid != 0 && !isRoot())
        QSKIP("Needs root to act as a second user");
    if (code != Wire::SUCCESS)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Listing of .* refused")));
    Wire::FileListRequest request;
    request.set_dirpath((m_volume + path).toStdString());
    const std::atomic_bool stop {false};
    const DirectoryListing::Result result = DirectoryListing().run(request, {m_volume.toStdString()}, {uid, uid, 0}, stop);
    QCOMPARE(int(result.code), code);
    QCOMPARE(result.list.path(), request.dirpath());
    QStringList names;
    for (const auto& file : result.list.files())
        names << QString::fromStdString(file.first);
    names.sort();
    QCOMPARE(names, files);
    QStringList sized;
    for (const auto& folder : result.list.directories())
        sized << QStringLiteral("%1=%2").arg(QString::fromStdString(folder.first)).arg(folder.second);
    sized.sort();
    if (!m_mounted)
        sized.removeAll(QStringLiteral("mnt=0"));
    QCOMPARE(sized, folders);
}

void DaemonFilesTest::logCopyIsSafe_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("afterwards");
    QTest::newRow("own folder") << "own" << int(Wire::SUCCESS) << QStringList {"kestravind.log", "kestravind.log.1"};
    QTest::newRow("someone else's") << "others" << int(Wire::ACCESS_DENIED) << QStringList();
    QTest::newRow("through a link") << "link/sub" << int(Wire::ACCESS_DENIED) << QStringList();
    QTest::newRow("existing file") << "taken" << int(Wire::SUCCESS) << QStringList {"kestravind.log", "kestravind.log.1"};
}

void DaemonFilesTest::logCopyIsSafe()
{
    if (!isRoot())
        QSKIP("Needs root to act as a second user");
    QFETCH(QString, folder);
    QFETCH(int, code);
    QFETCH(QStringList, afterwards);
    const QString base = m_dir.filePath(QStringLiteral("copies/") + QTest::currentDataTag()).replace(' ', '_');
    const QString logs = m_dir.filePath(QStringLiteral("logs"));
    writeFile(logs + "/kestravind.log", 120);
    writeFile(logs + "/kestravind.log.1", 80);
    writeFile(logs + "/other.txt", 5);
    for (const char* name : {"own", "others", "taken", "target/sub"})
        QVERIFY(QDir().mkpath(base + '/' + name));
    for (const char* name : {"own", "taken", "target", "target/sub"})
        QVERIFY(::chown(QFile::encodeName(base + '/' + name), Nobody.uid, Nobody.gid) == 0);
    QVERIFY(::chmod(QFile::encodeName(base + "/others"), 0777) == 0);
    QVERIFY(QFile::link(base + "/target", base + "/link"));
    writeFile(base + "/taken/kestravind.log", 7);
    if (code != Wire::SUCCESS)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Log files not copied to")));
    else
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("log files copied to")));
    if (folder == QLatin1String("taken"))
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^Log file kestravind.log not copied")));

    Wire::CopyLogFilesRequest request;
    request.set_destinationdirectory((base + '/' + folder).toStdString());
    const Wire::CopyLogFilesResponse answer = LogCopy(logs.toStdString(), "kestravind").run(request, Nobody);
    QCOMPARE(int(answer.code()), code);
    QCOMPARE(answer.filescopied(), code == Wire::SUCCESS ? (folder == QLatin1String("taken") ? 1u : 2u) : 0u);
    QCOMPARE(entriesOf(base + '/' + folder), afterwards);
    QCOMPARE(entriesOf(base + "/target/sub"), QStringList());
    if (code != Wire::SUCCESS)
        return;
    QCOMPARE(QFileInfo(base + '/' + folder + "/kestravind.log").size(), folder == QLatin1String("taken") ? 7 : 120);
    QCOMPARE(QFileInfo(base + '/' + folder + "/kestravind.log.1").size(), 80);
    QCOMPARE(QFileInfo(base + '/' + folder + "/kestravind.log.1").ownerId(), Nobody.uid);
}

void DaemonFilesTest::speedTestLeavesNothingBehind_data()
{
    QTest::addColumn<quint64>("fileSize");
    QTest::addColumn<bool>("stopped");
    QTest::addColumn<int>("code");
    QTest::newRow("measured") << quint64(8 << 20) << false << int(Wire::SUCCESS);
    QTest::newRow("stopped") << quint64(8 << 20) << true << int(Wire::CANCELED);
    QTest::newRow("no room") << quint64(64 << 20) << false << int(Wire::FAILED);
}

void DaemonFilesTest::speedTestLeavesNothingBehind()
{
    QFETCH(quint64, fileSize);
    QFETCH(bool, stopped);
    QFETCH(int, code);
    const bool small = code == Wire::FAILED;
    if (small && !m_mounted)
        QSKIP("Needs root to mount a small tmpfs");
    const QString volume = small ? m_mount : m_dir.filePath(QStringLiteral("speed"));
    QVERIFY(QDir().mkpath(volume));
    const QStringList before = entriesOf(volume);
    if (small)
        QTest::ignoreMessage(QtWarningMsg, "No volume of drive 7 has room for a speed test");

    Wire::DiskPerformanceRequest request;
    request.set_driveid(7);
    request.set_filesize(fileSize);
    request.set_blocksize(1 << 20);
    const std::atomic_bool stop {stopped};
    const Wire::DiskPerformance answer = SpeedTest().run(request, {"/nonexistent", volume.toStdString()}, stop);
    QCOMPARE(int(answer.code()), code);
    QCOMPARE(answer.driveid(), 7u);
    QCOMPARE(answer.readspeed() > 0 && answer.writespeed() > 0, code == Wire::SUCCESS);
    QCOMPARE(entriesOf(volume), before);
}

void DaemonFilesTest::unpluggedDriveEndsRequest_data()
{
    QTest::addColumn<bool>("speedTest");
    QTest::addColumn<QString>("logLine");
    QTest::newRow("file category scan") << false << "^File category scan of drive 0 failed: the drive could not be read";
    QTest::newRow("speed test") << true << "^Speed test write failed at byte 0";
}

void DaemonFilesTest::unpluggedDriveEndsRequest()
{
    QFETCH(bool, speedTest);
    QFETCH(QString, logLine);
    if (!isRoot() || !QFile::exists(QStringLiteral("/dev/loop-control")))
        QSKIP("Needs root and loop devices");
    const QString tree = m_dir.filePath(QStringLiteral("unplugged-tree")), image = m_dir.filePath(QStringLiteral("files-unplugged.img"));
    const QString mountPoint = m_dir.filePath(QStringLiteral("unplugged"));
    for (int i = 0; i < 200; ++i)
        writeFile(QStringLiteral("%1/d%2/e%3/f.txt").arg(tree).arg(i % 20).arg(i), 5000);
    QVERIFY(QDir().mkpath(mountPoint));
    QCOMPARE(QProcess::execute(QStringLiteral("mkfs.ext4"), {"-q", "-d", tree, image, "160M"}), 0);
    const QString loop = run(QStringLiteral("losetup"), {"--find", "--show", image});
    QVERIFY(loop.startsWith(QLatin1String("/dev/loop")));
    bool attached = true;
    const auto cleanUp = qScopeGuard([&] {
        QProcess::execute(QStringLiteral("umount"), {mountPoint});
        if (attached)
            QProcess::execute(QStringLiteral("losetup"), {"-d", loop});
    });
    QCOMPARE(QProcess::execute(QStringLiteral("mount"), {loop, mountPoint}), 0);
    const QStringList before = entriesOf(mountPoint);
    // Pulled while mounted: every read and write fails, and the loop device goes with the unmount.
    QVERIFY(QFile::resize(image, 0));
    QCOMPARE(QProcess::execute(QStringLiteral("losetup"), {"-c", loop}), 0);
    attached = QProcess::execute(QStringLiteral("losetup"), {"-d", loop}) != 0;

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(logLine));
    const std::atomic_bool stop {false};
    Wire::Code code;
    if (speedTest) {
        Wire::DiskPerformanceRequest request;
        request.set_driveid(9);
        request.set_filesize(4 << 20);
        request.set_blocksize(1 << 20);
        code = SpeedTest().run(request, {mountPoint.toStdString()}, stop).code();
    } else {
        const Wire::FileTypeStructureRequest request;
        code = FileCategoryScan().run(request, {mountPoint.toStdString()}, stop, {}).code();
    }
    QCOMPARE(code, Wire::FAILED);
    QCOMPARE(entriesOf(mountPoint), before);
}

QTEST_GUILESS_MAIN(DaemonFilesTest)
#include "tst_daemonfiles.moc"
