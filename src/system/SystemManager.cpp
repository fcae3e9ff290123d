#include "system/SystemManager.h"

#include "logger/Logger.h"
#include "message/Payload.h"
#include "system/Drive.h"
#include "system/FileCategories.h"
#include "system/Partition.h"
#include "system/System.h"

#include "SystemTrimCommand.pb.h"

#include <google/protobuf/util/json_util.h>

namespace Velmora::System {

using Velmora::Message::Message;
namespace pb = Velmora::Message;

namespace {

using Velmora::Message::fromUtf8;
using Velmora::Message::toPayload;

QString toJson(const google::protobuf::Message& message)
{
    std::string json;
    // The support ticket's reports: readable, every field present, enums by name, proto names.
    google::protobuf::util::JsonPrintOptions options;
    options.add_whitespace = true;
    options.always_print_primitive_fields = true;
    options.always_print_enums_as_ints = false;
    options.preserve_proto_field_names = true;
    google::protobuf::util::MessageToJsonString(message, &json, options);
    return fromUtf8(json);
}

// The service may name a table style this program does not know; such a partition is taken as raw,
// so that neither table's rules are applied to it.
Partition::PartitionType partitionType(pb::PartitionInfo::PartitionType type)
{
    switch (type) {
    case pb::PartitionInfo::MBR:
        return Partition::MBR;
    case pb::PartitionInfo::GPT:
        return Partition::GPT;
    default:
        return Partition::RAW;
    }
}

} // namespace

SystemManager::SystemManager(System* system, QObject* parent)
    : Handler(parent)
    , m_system(system)
{
    setName(QString::fromLatin1(metaObject()->className()));
    setMessageTypes({Message::SystemInfo, Message::FileCat, Message::SystemReport, Message::SystemTrimCommand});

    connect(system, &System::requestFileCategoriesUpdate, this, &SystemManager::sendFileCategoriesStart);
    connect(system, &System::stopFileCategoriesUpdate, this, &SystemManager::sendFileCategoriesStop);
    connect(system, &System::requestSystemDataUpdate, this, &SystemManager::sendSystemInfoRequest);
    connect(system, &System::requestEnableTrimCommand, this, &SystemManager::sendEnableTrimCommand);
}

void SystemManager::clientConnected()
{
    sendSystemInfoRequest();
}

void SystemManager::sendSystemInfoRequest()
{
    emit sendMessage(Message::SystemInfoRequest);
}

void SystemManager::requestSystemSummary()
{
    emit sendMessage(Message::SystemReport);
}

template <typename T>
bool SystemManager::parse(T& message, const QByteArray& payload, const char* failure)
{
    if (message.ParseFromArray(payload.constData(), payload.size()))
        return true;
    Logger::error(QString(), QLatin1String(failure));
    return false;
}

void SystemManager::handleMessage(Message::MessageType type, QByteArray payload)
{
    switch (type) {
    case Message::SystemInfo:
        if (parse(m_systemInfo, payload, "Cannot update system information. Message parse failed."))
            updateSystemInfo();
        break;
    case Message::FileCat:
        if (parse(m_fileTypeStructure, payload, "Cannot update file category information. Message parse failed.")
            && m_system->drive(static_cast<int>(m_fileTypeStructure.driveid())))
            updateFileCategories();
        break;
    case Message::SystemReport:
        if (parse(m_systemSummary, payload, "Cannot update system information. Message parse failed."))
            updateSystemSummary();
        break;
    case Message::SystemTrimCommand: {
        pb::SystemTrimCommand answer;
        if (parse(answer, payload, "Cannot update trim status. Message parse failed.") && answer.code() == pb::SUCCESS)
            m_system->setTrimEnabled(answer.trimenabled());
        break;
    }
    default:
        Logger::error(QString(), QStringLiteral("Unexpected message type: %1.").arg(Message::typeName(type)));
        break;
    }
}

void SystemManager::updateSystemInfo()
{
    QList<int> remaining = m_system->driveIds();
    for (const pb::SystemInfo::DriveInfo& info : m_systemInfo.drives()) {
        const int id = static_cast<int>(info.driveid());
        if (Drive* known = m_system->drive(id)) {
            // The same id with another serial is another physical drive.
            if (Drive::normalizedSerial(fromUtf8(info.serial())) != known->serialNumber())
                m_system->removeDrive(id);
        }
        if (Drive* existing = m_system->drive(id))
            updateExistingDrive(existing, info);
        else
            addNewDrive(info);
        remaining.removeAll(id);
    }
    for (int id : qAsConst(remaining)) {
        Logger::debug(QString(), QStringLiteral("Remove drive: %1").arg(id));
        m_system->removeDrive(id);
    }
    requestSystemSummary();
}

void SystemManager::updateExistingDrive(Drive* drive, const pb::SystemInfo::DriveInfo& info)
{
    Logger::debug(QString(), QStringLiteral("Existing drive: %1").arg(drive->id()));
    drive->setGpt(info.partitionformatstyle() == pb::SystemInfo::DriveInfo::GPT);
    drive->setFirmwareVersion(fromUtf8(info.firmwareversion()));

    QList<int> remainingPartitions = drive->partitions().keys();
    for (const pb::PartitionInfo& p : info.partitions()) {
        const int partitionId = static_cast<int>(p.id());
        Partition* partition = drive->partition(partitionId);
        if (!partition) {
            addPartition(drive, p);
            continue;
        }
        // The number logged here has always been the drive's, not the partition's.
        Logger::debug(QString(), QStringLiteral("Update existing partition: %1").arg(drive->id()));
        partition->setLetter(fromUtf8(p.letter()));
        partition->setLabel(fromUtf8(p.label()));
        partition->setSize(Bytes(static_cast<qint64>(p.size())));
        partition->setUsed(Bytes(static_cast<qint64>(p.used())));
        partition->setOffset(Bytes(static_cast<qint64>(p.offset())));
        partition->setType(partitionType(p.type()));
        partition->setMbrType(p.mbrtype());
        partition->setGptType(fromUtf8(p.gpttype()));
        partition->setVolumeName(fromUtf8(p.volumename()));
        partition->setFileSystem(fromUtf8(p.filesystem()));
        partition->setBootable(p.isbootable());
        partition->setLogical(p.islogical());
        remainingPartitions.removeAll(partitionId);
    }
    // Unused-space entries go here too; they come back only when the drive is created anew.
    for (int partitionId : qAsConst(remainingPartitions)) {
        Logger::debug(QString(), QStringLiteral("Remove partition: %1").arg(partitionId));
        drive->removePartition(partitionId);
    }
}

void SystemManager::addNewDrive(const pb::SystemInfo::DriveInfo& info)
{
    const int id = static_cast<int>(info.driveid());
    Logger::debug(QString(), QStringLiteral("Add drive: %1").arg(id));
    auto* drive = new Drive(id, fromUtf8(info.model()), fromUtf8(info.serial()), fromUtf8(info.warrantyinfo()),
        fromUtf8(info.firmwareversion()), Bytes(static_cast<qint64>(info.size())), info.satacurrentspeed(),
        info.satasupportedspeed(), info.partitionformatstyle() == pb::SystemInfo::DriveInfo::GPT,
        fromUtf8(info.type()), this);
    for (const pb::PartitionInfo& p : info.partitions())
        addPartition(drive, p);
    m_system->addDrive(drive);
    if (!drive->isUsb())
        drive->enableHealthMonitoring();
}

void SystemManager::addPartition(Drive* drive, const pb::PartitionInfo& p)
{
    Logger::debug(QString(), QStringLiteral("Add partition: %1").arg(p.id()));
    auto* partition = new Partition(static_cast<int>(p.id()), fromUtf8(p.letter()), fromUtf8(p.label()),
        Bytes(static_cast<qint64>(p.size())), Bytes(static_cast<qint64>(p.used())),
        Bytes(static_cast<qint64>(p.offset())), partitionType(p.type()), p.mbrtype(),
        fromUtf8(p.gpttype()), fromUtf8(p.volumename()), fromUtf8(p.filesystem()), p.isbootable(), p.islogical(),
        drive);
    drive->addPartition(partition);
    Logger::debug(QString(), QStringLiteral("Partition added %1.").arg(partition->toString()));
}

void SystemManager::updateSystemSummary()
{
    Logger::debug(QString(), QStringLiteral("Parsing system summary message"));
    const pb::SystemSummary::OperatingSystem& os = m_systemSummary.operatingsysteminfo();
    const QString windowsDirectory = fromUtf8(os.windowsdirectory());
    for (int driveId : m_system->driveIds()) {
        Drive* drive = m_system->drive(driveId);
        for (Partition* partition : drive->partitions()) {
            const QString letter = partition->letter();
            if (!letter.isEmpty() && windowsDirectory.startsWith(letter, Qt::CaseInsensitive))
                partition->setOs(fromUtf8(os.name()));
        }
    }
    const pb::SystemSummary::BaseBoard& board = m_systemSummary.baseboardinfo();
    m_system->setTrimEnabled(board.trimenabled());
    m_system->setAhciEnabled(board.ahcienabled());
    m_system->setMotherboard(QStringLiteral("%1 %2 %3")
                                 .arg(fromUtf8(board.manufacturer()), fromUtf8(board.product()), fromUtf8(board.version())));
    m_system->set64Bit(fromUtf8(os.architecture()).contains(QLatin1String("64")));
}

void SystemManager::sendEnableTrimCommand()
{
    pb::SystemTrimCommand command;
    command.set_trimenabled(true);
    emit sendMessage(Message::SystemTrimCommand, toPayload(command));
}

void SystemManager::sendFileCategoriesAction(
    int driveId, pb::FileTypeStructureRequest::ScanAction action, bool withFileTypes)
{
    pb::FileTypeStructureRequest request;
    request.set_driveid(static_cast<quint32>(driveId));
    request.set_action(action);
    if (withFileTypes) {
        request.set_partitionid(-1);
        for (int category : {FileCategory::Documents, FileCategory::Pictures, FileCategory::Sound, FileCategory::Video,
                 FileCategory::System, FileCategory::Programs}) {
            pb::FileTypeStructureRequest::FileType* fileType = request.add_filetypes();
            fileType->set_id(static_cast<quint32>(category));
            fileType->set_extensions(categoryExtensions(category).toUtf8().toStdString());
            fileType->set_paths(categoryPaths(category).toUtf8().toStdString());
        }
    }
    emit sendMessage(Message::FileTypeStructureReq, toPayload(request));
}

void SystemManager::sendFileCategoriesStart(int driveId)
{
    sendFileCategoriesAction(driveId, pb::FileTypeStructureRequest::Start, true);
}

void SystemManager::sendFileCategoriesReport(int driveId)
{
    sendFileCategoriesAction(driveId, pb::FileTypeStructureRequest::Report, false);
}

void SystemManager::sendFileCategoriesStop(int driveId)
{
    sendFileCategoriesAction(driveId, pb::FileTypeStructureRequest::Stop, false);
}

void SystemManager::updateFileCategories()
{
    Drive* drive = m_system->drive(static_cast<int>(m_fileTypeStructure.driveid()));
    if (!drive)
        return;
    FileCategories* categories = drive->fileCategories();
    const int code = m_fileTypeStructure.code();
    if (code == pb::NOT_FOUND) {
        categories->clearSizes();
        categories->setStatus(FileCategoryStatus::NotScanned, 0.0);
    } else if (code == pb::SUCCESS || code == pb::IN_PROGRESS) {
        QMap<int, qint64> sizes;
        for (const auto& info : m_fileTypeStructure.filetypes())
            sizes.insert(static_cast<int>(info.id()), static_cast<qint64>(info.size()));
        categories->setSizes(sizes);
        if (m_fileTypeStructure.finished())
            categories->setStatus(FileCategoryStatus::Complete, 1.0);
        else
            categories->setStatus(FileCategoryStatus::Scanning, m_fileTypeStructure.progress());
    } else {
        Logger::error(QString(), QStringLiteral("Error updating file categories: %1").arg(code));
    }
}

QString SystemManager::systemInfoJson()
{
    return toJson(m_systemInfo);
}

QString SystemManager::systemReportJson()
{
    return toJson(m_systemSummary);
}

} // namespace Velmora::System
