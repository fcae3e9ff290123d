#include "boot/DeviceIdentity.h"

#include <blkid/blkid.h>

namespace Velmora::Daemon::Boot {

DeviceIdentity probeIdentity(const QString& devicePath)
{
    DeviceIdentity identity;
    identity.devicePath = devicePath;
    blkid_probe probe = blkid_new_probe_from_filename(devicePath.toLocal8Bit().constData());
    if (!probe)
        return identity;
    blkid_probe_enable_superblocks(probe, 1);
    blkid_probe_set_superblocks_flags(probe, BLKID_SUBLKS_UUID | BLKID_SUBLKS_LABEL | BLKID_SUBLKS_TYPE);
    blkid_probe_enable_partitions(probe, 1);
    blkid_probe_set_partitions_flags(probe, BLKID_PARTS_ENTRY_DETAILS);
    if (blkid_do_safeprobe(probe) == 0) {
        auto value = [probe](const char* name) {
            const char* data = nullptr;
            return blkid_probe_lookup_value(probe, name, &data, nullptr) == 0 ? QString::fromUtf8(data) : QString();
        };
        identity.uuid = value("UUID");
        identity.partUuid = value("PART_ENTRY_UUID");
        identity.label = value("LABEL");
        identity.fileSystem = value("TYPE");
    }
    blkid_free_probe(probe);
    return identity;
}

} // namespace Velmora::Daemon::Boot
