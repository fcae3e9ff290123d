#pragma once

#include "boot/BootStyle.h"

#include "Migration.pb.h"

#include <QPair>
#include <QString>
#include <QVector>

#include <atomic>

namespace Velmora::Daemon::Boot {

// The devices behind a `MigrationBootability` request, as the drive registry knows them.
struct BootabilityTarget
{
    QString destinationDisk; // e.g. /dev/sdb
    QString osPartition; // e.g. /dev/sdb2, the new system's root
    QString bootPartition; // e.g. /dev/sdb1; may be empty or the OS partition itself
    QVector<QPair<QString, QString>> pairs; // (source device, destination device) of each copied partition
    BootStyle style = BootStyle::Bios; // as the source system starts
    bool machineIsUefi = false; // whether this machine has UEFI boot entries to write
    QString workFolder; // a folder of the service's own (root only) where mount folders are made
};

// Makes a migrated system start from its new disk: mounts it privately, points /etc/fstab and
// /etc/crypttab at the new partitions, installs GRUB in it as the source started (BIOS or UEFI),
// adds the UEFI boot entry, and unmounts everything whatever happened. The answer's code is that
// of the first step that could not be done (see BootabilityCode); each step is logged.
class Bootability
{
public:
    explicit Bootability(BootabilityTarget target);

    Velmora::Message::MigrationBootability run(const Velmora::Message::MigrationBootability& request,
        const std::atomic_bool& stop) const;

private:
    int configure(const std::atomic_bool& stop) const;

    BootabilityTarget m_target;
};

} // namespace Velmora::Daemon::Boot
