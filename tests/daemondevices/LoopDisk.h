#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <sys/mount.h>
#include <unistd.h>

// A disk image attached to a loop device, its partitions mounted under a folder of the test.
// Whatever it attached or mounted, it unmounts and detaches again when it goes, in every outcome.
// Each operation returns false and says why in error().
class LoopDisk
{
public:
    LoopDisk() = default;
    LoopDisk(const LoopDisk&) = delete;
    LoopDisk& operator=(const LoopDisk&) = delete;
    ~LoopDisk()
    {
        for (auto it = m_mounts.crbegin(); it != m_mounts.crend(); ++it) {
            if (::umount2(QFile::encodeName(*it).constData(), 0) != 0)
                ::umount2(QFile::encodeName(*it).constData(), MNT_DETACH);
        }
        if (!m_device.startsWith(QLatin1String("/dev/loop")))
            return;
        if (m_addedPartitions)
            run(QStringLiteral("partx"), {QStringLiteral("--delete"), m_device});
        run(QStringLiteral("losetup"), {QStringLiteral("--detach"), m_device});
    }

    // Why this machine cannot run the test (no root, no loop devices, a tool missing), or empty.
    static QString unavailableReason()
    {
        if (::geteuid() != 0)
            return QStringLiteral("needs root to attach and mount a loop device");
        if (!QFile::exists(QStringLiteral("/dev/loop-control")))
            return QStringLiteral("no loop devices on this machine (/dev/loop-control is missing)");
        for (const char* tool : {"sfdisk", "losetup", "partx", "mkfs.ext4", "mkfs.vfat", "mount"}) {
            if (findTool(QLatin1String(tool)).isEmpty())
                return QStringLiteral("%1 is not installed").arg(QLatin1String(tool));
        }
        return QString();
    }

    // Runs a tool with input on its stdin, never through a shell.
    bool run(const QString& tool, const QStringList& arguments, const QByteArray& input = QByteArray())
    {
        QProcess process;
        process.start(findTool(tool), arguments);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            process.kill();
            process.waitForFinished(1000);
            m_error = tool + QLatin1String(" failed: ") + QString::fromLocal8Bit(process.readAllStandardError());
            return false;
        }
        m_output = process.readAllStandardOutput().trimmed();
        return true;
    }

    bool attach(const QString& image)
    {
        if (!run(QStringLiteral("losetup"), {QStringLiteral("--find"), QStringLiteral("--show"), QStringLiteral("--partscan"), image}))
            return false;
        m_device = QString::fromLocal8Bit(m_output);
        // The partition nodes appear a moment after the table has been read. A kernel built without
        // partition table support reads no table itself: the partitions are then added from user space.
        for (int attempt = 0; attempt < 50 && !QFile::exists(partition(2)); ++attempt) {
            if (attempt == 25)
                m_addedPartitions = run(QStringLiteral("partx"), {QStringLiteral("--add"), m_device});
            QThread::msleep(20);
        }
        m_error = QStringLiteral("no partition devices for ") + m_device;
        return QFile::exists(partition(1)) && QFile::exists(partition(2));
    }

    // A loop device attached by other means, detached with this object.
    void adopt(const QString& device) { m_device = device; }

    bool mount(const QString& device, const QString& folder, const QStringList& options = {})
    {
        if (!QDir().mkpath(folder) || !run(QStringLiteral("mount"), options + QStringList{device, folder}))
            return false;
        m_mounts.append(folder);
        return true;
    }

    QString device() const { return m_device; }
    QString partition(int number) const { return m_device + QLatin1Char('p') + QString::number(number); }
    QString error() const { return m_error; }
    // What the last tool that succeeded printed, trimmed.
    QByteArray output() const { return m_output; }

private:
    static QString findTool(const QString& name)
    {
        const QString found = QStandardPaths::findExecutable(name);
        return found.isEmpty() ? QStandardPaths::findExecutable(name, {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")}) : found;
    }

    QString m_device;
    bool m_addedPartitions = false;
    QStringList m_mounts;
    QString m_error;
    QByteArray m_output;
};
