#include "devices/BlkidProbe.h"

#include "devices/DevicesLog.h"

#include <QFile>

#include <blkid/blkid.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace Velmora::Daemon::Devices {

namespace {

QString escaped(const char* value)
{
    // Every byte may become four.
    std::vector<char> buffer(std::strlen(value) * 4 + 1);
    if (blkid_encode_string(value, buffer.data(), buffer.size()) != 0)
        return QString::fromUtf8(value);
    return QString::fromUtf8(buffer.data());
}

void addValue(Properties* properties, const char* name, const char* value)
{
    const QByteArray key(name);
    if (key == "TYPE")
        properties->insert(QStringLiteral("ID_FS_TYPE"), QString::fromUtf8(value));
    else if (key == "LABEL")
        properties->insert(QStringLiteral("ID_FS_LABEL_ENC"), escaped(value));
    else if (key == "UUID")
        properties->insert(QStringLiteral("ID_FS_UUID"), QString::fromUtf8(value));
    else if (key == "VERSION")
        properties->insert(QStringLiteral("ID_FS_VERSION"), QString::fromUtf8(value));
    else if (key == "PTTYPE")
        properties->insert(QStringLiteral("ID_PART_TABLE_TYPE"), QString::fromUtf8(value));
    else if (key == "PTUUID")
        properties->insert(QStringLiteral("ID_PART_TABLE_UUID"), QString::fromUtf8(value));
    else if (key == "PART_ENTRY_NAME")
        properties->insert(QStringLiteral("ID_PART_ENTRY_NAME"), escaped(value));
    else if (key.startsWith("PART_ENTRY_"))
        properties->insert(QStringLiteral("ID_") + QString::fromLatin1(key), QString::fromUtf8(value));
}

} // namespace

Properties probeWithBlkid(const QString& devicePath)
{
    Properties properties;
    blkid_probe probe = blkid_new_probe_from_filename(QFile::encodeName(devicePath).constData());
    if (!probe) {
        qCDebug(devicesLog, "Cannot probe %s: %s", qPrintable(devicePath), std::strerror(errno));
        return properties;
    }
    blkid_probe_enable_superblocks(probe, 1);
    blkid_probe_set_superblocks_flags(
        probe, BLKID_SUBLKS_LABEL | BLKID_SUBLKS_UUID | BLKID_SUBLKS_TYPE | BLKID_SUBLKS_VERSION);
    blkid_probe_enable_partitions(probe, 1);
    blkid_probe_set_partitions_flags(probe, BLKID_PARTS_ENTRY_DETAILS);
    if (blkid_do_safeprobe(probe) == 0) {
        const int count = blkid_probe_numof_values(probe);
        for (int i = 0; i < count; ++i) {
            const char* name = nullptr;
            const char* value = nullptr;
            if (blkid_probe_get_value(probe, i, &name, &value, nullptr) == 0 && name && value)
                addValue(&properties, name, value);
        }
    }
    blkid_free_probe(probe);
    return properties;
}

} // namespace Velmora::Daemon::Devices
