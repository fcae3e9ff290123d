#pragma once

#include "CommandRunner.h"
#include "DestinationGuard.h"

#include "Migration.pb.h"

#include <QHash>

#include <atomic>
#include <functional>
#include <mutex>

namespace Velmora::Daemon::Migration {

// The device path (/dev/sdb) of a drive id of the service's own drive list, read afresh; empty
// for an id the list does not hold.
using DiskLookup = std::function<QString(quint32 driveId)>;

// The three requests that lay out a migration's destination: erase it, make its partitions, make
// their file systems. Each checks the disk from fresh facts right before it writes, logs what it
// ran, and answers with the request's own message and a code. Partitions and file systems are
// made only on a disk this service has cleaned since it was attached. One disk change runs at a
// time; the requests come from worker threads.
class DiskEngines
{
public:
    DiskEngines(CommandRunner& runner, DiskLookup lookup);

    // `sourceDevicePath` is the drive the migration reads, where known: it is never erased.
    Velmora::Message::CleanDisk cleanDisk(const Velmora::Message::CleanDisk& request, const QString& sourceDevicePath,
        const std::atomic_bool& stop);
    Velmora::Message::PartitionCreate createPartition(const Velmora::Message::PartitionCreate& request,
        const std::atomic_bool& stop);
    Velmora::Message::PartitionFormat formatPartition(const Velmora::Message::PartitionFormat& request,
        const std::atomic_bool& stop);

private:
    struct Target {
        QString disk; // kernel name
        QString devicePath;
        Refusal refusal;
    };
    Target resolve(const char* what, quint32 driveId, const QString& sourceDevicePath, bool mustBeCleaned) const;
    Velmora::Message::Code failure(const CommandResult& result, const std::atomic_bool& stop) const;
    bool run(const Command& command, const std::atomic_bool& stop, Velmora::Message::Code* code,
        QByteArray* output = nullptr);
    bool showPartition(const QString& disk, quint32 number, const std::atomic_bool& stop, Velmora::Message::Code* code);
    bool dropPartitions(const QString& devicePath, const std::atomic_bool& stop, Velmora::Message::Code* code);

    CommandRunner& m_runner;
    const DiskLookup m_lookup;
    std::mutex m_writing;
    // The disks cleaned by this service, with the identity of their attachment at the time.
    QHash<QString, QString> m_cleaned;
};

} // namespace Velmora::Daemon::Migration
