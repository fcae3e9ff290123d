#pragma once

#include "FileTree.h"
#include "SmartTable.h"

#include "SystemInfo.pb.h"
#include "SystemSummary.pb.h"

#include <QHash>
#include <QPair>
#include <QStringList>

#include <optional>

namespace Velmora::ServiceSim {

// What the scenario says about one partition beyond its table entry.
struct PartitionContent {
    FileTree files;
    bool hasSystemPaths = false; // the scenario lists the paths itself
    QStringList systemPaths;
    QStringList systemIgnoredPaths;
    QStringList faultedFiles;       // reported as not copied when the partition is copied
    QStringList faultedDirectories;
};

// What the scenario says about one drive beyond its table entry.
struct DriveExtras {
    SmartTable smart;
    double readBytesPerSecond = 0;
    double writeBytesPerSecond = 0;
};

// The simulated machine: its drives and partitions in the form the service reports them, the
// summary, and what lies behind them. Requests read and change it; it is the one state the
// request groups share.
class Machine
{
public:
    using PartitionKey = QPair<quint32, quint32>; // drive id, partition id
    using DriveInfo = Velmora::Message::SystemInfo_DriveInfo;
    using PartitionInfo = Velmora::Message::PartitionInfo;

    Velmora::Message::SystemInfo& systemInfo() { return m_systemInfo; }
    Velmora::Message::SystemSummary& summary() { return m_summary; }

    DriveInfo* drive(quint32 driveId);
    const DriveInfo* drive(quint32 driveId) const;
    PartitionInfo* partition(quint32 driveId, quint32 partitionId);
    const PartitionInfo* partition(quint32 driveId, quint32 partitionId) const;

    DriveExtras& driveExtras(quint32 driveId) { return m_driveExtras[driveId]; }
    PartitionContent& content(quint32 driveId, quint32 partitionId) { return m_contents[{driveId, partitionId}]; }
    const PartitionContent* findContent(quint32 driveId, quint32 partitionId) const;
    // Takes the drive and what lies on it out of the machine; false when there is no such drive.
    bool removeDrive(quint32 driveId);
    void removeContent(quint32 driveId, quint32 partitionId) { m_contents.remove({driveId, partitionId}); }

    // The partition that carries a drive letter such as "C:" (also "c:\\").
    std::optional<PartitionKey> partitionByLetter(const QString& letter) const;
    // The drive that holds the running system: the one with the letter of the Windows directory.
    bool holdsRunningSystem(quint32 driveId) const;
    bool isSystemPartition(quint32 driveId, quint32 partitionId) const;
    QString nextFreeLetter() const;

    // The paths a migration must take along and those it must leave behind: the scenario's lists,
    // or the usual ones of a Windows volume.
    QStringList systemPaths(quint32 driveId, quint32 partitionId) const;
    QStringList systemIgnoredPaths(quint32 driveId, quint32 partitionId) const;

    // Bytes a walk of the volume finds: its tree, or its used size where it has none.
    quint64 contentSize(quint32 driveId, quint32 partitionId) const;

private:
    Velmora::Message::SystemInfo m_systemInfo;
    Velmora::Message::SystemSummary m_summary;
    QHash<quint32, DriveExtras> m_driveExtras;
    QHash<PartitionKey, PartitionContent> m_contents;
};

// "C:" from "C:", "c:\\" or "C:\\Windows".
QString normalizedLetter(const QString& path);

} // namespace Velmora::ServiceSim
