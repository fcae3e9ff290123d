#include "devices/DriveRegistry.h"

#include "devices/DevicesLog.h"
#include "devices/DriveEnumerator.h"
#include "devices/LivePropertySource.h"
#include "devices/SystemInfoMessage.h"

namespace Velmora::Daemon::Devices {

DriveRegistry::DriveRegistry(Scan scan)
    : m_scan(std::move(scan))
{
}

Velmora::Message::SystemInfo DriveRegistry::rescan()
{
    std::lock_guard<std::mutex> scanning(m_scanMutex);
    QVector<DriveRecord> found = m_scan();

    std::lock_guard<std::mutex> lock(m_mutex);
    // A device of the last scan keeps its id.
    QHash<QString, quint32> previous;
    for (const DriveRecord& drive : std::as_const(m_drives))
        previous.insert(drive.identity, drive.id);
    QHash<QString, quint32> ids;
    QMap<quint32, DriveRecord> drives;
    for (DriveRecord& drive : found) {
        if (ids.contains(drive.identity)) {
            qCWarning(devicesLog, "Drive %s reported twice in one scan; the second left out", qPrintable(drive.name));
            continue;
        }
        const auto known = previous.constFind(drive.identity);
        if (known != previous.constEnd()) {
            drive.id = known.value();
        } else {
            drive.id = m_nextId++;
            qCDebug(devicesLog, "Drive %u is %s (%s)", drive.id, qPrintable(drive.devicePath), qPrintable(drive.model));
        }
        ids.insert(drive.identity, drive.id);
        drives.insert(drive.id, std::move(drive));
    }
    m_drives = std::move(drives);
    return toSystemInfo(QVector<DriveRecord>::fromList(m_drives.values()));
}

std::optional<DriveRecord> DriveRegistry::drive(quint32 driveId) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_drives.constFind(driveId);
    if (it == m_drives.constEnd())
        return std::nullopt;
    return it.value();
}

QString DriveRegistry::devicePath(quint32 driveId) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_drives.constFind(driveId);
    return it == m_drives.constEnd() ? QString() : it->devicePath;
}

std::optional<PartitionRecord> DriveRegistry::partition(quint32 driveId, quint32 partitionId) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_drives.constFind(driveId);
    if (it == m_drives.constEnd())
        return std::nullopt;
    for (const PartitionRecord& partition : it.value().partitions) {
        if (partition.id == partitionId)
            return partition;
    }
    return std::nullopt;
}

QVector<DriveRecord> DriveRegistry::drives() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return QVector<DriveRecord>::fromList(m_drives.values());
}

std::unique_ptr<DriveRegistry> liveDriveRegistry(bool includeLoop)
{
    EnumeratorOptions options;
    options.includeLoop = includeLoop;
    // Scans run one at a time, which the udev context of the property source needs.
    auto enumerator = std::make_shared<DriveEnumerator>(options, std::make_shared<LivePropertySource>());
    return std::make_unique<DriveRegistry>([enumerator] { return enumerator->enumerate(); });
}

} // namespace Velmora::Daemon::Devices
