#include "MigrationRequests.h"

#include "FileCopyTask.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include "Migration.pb.h"

#include <QUuid>

namespace Velmora::ServiceSim {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

constexpr quint64 MiB = 1024 * 1024;
// The protective MBR, the GPT header and its entries: 34 sectors of 512 bytes.
constexpr quint64 PartitionTableBytes = 34 * 512;
const char* const BasicDataGuid = "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7";
const QList<quint32> ExtendedMbrTypes{0x05, 0x0F, 0x85};
const QList<quint32> LetteredMbrTypes{0x06, 0x07, 0x0B, 0x0C, 0x0E};
const QStringList KnownFileSystems{QStringLiteral("NTFS"), QStringLiteral("FAT32"), QStringLiteral("FAT"),
    QStringLiteral("exFAT"), QStringLiteral("ReFS")};

bool isExtended(const Machine::PartitionInfo& partition)
{
    return partition.type() == Machine::PartitionInfo::MBR && ExtendedMbrTypes.contains(partition.mbrtype());
}

// Windows gives a letter to the data volumes of a new disk, not to its system partitions.
bool getsLetter(const Machine::PartitionInfo& partition)
{
    if (partition.type() == Machine::PartitionInfo::GPT)
        return QString::fromStdString(partition.gpttype()).compare(QLatin1String(BasicDataGuid), Qt::CaseInsensitive) == 0;
    return LetteredMbrTypes.contains(partition.mbrtype());
}

// What a freshly made file system occupies before anything is copied onto it.
quint64 formatOverhead(quint64 size, const QString& fileSystem)
{
    if (fileSystem.compare(QLatin1String("NTFS"), Qt::CaseInsensitive) == 0)
        return qMin<quint64>(size / 10, 20 * MiB + size / 2000);
    return qMin<quint64>(size / 10, MiB + size / 4000);
}

template<typename M>
M parsedOrDefault(const QByteArray& payload, bool* ok)
{
    M message;
    *ok = message.ParseFromArray(payload.constData(), payload.size());
    return message;
}

} // namespace

QList<quint32> MigrationRequests::requestTypes() const
{
    return {Message::CleanDisk, Message::PartitionCreate, Message::PartitionFormat, Message::PartitionRemove,
        Message::FileCopyRequest, Message::FileCopyRequestCancel, Message::MigrationBootability};
}

bool MigrationRequests::handle(quint32 type, const QByteArray& payload, ClientConnection* client)
{
    switch (type) {
    case Message::CleanDisk:
        return cleanDisk(payload, client);
    case Message::PartitionCreate:
        return createPartition(payload, client);
    case Message::PartitionFormat:
        return formatPartition(payload, client);
    case Message::PartitionRemove:
        return removePartition(payload, client);
    case Message::FileCopyRequest:
        return copyFiles(payload, client);
    case Message::FileCopyRequestCancel:
        cancelCopy(client);
        return true;
    case Message::MigrationBootability:
        return configureBoot(payload, client);
    }
    return false;
}

bool MigrationRequests::cleanDisk(const QByteArray& payload, ClientConnection* client)
{
    bool ok = false;
    auto answer = parsedOrDefault<Wire::CleanDisk>(payload, &ok);
    if (!ok)
        return false;
    Machine::DriveInfo* drive = m_machine.drive(answer.driveid());
    if (!drive) {
        answer.set_code(Wire::NOT_FOUND);
    } else if (m_machine.holdsRunningSystem(answer.driveid())) {
        Logger::error(QString(), QStringLiteral("Refusing to clean drive %1: it holds the running system").arg(answer.driveid()));
        answer.set_code(Wire::ACCESS_DENIED);
    } else if (m_copy) {
        answer.set_code(Wire::IN_PROGRESS);
    } else {
        for (const Machine::PartitionInfo& partition : drive->partitions())
            m_machine.removeContent(answer.driveid(), partition.id());
        drive->clear_partitions();
        drive->set_partitionformatstyle(answer.partitionstyle() == Wire::CleanDisk::GPT
                ? Machine::DriveInfo::GPT : Machine::DriveInfo::MBR);
        Logger::info(QString(), QStringLiteral("Drive %1 cleaned, partition style %2")
                                    .arg(answer.driveid()).arg(answer.partitionstyle() == Wire::CleanDisk::GPT ? "GPT" : "MBR"));
        answer.set_code(Wire::SUCCESS);
    }
    later(client, m_timings.taskMs, [answer](ClientConnection* target) { target->send(Message::CleanDisk, answer); });
    return true;
}

