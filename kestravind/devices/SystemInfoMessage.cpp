#include "devices/SystemInfoMessage.h"

namespace Velmora::Daemon::Devices {

namespace {

using DriveInfo = Velmora::Message::SystemInfo::DriveInfo;
using PartitionInfo = Velmora::Message::PartitionInfo;

std::string utf8(const QString& text)
{
    return text.toStdString();
}

void fillPartition(PartitionInfo* info, const PartitionRecord& partition)
{
    info->set_id(partition.id);
    info->set_offset(partition.offset);
    info->set_size(partition.size);
    info->set_used(partition.used);
    info->set_type(static_cast<PartitionInfo::PartitionType>(partition.type));
    info->set_label(utf8(partition.label));
    info->set_letter(utf8(partition.mountPoint));
    info->set_volumename(utf8(partition.devicePath));
    info->set_filesystem(utf8(partition.fileSystem));
    info->set_isbootable(partition.bootable);
    info->set_gpttype(utf8(partition.gptType));
    info->set_gptid(utf8(partition.gptId));
    info->set_gptattributes(partition.gptAttributes);
    info->set_gptname(utf8(partition.gptName));
    info->set_mbrtype(partition.mbrType);
    info->set_islogical(partition.logical);
}

} // namespace

Velmora::Message::SystemInfo toSystemInfo(const QVector<DriveRecord>& drives)
{
    Velmora::Message::SystemInfo message;
    for (const DriveRecord& drive : drives) {
        DriveInfo* info = message.add_drives();
        info->set_driveid(drive.id);
        info->set_model(utf8(drive.model));
        info->set_serial(utf8(drive.serial));
        info->set_deviceinstancepath(utf8(drive.instancePath));
        info->set_type(utf8(drive.busType));
        info->set_size(drive.size);
        info->set_vendorid(utf8(drive.vendor));
        info->set_productid(utf8(drive.product));
        info->set_revisionid(utf8(drive.firmware));
        info->set_firmwareversion(utf8(drive.firmware));
        info->set_warrantyinfo(utf8(drive.serial));
        info->set_satasupportedspeed(drive.sataSupportedSpeed);
        info->set_satacurrentspeed(drive.sataCurrentSpeed);
        info->set_partitionformatstyle(static_cast<DriveInfo::PartitionStyle>(drive.partitionStyle));
        for (const PartitionRecord& partition : drive.partitions)
            fillPartition(info->add_partitions(), partition);
    }
    return message;
}

} // namespace Velmora::Daemon::Devices
