#include "migration/MigrationController.h"

#include "logger/Logger.h"
#include "migration/ExtensionsFilter.h"
#include "migration/FileSystemFilter.h"
#include "migration/MessageCoding.h"
#include "migration/Migration.h"
#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"

#include "FileList.pb.h"
#include "FileTypeStructure.pb.h"
#include "Migration.pb.h"

#include <map>

// The controller's traffic for the filters: system paths, directory listings, filtered sizes.
namespace Velmora::Migration {

using System::Bytes;
using System::MigrationDestDrive;
using System::MigrationDestPartition;
using Velmora::Message::Message;
namespace pb = Velmora::Message;

namespace {

constexpr int CodeSuccess = 0;
constexpr int CodeBusy = 2;
constexpr int CodeInProgress = 7;

// The service's maps come in no particular order; names are sorted so that a listing always reads
// the same. A name loses any separator it carries.
void splitEntries(const google::protobuf::Map<std::string, google::protobuf::uint64>& entries, QStringList& names,
    QList<Bytes>& sizes)
{
    const std::map<std::string, google::protobuf::uint64> sorted(entries.begin(), entries.end());
    names.reserve(static_cast<int>(sorted.size()));
    sizes.reserve(static_cast<int>(sorted.size()));
    for (const auto& entry : sorted) {
        names.append(fromUtf8(entry.first).remove(QLatin1Char('\\')));
        sizes.append(Bytes(static_cast<qint64>(entry.second)));
    }
}

} // namespace

void MigrationController::onRequestFilterSystemPath(int driveId, int partitionId)
{
    m_systemPathsQueue.append(qMakePair(driveId, partitionId));
    if (!m_systemPathsRequestPending)
        sendFilterSystemPathRequest();
}

void MigrationController::sendFilterSystemPathRequest()
{
    // The service answers one of these at a time.
    if (m_systemPathsRequestPending) {
        QTimer::singleShot(m_systemPathsRetryInterval, this, &MigrationController::sendFilterSystemPathRequest);
        return;
    }
    if (m_systemPathsQueue.isEmpty())
        return;
    m_systemPathsRequestPending = true;
    const QPair<int, int> next = m_systemPathsQueue.takeFirst();
    pb::MigrationFilterSystemPaths message;
    message.set_driveid(static_cast<quint32>(next.first));
    message.set_partitionid(static_cast<quint32>(next.second));
    emit sendMessage(Message::MigrationFilterSystemPaths, toPayload(message));
}

void MigrationController::onSystemPaths(const QByteArray& payload)
{
    pb::MigrationFilterSystemPaths message;
    if (!parsed(message, payload, "Parsing FileTypeStructure message failed."))
        return;
    const int code = message.code();
    if (code == CodeBusy)
        return;
    if (code != CodeSuccess) {
        Logger::error(QString(), QStringLiteral("Error getting system paths %1").arg(code));
        return;
    }
    MigrationDestDrive* drive = destination();
    MigrationDestPartition* partition = drive ? drive->migrationPartition(static_cast<int>(message.partitionid())) : nullptr;
    if (partition && static_cast<int>(message.driveid()) == sourceDriveId()) {
        FileSystemFilter* tree = partition->fileSystemFilter();
        tree->setSystemPaths(toStringList(message.systempaths()));
        tree->setSystemIgnoredPaths(toStringList(message.systemignoredpaths()));
        partition->markInitialized();
    }
    m_systemPathsRequestPending = false;
    sendFilterSystemPathRequest();
}

void MigrationController::requestFileList(QString path)
{
    if (!path.endsWith(QLatin1Char('\\')))
        path.append(QLatin1Char('\\'));
    pb::FileListRequest message;
    message.set_dirpath(toUtf8(path));
    emit sendMessage(Message::FileListRequest, toPayload(message));
}

void MigrationController::onFileList(const QByteArray& payload)
{
    pb::FileList message;
    if (!parsed(message, payload, "Parsing file list message failed."))
        return;
    const QString path = fromUtf8(message.path());
    QStringList dirNames;
    QList<Bytes> dirSizes;
    splitEntries(message.directories(), dirNames, dirSizes);
    QStringList fileNames;
    QList<Bytes> fileSizes;
    splitEntries(message.files(), fileNames, fileSizes);

    MigrationDestDrive* drive = destination();
    if (!drive)
        return;
    for (System::Partition* p : drive->partitions()) {
        auto* partition = qobject_cast<MigrationDestPartition*>(p);
        if (!partition)
            continue;
        QString letter = partition->letter();
        while (letter.endsWith(QLatin1Char('\\')))
            letter.chop(1);
        if (letter.isEmpty() || !path.startsWith(letter, Qt::CaseInsensitive) || !partition->isInitialized())
            continue;
        FileSystemFilter* tree = partition->fileSystemFilter();
        tree->addDirs(path, dirNames, dirSizes);
        tree->addFiles(path, fileNames, fileSizes);
        // What the tree inserts by itself is no change of the user's.
        partition->setFiltersChanged(false);
    }
}

void MigrationController::onRequestFilteredPartitionSize(int partitionId)
{
    MigrationDestDrive* drive = destination();
    MigrationDestPartition* partition = drive ? drive->migrationPartition(partitionId) : nullptr;
    if (!partition) {
        Logger::error(QString(), QStringLiteral("Partition does not exist (%1/%2)").arg(sourceDriveId()).arg(partitionId));
        return;
    }
    FileSystemFilter* tree = partition->fileSystemFilter();
    pb::FileTypeStructureRequest message;
    message.set_driveid(static_cast<quint32>(sourceDriveId()));
    message.set_action(pb::FileTypeStructureRequest::Start);
    message.set_partitionid(partitionId);
    auto* kept = message.add_filetypes();
    kept->set_id(0);
    kept->set_paths(toUtf8(tree->systemPaths().join(QLatin1Char(','))));
    auto* left = message.add_filetypes();
    left->set_id(1);
    left->set_paths(toUtf8((tree->uncheckedPaths() + tree->systemIgnoredPaths()).join(QLatin1Char(','))));
    auto* extensions = message.add_filetypes();
    extensions->set_id(2);
    extensions->set_extensions(toUtf8(partition->extensionsFilter()->filteredExtensions().join(QLatin1Char(','))));
    emit sendMessage(Message::MigrationFilterTypeRequest, toPayload(message));
}

void MigrationController::stopRequestFilteredFilesSize()
{
    pb::FileTypeStructureRequest message;
    message.set_action(pb::FileTypeStructureRequest::Stop);
    emit sendMessage(Message::MigrationFilterTypeRequest, toPayload(message));
}

void MigrationController::onFilteredSize(const QByteArray& payload)
{
    pb::FileTypeStructure message;
    if (!parsed(message, payload, "Parsing FileTypeStructure message failed."))
        return;
    const int code = message.code();
    if (code != CodeSuccess && code != CodeInProgress) {
        Logger::error(QString(), QStringLiteral("Calculating filtered files size error %1").arg(code));
        return;
    }
    MigrationDestDrive* drive = destination();
    MigrationDestPartition* partition = drive ? drive->migrationPartition(message.partitionid()) : nullptr;
    if (!partition || static_cast<int>(message.driveid()) != sourceDriveId()) {
        Logger::error(QString(), QStringLiteral("FileTypeStructure report send for wrong drive or partition %1/%2, current drive %3.")
                                     .arg(message.driveid())
                                     .arg(message.partitionid())
                                     .arg(sourceDriveId()));
        return;
    }
    const bool hasSizes = message.filetypes_size() > 0;
    if (hasSizes) {
        partition->setCalculationProgress(qRound(message.progress() * 100.0));
        // The middle entry is what the filters leave out.
        const auto& types = message.filetypes();
        partition->setUsed(Bytes(static_cast<qint64>(types.Get(0).size() + types.Get(types.size() - 1).size())));
    }
    if (code == CodeSuccess) {
        if (hasSizes) {
            Logger::info(QString(), QStringLiteral("Partition %1 used size was updated after filters evaluation: %2")
                                        .arg(partition->id())
                                        .arg(partition->used().toString()));
        }
        partition->calculatingFilterFilesSizeFinished();
    }
}

} // namespace Velmora::Migration