QString MigrationRequests::placementProblem(const Machine::DriveInfo& drive, const Machine::PartitionInfo& wanted) const
{
    if (drive.partitionformatstyle() == Machine::DriveInfo::RAW)
        return QStringLiteral("the disk is not initialized");
    if (wanted.size() == 0)
        return QStringLiteral("the partition has no size");
    const bool gptDisk = drive.partitionformatstyle() == Machine::DriveInfo::GPT;
    if ((gptDisk && wanted.type() == Machine::PartitionInfo::MBR) || (!gptDisk && wanted.type() == Machine::PartitionInfo::GPT))
        return QStringLiteral("the partition type does not fit the partition style of the disk");
    if (wanted.offset() < PartitionTableBytes)
        return QStringLiteral("the partition starts inside the partition table");
    if (wanted.offset() + wanted.size() > drive.size())
        return QStringLiteral("the partition ends beyond the end of the disk");
    for (const Machine::PartitionInfo& existing : drive.partitions()) {
        // Logical partitions lie inside their extended partition by design.
        if (isExtended(existing) || isExtended(wanted))
            continue;
        if (wanted.offset() < existing.offset() + existing.size() && existing.offset() < wanted.offset() + wanted.size())
            return QStringLiteral("the partition overlaps partition %1").arg(existing.id());
    }
    return QString();
}

bool MigrationRequests::createPartition(const QByteArray& payload, ClientConnection* client)
{
    bool ok = false;
    auto answer = parsedOrDefault<Wire::PartitionCreate>(payload, &ok);
    if (!ok)
        return false;
    Machine::DriveInfo* drive = m_machine.drive(answer.driveid());
    const QString problem = drive ? placementProblem(*drive, answer.partition()) : QString();
    if (!drive) {
        answer.set_code(Wire::NOT_FOUND);
    } else if (!problem.isEmpty()) {
        Logger::error(QString(), QStringLiteral("Cannot create partition on drive %1: %2").arg(answer.driveid()).arg(problem));
        answer.set_code(Wire::INVALID_REQUEST);
    } else {
        quint32 newId = 1;
        bool insideExtended = false;
        for (const Machine::PartitionInfo& existing : drive->partitions()) {
            newId = qMax(newId, existing.id() + 1);
            const quint64 offset = answer.partition().offset();
            insideExtended = insideExtended
                || (isExtended(existing) && offset >= existing.offset() && offset < existing.offset() + existing.size());
        }
        Machine::PartitionInfo* created = drive->add_partitions();
        created->set_id(newId);
        created->set_offset(answer.partition().offset());
        created->set_size(answer.partition().size());
        created->set_type(answer.partition().type());
        created->set_mbrtype(answer.partition().mbrtype());
        created->set_gpttype(QString::fromStdString(answer.partition().gpttype()).toLower().toStdString());
        if (created->type() == Machine::PartitionInfo::GPT)
            created->set_gptid(QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString());
        created->set_islogical(insideExtended);
        // Logical drives made before their extended partition become logical with it.
        if (isExtended(*created)) {
            for (Machine::PartitionInfo& other : *drive->mutable_partitions()) {
                if (&other != created && other.offset() >= created->offset()
                    && other.offset() + other.size() <= created->offset() + created->size())
                    other.set_islogical(true);
            }
        }
        answer.set_newpartitionid(newId);
        answer.set_code(Wire::SUCCESS);
        Logger::info(QString(), QStringLiteral("Partition %1 created on drive %2 (%3 bytes at %4)")
                                    .arg(newId).arg(answer.driveid()).arg(created->size()).arg(created->offset()));
    }
    later(client, m_timings.taskMs, [answer](ClientConnection* target) { target->send(Message::PartitionCreate, answer); });
    return true;
}

bool MigrationRequests::formatPartition(const QByteArray& payload, ClientConnection* client)
{
    bool ok = false;
    auto answer = parsedOrDefault<Wire::PartitionFormat>(payload, &ok);
    if (!ok)
        return false;
    Machine::PartitionInfo* partition = m_machine.partition(answer.driveid(), answer.partition().id());
    const QString fileSystem = QString::fromStdString(answer.partition().filesystem());
    if (!partition) {
        answer.set_code(Wire::NOT_FOUND);
    } else if (!KnownFileSystems.contains(fileSystem, Qt::CaseInsensitive)) {
        Logger::error(QString(), QStringLiteral("Cannot format with file system \"%1\"").arg(fileSystem));
        answer.set_code(Wire::INVALID_REQUEST);
    } else {
        partition->set_filesystem(fileSystem.toStdString());
        partition->set_label(answer.partition().label());
        partition->set_used(formatOverhead(partition->size(), fileSystem));
        partition->set_volumename(QStringLiteral("\\\\?\\Volume{%1}\\")
                                      .arg(QUuid::createUuid().toString(QUuid::WithoutBraces)).toStdString());
        if (partition->letter().empty() && getsLetter(*partition))
            partition->set_letter(m_machine.nextFreeLetter().toStdString());
        m_machine.content(answer.driveid(), partition->id()) = PartitionContent();
        answer.set_code(Wire::SUCCESS);
        Logger::info(QString(), QStringLiteral("Partition %1 on drive %2 formatted as %3")
                                    .arg(partition->id()).arg(answer.driveid()).arg(fileSystem));
    }
    later(client, m_timings.taskMs, [answer](ClientConnection* target) { target->send(Message::PartitionFormat, answer); });
    return true;
}

