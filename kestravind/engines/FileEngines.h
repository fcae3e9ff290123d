#pragma once

#include "devices/DeviceRecords.h"

#include "FileTypeStructure.pb.h"

#include <QHash>

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Velmora::Daemon {

class RequestRouter;

namespace Devices {
class DriveRegistry;
}

// The requests answered by walking, listing and writing files on the drives' mounted volumes:
// file categories, the migration filter's listing and sizes, the speed test and the log copies.
// The file engines know mount points only; this finds them for the drive and partition ids of a
// request, and keeps what the requests' protocol asks of the service beyond one request.
class FileEngines
{
public:
    // `migrationSourceNamed` hears of the drive whose partitions the migration's filters ask about.
    FileEngines(Devices::DriveRegistry& drives, std::string logDirectory,
        std::function<void(quint32 driveId)> migrationSourceNamed);

    void plugInto(RequestRouter& router);

private:
    std::vector<std::string> mountPointsOf(quint32 driveId) const;
    std::vector<std::string> allMountPoints() const;
    // The partition a request names; nothing for a negative id or one the registry does not know.
    std::optional<Devices::PartitionRecord> partitionOf(quint32 driveId, qint32 partitionId) const;

    // The last answer of each drive's category scan, for the requests that ask how far it got.
    void keepCategories(const Velmora::Message::FileTypeStructure& answer);
    std::optional<Velmora::Message::FileTypeStructure> keptCategories(quint32 driveId) const;

    Devices::DriveRegistry& m_drives;
    const std::string m_logDirectory;
    const std::function<void(quint32)> m_migrationSourceNamed;
    mutable std::mutex m_categoriesMutex;
    QHash<quint32, Velmora::Message::FileTypeStructure> m_categories;
};

} // namespace Velmora::Daemon
