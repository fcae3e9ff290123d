#include "devices/MountTable.h"

#include "devices/DevicesLog.h"
#include "common/Sysfs.h"

#include <QFile>
#include <QList>

#include <cerrno>
#include <cstring>

namespace Velmora::Daemon::Devices {

namespace {

// The kernel writes blanks, tabs, newlines and backslashes in paths as \ooo.
QString unescaped(const QByteArray& field)
{
    QByteArray bytes;
    bytes.reserve(field.size());
    for (int i = 0; i < field.size(); ++i) {
        const char c = field.at(i);
        if (c == '\\' && i + 3 < field.size()) {
            const QByteArray digits = field.mid(i + 1, 3);
            bool ok = false;
            const int value = digits.toInt(&ok, 8);
            if (ok && digits.size() == 3 && value < 256) {
                bytes.append(static_cast<char>(value));
                i += 3;
                continue;
            }
        }
        bytes.append(c);
    }
    return QFile::decodeName(bytes);
}

} // namespace

MountTable MountTable::fromFile(const QString& path)
{
    const std::optional<QByteArray> text = Sysfs::read(path);
    if (!text) {
        qCWarning(devicesLog, "Cannot read the mount table %s: %s", qPrintable(path), std::strerror(errno));
        return MountTable();
    }
    return fromText(*text);
}

MountTable MountTable::fromText(const QByteArray& text)
{
    MountTable table;
    for (const QByteArray& line : text.split('\n')) {
        // id parent major:minor root mount-point options [optional fields...] - type source options
        const QList<QByteArray> fields = line.split(' ');
        const int separator = fields.indexOf("-", 6);
        if (fields.size() < 10 || separator < 0 || separator + 2 >= fields.size()) {
            if (!line.trimmed().isEmpty())
                qCDebug(devicesLog, "Mount table line not understood: %s", line.constData());
            continue;
        }
        Mount mount;
        mount.device = QString::fromLatin1(fields.at(2));
        mount.root = unescaped(fields.at(3));
        mount.mountPoint = unescaped(fields.at(4));
        mount.fileSystem = unescaped(fields.at(separator + 1));
        mount.source = unescaped(fields.at(separator + 2));
        const int index = table.m_mounts.size();
        table.m_byDevice[mount.device].append(index);
        table.m_bySource[mount.source].append(index);
        table.m_mounts.append(mount);
    }
    return table;
}

const MountTable::Mount* MountTable::best(const QVector<int>& candidates) const
{
    const Mount* chosen = nullptr;
    for (int index : candidates) {
        const Mount& mount = m_mounts.at(index);
        if (!chosen) {
            chosen = &mount;
            continue;
        }
        const bool wholeNow = mount.root == QLatin1String("/");
        const bool wholeChosen = chosen->root == QLatin1String("/");
        if (wholeNow != wholeChosen) {
            if (wholeNow)
                chosen = &mount;
            continue;
        }
        if (!wholeNow && mount.root.size() != chosen->root.size()) {
            if (mount.root.size() < chosen->root.size())
                chosen = &mount;
            continue;
        }
        if (mount.mountPoint.size() < chosen->mountPoint.size())
            chosen = &mount;
    }
    return chosen;
}

const MountTable::Mount* MountTable::mountOf(const QString& majorMinor, const QString& devicePath) const
{
    const Mount* mount = best(m_byDevice.value(majorMinor));
    if (!mount && !devicePath.isEmpty())
        mount = best(m_bySource.value(devicePath));
    return mount;
}

} // namespace Velmora::Daemon::Devices