bool MigrationRequests::removePartition(const QByteArray& payload, ClientConnection* client)
{
    bool ok = false;
    auto answer = parsedOrDefault<Wire::PartitionRemove>(payload, &ok);
    if (!ok)
        return false;
    Machine::DriveInfo* drive = m_machine.drive(answer.driveid());
    answer.set_code(Wire::NOT_FOUND);
    if (drive && !m_machine.isSystemPartition(answer.driveid(), answer.partitionid())) {
        auto* partitions = drive->mutable_partitions();
        for (int i = 0; i < partitions->size(); ++i) {
            if (partitions->Get(i).id() == answer.partitionid()) {
                partitions->DeleteSubrange(i, 1);
                m_machine.removeContent(answer.driveid(), answer.partitionid());
                answer.set_code(Wire::SUCCESS);
                break;
            }
        }
    } else if (drive) {
        answer.set_code(Wire::ACCESS_DENIED);
    }
    later(client, m_timings.taskMs, [answer](ClientConnection* target) { target->send(Message::PartitionRemove, answer); });
    return true;
}

bool MigrationRequests::copyFiles(const QByteArray& payload, ClientConnection* client)
{
    bool ok = false;
    const auto request = parsedOrDefault<Wire::FileCopyRequest>(payload, &ok);
    if (!ok)
        return false;
    const Machine::PartitionInfo* source = m_machine.partition(request.sourcedriveid(), request.sourcepartitionid());
    const Machine::PartitionInfo* destination = m_machine.partition(request.destinationdriveid(), request.destinationpartitionid());
    Wire::FileCopyReport refusal;
    if (!source || !destination)
        refusal.set_code(Wire::NOT_FOUND);
    else if (destination->filesystem().empty())
        refusal.set_code(Wire::INVALID_REQUEST);
    else if (m_copy)
        refusal.set_code(Wire::IN_PROGRESS);
    if (refusal.code() != Wire::SUCCESS) {
        Logger::error(QString(), QStringLiteral("Copy refused with code %1").arg(refusal.code()));
        later(client, m_timings.taskMs, [refusal](ClientConnection* target) { target->send(Message::FileCopyResponse, refusal); });
        return true;
    }
    m_copy = new FileCopyTask(m_machine, m_timings, request, client, this);
    m_copy->start();
    return true;
}

void MigrationRequests::cancelCopy(ClientConnection* client)
{
    if (!m_copy) {
        Logger::warning(QString(), QStringLiteral("No copy is running; nothing to cancel"));
        return;
    }
    m_copy->cancel(client);
}

bool MigrationRequests::configureBoot(const QByteArray& payload, ClientConnection* client)
{
    bool ok = false;
    auto answer = parsedOrDefault<Wire::MigrationBootability>(payload, &ok);
    if (!ok)
        return false;
    Machine::PartitionInfo* boot = m_machine.partition(answer.driveid(), answer.bootpartitionid());
    const Machine::PartitionInfo* system = m_machine.partition(answer.driveid(), answer.ospartitionid());
    const PartitionContent* content = m_machine.findContent(answer.driveid(), answer.ospartitionid());
    if (!boot || !system) {
        answer.set_code(Wire::NOT_FOUND);
    } else if (!content || !content->files.find({QStringLiteral("Windows")})) {
        Logger::error(QString(), QStringLiteral("No Windows directory on partition %1 of drive %2")
                                     .arg(answer.ospartitionid()).arg(answer.driveid()));
        answer.set_code(Wire::FAILED);
    } else {
        boot->set_isbootable(true);
        answer.set_code(Wire::SUCCESS);
        Logger::info(QString(), QStringLiteral("Boot configuration of drive %1 written").arg(answer.driveid()));
    }
    later(client, m_timings.taskMs, [answer](ClientConnection* target) { target->send(Message::MigrationBootability, answer); });
    return true;
}

bool MigrationRequests::fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client)
{
    const auto errorCode = static_cast<Wire::Code>(code);
    bool ok = true;
    quint32 answerType = type;
    QByteArray answer;
    auto withCode = [&](auto message) {
        message.set_code(errorCode);
        const std::string bytes = message.SerializeAsString();
        answer = QByteArray(bytes.data(), static_cast<int>(bytes.size()));
    };
    switch (type) {
    case Message::CleanDisk: withCode(parsedOrDefault<Wire::CleanDisk>(payload, &ok)); break;
    case Message::PartitionCreate: withCode(parsedOrDefault<Wire::PartitionCreate>(payload, &ok)); break;
    case Message::PartitionFormat: withCode(parsedOrDefault<Wire::PartitionFormat>(payload, &ok)); break;
    case Message::PartitionRemove: withCode(parsedOrDefault<Wire::PartitionRemove>(payload, &ok)); break;
    case Message::MigrationBootability: withCode(parsedOrDefault<Wire::MigrationBootability>(payload, &ok)); break;
    default:
        // A copy, or its cancellation, fails in a copy report.
        if (type == Message::FileCopyRequest)
            parsedOrDefault<Wire::FileCopyRequest>(payload, &ok);
        answerType = Message::FileCopyResponse;
        withCode(Wire::FileCopyReport());
    }
    if (!ok)
        return false;
    later(client, m_timings.taskMs, [answerType, answer](ClientConnection* target) { target->send(answerType, answer); });
    return true;
}

} // namespace Velmora::ServiceSim
