#include "TrimState.h"

#include "FactFile.h"

#include <QFileInfo>
#include <QHash>
#include <QList>


namespace Velmora::Daemon::Smart {

namespace {

// mountinfo lists every mount of the namespace; a container host can have thousands.
constexpr qint64 MountInfoLimit = 16 * 1024 * 1024;

struct Mount {
    QByteArray device; // "major:minor"
    bool discard = false;
};

bool hasDiscardOption(const QByteArray& options)
{
    // "discard" on ext4 and xfs, "discard=async" on btrfs; "nodiscard" is the opposite.
    for (const QByteArray& option : options.split(',')) {
        if (option == "discard" || option.startsWith("discard="))
            return true;
    }
    return false;
}

// Fields: id parent major:minor root mount-point options [optional...] - type source super-options.
QList<Mount> readMounts(const QString& root)
{
    QList<Mount> mounts;
    const QByteArray text = readFactFile(root + QStringLiteral("/proc/self/mountinfo"), MountInfoLimit);
    for (const QByteArray& line : text.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        const int separator = fields.indexOf("-");
        if (fields.size() < 6 || separator < 6 || fields.size() < separator + 4)
            continue;
        mounts.append({fields.at(2), hasDiscardOption(fields.at(5)) || hasDiscardOption(fields.at(separator + 3))});
    }
    return mounts;
}

// Non-rotational and accepting discards, judged by the queue of the whole disk a partition is on.
bool isDiscardCapableSsd(const QString& root, const QByteArray& device)
{
    const QString node = QFileInfo(root + QStringLiteral("/sys/dev/block/") + QString::fromLatin1(device)).canonicalFilePath();
    if (node.isEmpty())
        return false; // not a block device: tmpfs, proc, overlay...
    const QString disk = QFileInfo::exists(node + QStringLiteral("/partition")) ? QFileInfo(node).path() : node;
    return readFactText(disk + QStringLiteral("/queue/rotational")) == QLatin1String("0")
        && readFactText(disk + QStringLiteral("/queue/discard_max_bytes")).toULongLong() > 0;
}

} // namespace

TrimState::TrimState(QString root)
    : m_root(rootPrefix(root))
{
}

TrimState::Facts TrimState::read() const
{
    Facts facts;
    QHash<QByteArray, bool> capable; // bind mounts repeat a device many times over
    for (const Mount& mount : readMounts(m_root)) {
        auto known = capable.constFind(mount.device);
        if (known == capable.constEnd())
            known = capable.insert(mount.device, isDiscardCapableSsd(m_root, mount.device));
        if (*known) {
            facts.discardCapableSsdMounted = true;
            facts.mountedWithDiscard = facts.mountedWithDiscard || mount.discard;
        }
    }
    facts.timerEnabled = timerEnabled();
    return facts;
}

bool TrimState::timerEnabled() const
{
    // `systemctl enable` records itself as a link in the wants folder of the timer's target; a
    // mask is a link to /dev/null that overrides any such link.
    const QFileInfo mask(m_root + QStringLiteral("/etc/systemd/system/fstrim.timer"));
    if (mask.isSymLink() && mask.symLinkTarget() == QLatin1String("/dev/null"))
        return false;
    for (const char* folder : {"/etc/systemd/system", "/usr/lib/systemd/system", "/lib/systemd/system"}) {
        const QFileInfo link(m_root + QLatin1String(folder) + QStringLiteral("/timers.target.wants/fstrim.timer"));
        if (link.isSymLink() || link.exists())
            return true;
    }
    return false;
}

} // namespace Velmora::Daemon::Smart
