#pragma once

#include "boot/BootStyle.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <optional>

namespace Velmora::Daemon::Boot {

// What GRUB needs to be installed into a mounted system, with /dev, /proc and /sys bound into it.
struct GrubJob
{
    QString rootPath; // the mounted system, the root of the chroot
    int root = -1; // a descriptor of it
    BootStyle style = BootStyle::Bios;
    QString disk; // the whole disk the system is on
    QString efiDirectory; // UEFI: where the system mounts its EFI system partition, e.g. /boot/efi
    QString bootloaderId; // UEFI: the folder under EFI/ and the boot entry's name
    bool machineIsUefi = false;
};

// The system's own GRUB tools, as paths inside it.
struct GrubTools
{
    QString installer; // grub-install
    QStringList menuCommand; // update-grub, or grub-mkconfig with the menu's path
};

// The tools for the job's style; nothing, and a log line saying what is missing, when the system
// has no GRUB for it.
std::optional<GrubTools> findGrub(const GrubJob& job);

// Installs GRUB the way the job's style asks and writes its menu, both with the system's own
// tools in a chroot. On UEFI the files go to the EFI partition without touching this machine's
// boot entries; where this machine did not start by UEFI they also go to the fallback path that
// any firmware tries. Returns a BootabilityCode.
int installGrub(const GrubJob& job, const GrubTools& tools, const std::atomic_bool& stop);

// Checks the menu the system's tools wrote: one that names the system's root by this machine's
// name for the partition (root=/dev/sdb2) starts nothing once the disk is moved to another port or
// the old disk is taken out. GRUB names it so where the machine has no /dev/disk/by-uuid link for
// the new file system, which udev makes. Returns a BootabilityCode.
int checkMenuRoot(const GrubJob& job, const QString& osPartition);

// Adds this machine's UEFI boot entry for the loader the system installed on partition
// `espDevice` of `disk`. Returns a BootabilityCode.
int writeEfiEntry(const GrubJob& job, const QString& espDevice, const std::atomic_bool& stop);

} // namespace Velmora::Daemon::Boot
