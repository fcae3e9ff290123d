#include "ScenarioLoader.h"

#include "SizeText.h"

#include <google/protobuf/util/json_util.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUuid>

namespace Velmora::ServiceSim {

namespace {

constexpr quint64 MiB = 1024 * 1024;
const char* const RestSize = "rest";
const char* const BuiltInPrefix = ":/scenarios/";

bool parseProto(const QJsonObject& object, google::protobuf::Message* message, QString* error)
{
    google::protobuf::util::JsonParseOptions options;
    options.ignore_unknown_fields = true;
    const QByteArray text = QJsonDocument(object).toJson(QJsonDocument::Compact);
    const auto status = google::protobuf::util::JsonStringToMessage(text.toStdString(), message, options);
    if (!status.ok()) {
        *error = QString::fromStdString(status.ToString());
        return false;
    }
    return true;
}

// Sizes with units become the plain byte counts the message parser reads; 64-bit counts travel
// as text so that they stay exact.
bool normalizeSize(QJsonObject* object, const QString& key, QString* error)
{
    const QJsonValue value = object->value(key);
    if (value.isUndefined())
        return true;
    quint64 bytes = 0;
    if (!SizeText::parse(value, &bytes)) {
        *error = QStringLiteral("Unreadable size \"%1\" in %2").arg(value.toVariant().toString(), key);
        return false;
    }
    object->insert(key, QString::number(bytes));
    return true;
}

quint64 alignUp(quint64 value)
{
    return (value + MiB - 1) / MiB * MiB;
}

QStringList stringList(const QJsonValue& value)
{
    QStringList list;
    for (const QJsonValue& item : value.toArray())
        list << item.toString();
    return list;
}

QString stableGuid(const QString& seed)
{
    static const QUuid space(QStringLiteral("{6f1c2f0e-52a4-4d0b-9a37-0c4de2b7a5e1}"));
    return QUuid::createUuidV5(space, seed).toString(QUuid::WithoutBraces);
}

} // namespace

QStringList ScenarioLoader::builtInNames()
{
    QStringList names;
    for (const QFileInfo& file : QDir(QLatin1String(BuiltInPrefix)).entryInfoList({QStringLiteral("*.json")}))
        names << file.completeBaseName();
    return names;
}

QString ScenarioLoader::resolve(const QString& nameOrPath)
{
    if (QFileInfo::exists(nameOrPath))
        return nameOrPath;
    return QLatin1String(BuiltInPrefix) + nameOrPath + QStringLiteral(".json");
}

bool ScenarioLoader::load(const QString& nameOrPath, Machine* machine, FaultPlan* faults, QString* error)
{
    QFile file(resolve(nameOrPath));
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("Cannot open scenario \"%1\"").arg(nameOrPath);
        return false;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (!document.isObject()) {
        *error = QStringLiteral("Scenario \"%1\" is no JSON object: %2").arg(nameOrPath, parseError.errorString());
        return false;
    }
    const QJsonObject scenario = document.object();

    *machine = Machine();
    for (const QJsonValue& drive : scenario.value(QStringLiteral("drives")).toArray()) {
        if (!loadDrive(drive.toObject(), machine, error))
            return false;
    }
    if (!parseProto(scenario.value(QStringLiteral("summary")).toObject(), &machine->summary(), error))
        return false;
    return faults->addFromJson(scenario.value(QStringLiteral("faults")).toObject(), error);
}

bool ScenarioLoader::normalizeSizes(QJsonObject* drive, QString* error)
{
    if (!normalizeSize(drive, QStringLiteral("Size"), error))
        return false;
    QJsonArray partitions = drive->value(QStringLiteral("Partitions")).toArray();
    for (int i = 0; i < partitions.size(); ++i) {
        QJsonObject partition = partitions.at(i).toObject();
        if (partition.value(QStringLiteral("Size")).toString() == QLatin1String(RestSize))
            partition.remove(QStringLiteral("Size"));
        for (const char* key : {"Size", "Used", "Offset"}) {
            if (!normalizeSize(&partition, QLatin1String(key), error))
                return false;
        }
        partitions[i] = partition;
    }
    drive->insert(QStringLiteral("Partitions"), partitions);
    return true;
}

bool ScenarioLoader::loadDrive(QJsonObject object, Machine* machine, QString* error)
{
    const QJsonArray rawPartitions = object.value(QStringLiteral("Partitions")).toArray();
    int restIndex = -1;
    for (int i = 0; i < rawPartitions.size(); ++i) {
        if (rawPartitions.at(i).toObject().value(QStringLiteral("Size")).toString() == QLatin1String(RestSize))
            restIndex = i;
    }
    if (!normalizeSizes(&object, error))
        return false;

    Machine::DriveInfo* drive = machine->systemInfo().add_drives();
    if (!parseProto(object, drive, error))
        return false;
    if (!object.contains(QStringLiteral("DriveID")))
        drive->set_driveid(static_cast<quint32>(machine->systemInfo().drives_size() - 1));
    layOutPartitions(drive, restIndex);

    DriveExtras& extras = machine->driveExtras(drive->driveid());
    if (!SmartTable::fromJson(object.value(QStringLiteral("smart")).toArray(), &extras.smart, error))
        return false;
    const QJsonObject benchmark = object.value(QStringLiteral("benchmark")).toObject();
    extras.readBytesPerSecond = benchmark.value(QStringLiteral("readMBps")).toDouble() * 1e6;
    extras.writeBytesPerSecond = benchmark.value(QStringLiteral("writeMBps")).toDouble() * 1e6;

    for (int i = 0; i < rawPartitions.size(); ++i) {
        const quint32 partitionId = drive->partitions(i).id();
        if (!loadPartitionContent(rawPartitions.at(i).toObject(), drive->driveid(), partitionId, machine, error))
            return false;
    }
    fillDerivedFields(drive, machine);
    return true;
}

void ScenarioLoader::layOutPartitions(Machine::DriveInfo* drive, int restIndex)
{
    // Windows leaves the first MiB to the partition table and keeps partitions MiB-aligned.
    if (restIndex >= 0) {
        quint64 others = 0;
        for (int i = 0; i < drive->partitions_size(); ++i) {
            if (i != restIndex && !drive->partitions(i).islogical())
                others += alignUp(drive->partitions(i).size());
        }
        const quint64 available = drive->size() / MiB * MiB - MiB;
        drive->mutable_partitions(restIndex)->set_size(available > others + MiB ? available - others - MiB : 0);
    }
    quint64 cursor = MiB;
    for (int i = 0; i < drive->partitions_size(); ++i) {
        Machine::PartitionInfo* partition = drive->mutable_partitions(i);
        if (partition->id() == 0)
            partition->set_id(static_cast<quint32>(i + 1));
        if (partition->offset() == 0)
            partition->set_offset(cursor);
        if (!partition->islogical())
            cursor = alignUp(partition->offset() + partition->size());
    }
}

bool ScenarioLoader::loadPartitionContent(const QJsonObject& partition, quint32 driveId, quint32 partitionId,
    Machine* machine, QString* error)
{
    PartitionContent& content = machine->content(driveId, partitionId);
    if (!FileTree::fromJson(partition.value(QStringLiteral("files")).toObject(), &content.files, error))
        return false;
    content.hasSystemPaths = partition.contains(QStringLiteral("systemPaths"))
        || partition.contains(QStringLiteral("systemIgnoredPaths"));
    content.systemPaths = stringList(partition.value(QStringLiteral("systemPaths")));
    content.systemIgnoredPaths = stringList(partition.value(QStringLiteral("systemIgnoredPaths")));
    content.faultedFiles = stringList(partition.value(QStringLiteral("faultedFiles")));
    content.faultedDirectories = stringList(partition.value(QStringLiteral("faultedDirectories")));
    return true;
}

void ScenarioLoader::fillDerivedFields(Machine::DriveInfo* drive, Machine* machine)
{
    const QString driveSeed = QString::fromStdString(drive->serial());
    for (Machine::PartitionInfo& partition : *drive->mutable_partitions()) {
        const PartitionContent* content = machine->findContent(drive->driveid(), partition.id());
        // A volume whose content the scenario lists is as full as that content.
        if (partition.used() == 0 && content && !content->files.isEmpty())
            partition.set_used(content->files.totalSize());
        const QString seed = driveSeed + QLatin1Char('/') + QString::number(partition.id());
        if (partition.type() == Machine::PartitionInfo::GPT && partition.gptid().empty())
            partition.set_gptid(stableGuid(seed).toStdString());
        if (partition.volumename().empty() && !partition.filesystem().empty())
            partition.set_volumename(QStringLiteral("\\\\?\\Volume{%1}\\").arg(stableGuid(seed + QStringLiteral("/volume"))).toStdString());
    }
}

} // namespace Velmora::ServiceSim
