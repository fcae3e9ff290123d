#pragma once

#include <QPair>
#include <QString>
#include <QVector>

#include <atomic>
#include <memory>
#include <mutex>

namespace Velmora::Daemon {

class RequestRouter;

namespace Devices {
class DriveRegistry;
}

namespace Migration {
class CommandRunner;
class DiskEngines;
}

// The requests of a migration, one after the other as the wizard sends them: erase the
// destination, create and format its partitions, copy, make it start. Each is a task of its own,
// so that a slow step does not hold the connection's short requests. What one step must know of
// an earlier one is kept here: the source drive, and which source partition went to which new one.
class MigrationEngines
{
public:
    // `workFolder` is the service's own, root only: the copy and the start-up set-up make their
    // private mount folders in it.
    MigrationEngines(Devices::DriveRegistry& drives, QString workFolder);
    ~MigrationEngines();

    // The drive whose partitions the migration's filters were asked about: the source, which the
    // destination's erasing must never be.
    void setSource(quint32 driveId) { m_source = driveId; }

    void plugInto(RequestRouter& router);

private:
    void addCopiedPair(const QString& sourcePartition, const QString& destinationPartition);
    QVector<QPair<QString, QString>> copiedPairs() const;

    Devices::DriveRegistry& m_drives;
    const QString m_workFolder;
    std::unique_ptr<Migration::CommandRunner> m_tools;
    std::unique_ptr<Migration::DiskEngines> m_disks;
    std::atomic<qint64> m_source {-1};
    mutable std::mutex m_pairsMutex;
    QVector<QPair<QString, QString>> m_pairs; // (source partition, destination partition) device paths
};

} // namespace Velmora::Daemon
