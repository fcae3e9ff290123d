#pragma once

#include <QHash>
#include <QString>
#include <QVector>

namespace Velmora::Daemon::Devices {

// The mounts of this process's mount namespace, as /proc/self/mountinfo lists them.
class MountTable
{
public:
    struct Mount
    {
        QString device; // "major:minor" of the file system
        QString root; // the folder of the file system that is mounted, "/" for all of it
        QString mountPoint;
        QString fileSystem;
        QString source;
    };

    // An unreadable file gives an empty table, with a log line.
    static MountTable fromFile(const QString& path);
    static MountTable fromText(const QByteArray& text);

    // Where the file system of a device is mounted: the mount that shows all of it and, of those,
    // the shortest path. A file system mounted only in part (a subvolume, a bind of a folder) gives
    // the mount of the shortest root. Devices are matched by number, or by the source path where
    // the file system has a number of its own (btrfs). Null when not mounted.
    const Mount* mountOf(const QString& majorMinor, const QString& devicePath) const;

    const QVector<Mount>& mounts() const { return m_mounts; }

private:
    const Mount* best(const QVector<int>& candidates) const;

    QVector<Mount> m_mounts;
    QHash<QString, QVector<int>> m_byDevice;
    QHash<QString, QVector<int>> m_bySource;
};

} // namespace Velmora::Daemon::Devices
