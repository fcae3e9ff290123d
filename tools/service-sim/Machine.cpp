#include "Machine.h"

namespace Velmora::ServiceSim {

QString normalizedLetter(const QString& path)
{
    if (path.size() < 2 || path.at(1) != QLatin1Char(':') || !path.at(0).isLetter())
        return QString();
    return path.left(1).toUpper() + QLatin1Char(':');
}

const Machine::DriveInfo* Machine::drive(quint32 driveId) const
{
    for (const DriveInfo& drive : m_systemInfo.drives()) {
        if (drive.driveid() == driveId)
            return &drive;
    }
    return nullptr;
}

bool Machine::removeDrive(quint32 driveId)
{
    auto* drives = m_systemInfo.mutable_drives();
    for (int i = 0; i < drives->size(); ++i) {
        if (drives->Get(i).driveid() != driveId)
            continue;
        for (const PartitionInfo& partition : drives->Get(i).partitions())
            removeContent(driveId, partition.id());
        m_driveExtras.remove(driveId);
        drives->DeleteSubrange(i, 1);
        return true;
    }
    return false;
}

Machine::DriveInfo* Machine::drive(quint32 driveId)
{
    return const_cast<DriveInfo*>(static_cast<const Machine*>(this)->drive(driveId));
}

const Machine::PartitionInfo* Machine::partition(quint32 driveId, quint32 partitionId) const
{
    const DriveInfo* owner = drive(driveId);
    if (!owner)
        return nullptr;
    for (const PartitionInfo& partition : owner->partitions()) {
        if (partition.id() == partitionId)
            return &partition;
    }
    return nullptr;
}

Machine::PartitionInfo* Machine::partition(quint32 driveId, quint32 partitionId)
{
    return const_cast<PartitionInfo*>(static_cast<const Machine*>(this)->partition(driveId, partitionId));
}

const PartitionContent* Machine::findContent(quint32 driveId, quint32 partitionId) const
{
    const auto it = m_contents.constFind({driveId, partitionId});
    return it == m_contents.constEnd() ? nullptr : &it.value();
}

std::optional<Machine::PartitionKey> Machine::partitionByLetter(const QString& letter) const
{
    const QString wanted = normalizedLetter(letter);
    if (wanted.isEmpty())
        return std::nullopt;
    for (const DriveInfo& drive : m_systemInfo.drives()) {
        for (const PartitionInfo& partition : drive.partitions()) {
            if (normalizedLetter(QString::fromStdString(partition.letter())) == wanted)
                return PartitionKey(drive.driveid(), partition.id());
        }
    }
    return std::nullopt;
}

bool Machine::isSystemPartition(quint32 driveId, quint32 partitionId) const
{
    const QString windows = QString::fromStdString(m_summary.operatingsysteminfo().windowsdirectory());
    const auto key = partitionByLetter(windows);
    return key && key->first == driveId && key->second == partitionId;
}

bool Machine::holdsRunningSystem(quint32 driveId) const
{
    const QString windows = QString::fromStdString(m_summary.operatingsysteminfo().windowsdirectory());
    const auto key = partitionByLetter(windows);
    return key && key->first == driveId;
}

QString Machine::nextFreeLetter() const
{
    for (char letter = 'D'; letter <= 'Z'; ++letter) {
        const QString candidate = QString(QLatin1Char(letter)) + QLatin1Char(':');
        if (!partitionByLetter(candidate))
            return candidate;
    }
    return QString();
}

QStringList Machine::systemPaths(quint32 driveId, quint32 partitionId) const
{
    const PartitionContent* content = findContent(driveId, partitionId);
    if (content && content->hasSystemPaths)
        return content->systemPaths;
    if (!isSystemPartition(driveId, partitionId))
        return {};
    const QString letter = normalizedLetter(QString::fromStdString(m_summary.operatingsysteminfo().windowsdirectory()));
    QStringList paths;
    for (const char* name : {"Windows", "Program Files", "Program Files (x86)", "ProgramData", "Boot"})
        paths << letter + QLatin1Char('\\') + QLatin1String(name);
    return paths;
}

QStringList Machine::systemIgnoredPaths(quint32 driveId, quint32 partitionId) const
{
    const PartitionContent* content = findContent(driveId, partitionId);
    if (content && content->hasSystemPaths)
        return content->systemIgnoredPaths;
    const PartitionInfo* volume = partition(driveId, partitionId);
    if (!volume)
        return {};
    const QString letter = normalizedLetter(QString::fromStdString(volume->letter()));
    if (letter.isEmpty())
        return {};
    QStringList names{QStringLiteral("System Volume Information"), QStringLiteral("$RECYCLE.BIN")};
    if (isSystemPartition(driveId, partitionId))
        names << QStringLiteral("pagefile.sys") << QStringLiteral("hiberfil.sys") << QStringLiteral("swapfile.sys");
    QStringList paths;
    for (const QString& name : names)
        paths << letter + QLatin1Char('\\') + name;
    return paths;
}

quint64 Machine::contentSize(quint32 driveId, quint32 partitionId) const
{
    const PartitionContent* content = findContent(driveId, partitionId);
    if (content && !content->files.isEmpty())
        return content->files.totalSize();
    const PartitionInfo* volume = partition(driveId, partitionId);
    return volume ? volume->used() : 0;
}

} // namespace Velmora::ServiceSim
