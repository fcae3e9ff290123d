#include "devices/LivePropertySource.h"

#include "devices/BlkidProbe.h"
#include "devices/DevicesLog.h"

#include <libudev.h>

namespace Velmora::Daemon::Devices {

namespace {

// udev reads a device again some time after it changed: a partition formatted a moment ago may
// still have the record of its empty start. What udev says of a file system is therefore checked
// by a probe of our own wherever it names none; a disk with a partition table has no file system
// of its own to look for.
bool needsProbe(const Properties& properties)
{
    return properties.value(QStringLiteral("ID_FS_TYPE")).isEmpty()
        && properties.value(QStringLiteral("ID_PART_TABLE_TYPE")).isEmpty();
}

} // namespace

LivePropertySource::LivePropertySource()
    : m_udev(udev_new())
{
    if (!m_udev)
        qCWarning(devicesLog, "No udev context: drive facts come from sysfs and libblkid alone");
}

LivePropertySource::~LivePropertySource()
{
    if (m_udev)
        udev_unref(m_udev);
}

Properties LivePropertySource::properties(const QString& name, const QString& devicePath)
{
    Properties properties;
    bool initialized = false;
    if (m_udev) {
        udev_device* device = udev_device_new_from_subsystem_sysname(m_udev, "block", name.toUtf8().constData());
        if (device) {
            initialized = udev_device_get_is_initialized(device) > 0;
            for (udev_list_entry* entry = udev_device_get_properties_list_entry(device); entry;
                 entry = udev_list_entry_get_next(entry)) {
                properties.insert(QString::fromUtf8(udev_list_entry_get_name(entry)),
                    QString::fromUtf8(udev_list_entry_get_value(entry)));
            }
            udev_device_unref(device);
        }
    }
    if (!initialized || needsProbe(properties)) {
        const Properties probed = probeWithBlkid(devicePath);
        for (auto it = probed.constBegin(); it != probed.constEnd(); ++it) {
            if (properties.value(it.key()).isEmpty())
                properties.insert(it.key(), it.value());
        }
    }
    return properties;
}

} // namespace Velmora::Daemon::Devices
