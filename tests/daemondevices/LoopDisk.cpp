#include "LoopDisk.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <cerrno>
#include <cstring>
#include <sys/mount.h>
#include <unistd.h>

namespace {

const QStringList tools = {QStringLiteral("sfdisk"), QStringLiteral("losetup"), QStringLiteral("partx"),
    QStringLiteral("mkfs.ext4"), QStringLiteral("mkfs.vfat")};

QString findTool(const QString& name)
{
    const QString found = QStandardPaths::findExecutable(name);
    return found.isEmpty() ? QStandardPaths::findExecutable(name, {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")})
                           : found;
}

} // namespace

LoopDisk::~LoopDisk()
{
    for (auto it = m_mounts.crbegin(); it != m_mounts.crend(); ++it) {
        const QByteArray path = QFile::encodeName(*it);
        if (::umount2(path.constData(), 0) != 0)
            ::umount2(path.constData(), MNT_DETACH);
    }
    if (!m_device.startsWith(QLatin1String("/dev/loop")))
        return;
    if (m_addedPartitions)
        run(QStringLiteral("partx"), {QStringLiteral("--delete"), m_device}, QByteArray());
    run(QStringLiteral("losetup"), {QStringLiteral("--detach"), m_device}, QByteArray());
}

QString LoopDisk::unavailableReason()
{
    if (::geteuid() != 0)
        return QStringLiteral("needs root to attach and mount a loop device");
    if (!QFile::exists(QStringLiteral("/dev/loop-control")))
        return QStringLiteral("no loop devices on this machine (/dev/loop-control is missing)");
    for (const QString& tool : tools) {
        if (findTool(tool).isEmpty())
            return QStringLiteral("%1 is not installed").arg(tool);
    }
    return QString();
}

bool LoopDisk::run(const QString& tool, const QStringList& arguments, const QByteArray& input, QByteArray* output)
{
    QProcess process;
    process.start(findTool(tool), arguments);
    if (!process.waitForStarted(5000)) {
        m_error = tool + QLatin1String(" did not start");
        return false;
    }
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        process.kill();
        process.waitForFinished(1000);
        m_error = tool + QLatin1String(" failed: ") + QString::fromLocal8Bit(process.readAllStandardError());
        return false;
    }
    if (output)
        *output = process.readAllStandardOutput();
    return true;
}

bool LoopDisk::partition(const QString& image, qint64 bytes, const QByteArray& sfdiskScript)
{
    QFile file(image);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(bytes)) {
        m_error = QStringLiteral("cannot make the image ") + image;
        return false;
    }
    file.close();
    return run(QStringLiteral("sfdisk"), {QStringLiteral("--quiet"), image}, sfdiskScript);
}

bool LoopDisk::attach(const QString& image)
{
    QByteArray output;
    if (!run(QStringLiteral("losetup"), {QStringLiteral("--find"), QStringLiteral("--show"), QStringLiteral("--partscan"), image},
            QByteArray(), &output))
        return false;
    m_device = QString::fromLocal8Bit(output.trimmed());
    if (!waitForPartitions()) {
        // A kernel built without partition table support reads no table itself: the partitions
        // are then added from user space.
        m_addedPartitions = run(QStringLiteral("partx"), {QStringLiteral("--add"), m_device}, QByteArray());
    }
    if (!waitForPartitions()) {
        m_error = QStringLiteral("no partition devices for ") + m_device;
        return false;
    }
    return true;
}

bool LoopDisk::waitForPartitions() const
{
    // The partition nodes appear a moment after the table has been read.
    for (int i = 0; i < 25; ++i) {
        if (QFile::exists(partitionDevice(1)) && QFile::exists(partitionDevice(2)))
            return true;
        QThread::msleep(20);
    }
    return false;
}

bool LoopDisk::format(int partition, const QString& mkfs, const QStringList& arguments)
{
    return run(mkfs, arguments + QStringList{partitionDevice(partition)}, QByteArray());
}

bool LoopDisk::mount(int partition, const QString& fileSystem, const QString& folder)
{
    if (!QDir().mkpath(folder)) {
        m_error = QStringLiteral("cannot make ") + folder;
        return false;
    }
    if (::mount(QFile::encodeName(partitionDevice(partition)).constData(), QFile::encodeName(folder).constData(),
            fileSystem.toLatin1().constData(), 0, nullptr)
        != 0) {
        m_error = QStringLiteral("cannot mount %1 on %2: %3").arg(partitionDevice(partition), folder, QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    m_mounts.append(folder);
    return true;
}
