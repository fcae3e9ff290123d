#include "DiskEngines.h"

#include "BlockDevices.h"
#include "FileSystemMaker.h"
#include "MigrationLog.h"
#include "PartitionTable.h"

#include "common/UdevQueue.h"

#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <optional>

namespace Velmora::Daemon::Migration {

namespace Wire = Velmora::Message;

namespace {

constexpr std::chrono::milliseconds TableTimeLimit{60000};
// How long the kernel gets to show a partition device after it was told about it.
constexpr int PartitionWaitMs = 10000;
constexpr int PartitionPollMs = 50;
// udev opens a disk whose table changed to read it again, and the kernel does not drop a partition
// that is open; a few tries a little apart see it through.
constexpr int DropAttempts = 5;
constexpr int DropPauseMs = 200;

Command tool(const char* program, QStringList arguments, QByteArray input = {})
{
    return Command{QString::fromLatin1(program), std::move(arguments), std::move(input), TableTimeLimit};
}

std::optional<KernelPartition> kernelPartition(const QString& disk, quint32 number)
{
    for (const KernelPartition& partition : BlockDevices::partitions(disk)) {
        if (partition.number == number)
            return partition;
    }
    return std::nullopt;
}

} // namespace

DiskEngines::DiskEngines(CommandRunner& runner, DiskLookup lookup)
    : m_runner(runner)
    , m_lookup(std::move(lookup))
{
}

DiskEngines::Target DiskEngines::resolve(const char* what, quint32 driveId, const QString& sourceDevicePath,
    bool mustBeCleaned) const
{
    Target target;
    target.devicePath = m_lookup(driveId);
    if (target.devicePath.isEmpty())
        target.refusal = {Wire::NOT_FOUND, QStringLiteral("it is not in the drive list")};
    else if ((target.disk = BlockDevices::wholeDiskName(target.devicePath)).isEmpty())
        target.refusal = {Wire::INVALID_REQUEST, QStringLiteral("it is not a whole disk")};
    else if (mustBeCleaned && m_cleaned.value(target.disk) != BlockDevices::identity(target.disk))
        target.refusal = {Wire::ACCESS_DENIED, QStringLiteral("it has not been cleaned for a migration")};
    else
        target.refusal = checkDestination(target.disk,
            sourceDevicePath.isEmpty() ? QString() : BlockDevices::wholeDiskName(sourceDevicePath));
    if (target.refusal)
        qCWarning(lcMigration, "Refused %s on drive %u (%s): %s", what, driveId, qPrintable(target.devicePath),
            qPrintable(target.refusal.reason));
    return target;
}

Wire::Code DiskEngines::failure(const CommandResult& result, const std::atomic_bool& stop) const
{
    return stop || result.outcome == ChildProcess::Outcome::Stopped ? Wire::CANCELED : Wire::FAILED;
}

bool DiskEngines::run(const Command& command, const std::atomic_bool& stop, Wire::Code* code, QByteArray* output)
{
    if (stop) {
        *code = Wire::CANCELED;
        return false;
    }
    const CommandResult result = m_runner.run(command, stop);
    if (output)
        *output = result.output;
    if (!result.succeeded())
        *code = failure(result, stop);
    return result.succeeded();
}

Wire::CleanDisk DiskEngines::cleanDisk(const Wire::CleanDisk& request, const QString& sourceDevicePath,
    const std::atomic_bool& stop)
{
    Wire::CleanDisk answer = request;
    std::unique_lock<std::mutex> lock(m_writing, std::try_to_lock);
    if (!lock.owns_lock()) {
        qCWarning(lcMigration, "Refused CleanDisk on drive %u: another disk change is under way", request.driveid());
        answer.set_code(Wire::IN_PROGRESS);
        return answer;
    }
    const Target target = resolve("CleanDisk", request.driveid(), sourceDevicePath, false);
    if (target.refusal) {
        answer.set_code(target.refusal.code);
        return answer;
    }
    const bool gpt = request.partitionstyle() == Wire::CleanDisk::GPT;
    qCInfo(lcMigration, "Cleaning drive %u (%s) for a %s table", request.driveid(), qPrintable(target.devicePath),
        gpt ? "GPT" : "MBR");
    m_cleaned.remove(target.disk);
    Wire::Code code = Wire::SUCCESS;
    // The partitions' own signatures first: a partition made later at the same place must not
    // bring an old file system back to life.
    for (const KernelPartition& partition : BlockDevices::partitions(target.disk)) {
        if (!run(tool("wipefs", {QStringLiteral("-a"), QStringLiteral("/dev/") + partition.name}), stop, &code)) {
            answer.set_code(code);
            return answer;
        }
    }
    const QByteArray script = gpt ? "label: gpt\n" : "label: dos\n";
    if (!run(tool("wipefs", {QStringLiteral("-a"), target.devicePath}), stop, &code)
        || !run(tool("sfdisk", {QStringLiteral("-q"), QStringLiteral("--no-reread"), QStringLiteral("--no-tell-kernel"),
                                   target.devicePath}, script), stop, &code)
        || (!BlockDevices::partitions(target.disk).isEmpty() && !dropPartitions(target.devicePath, stop, &code))) {
        answer.set_code(code);
        return answer;
    }
    if (!BlockDevices::partitions(target.disk).isEmpty()) {
        qCWarning(lcMigration, "Drive %u (%s) was cleaned, but the kernel still shows partitions on it",
            request.driveid(), qPrintable(target.devicePath));
        answer.set_code(Wire::FAILED);
        return answer;
    }
    m_cleaned.insert(target.disk, BlockDevices::identity(target.disk));
    qCInfo(lcMigration, "Drive %u (%s) cleaned, partition style %s", request.driveid(), qPrintable(target.devicePath),
        gpt ? "GPT" : "MBR");
    answer.set_code(Wire::SUCCESS);
    return answer;
}

bool DiskEngines::dropPartitions(const QString& devicePath, const std::atomic_bool& stop, Wire::Code* code)
{
    for (int attempt = 1;; ++attempt) {
        waitForUdevQueue(stop);
        if (run(tool("partx", {QStringLiteral("-d"), devicePath}), stop, code))
            return true;
        if (attempt == DropAttempts || stop)
            return false;
        QThread::msleep(DropPauseMs * attempt);
    }
}

bool DiskEngines::showPartition(const QString& disk, quint32 number, const std::atomic_bool& stop, Wire::Code* code)
{
    const QString device = QStringLiteral("/dev/") + disk;
    const QString range = QStringLiteral("%1:%1").arg(number);
    // Kernels that read the table themselves may have the partition already, or a stale one.
    const bool known = kernelPartition(disk, number).has_value();
    if (!run(tool("partx", {known ? QStringLiteral("-u") : QStringLiteral("-a"), QStringLiteral("--nr"), range, device}),
            stop, code))
        return false;
    for (int waited = 0; waited < PartitionWaitMs && !stop; waited += PartitionPollMs) {
        const auto partition = kernelPartition(disk, number);
        if (partition && QFileInfo::exists(QStringLiteral("/dev/") + partition->name))
            return true;
        QThread::msleep(PartitionPollMs);
    }
    qCWarning(lcMigration, "The kernel does not show partition %u of %s after %d ms", number, qPrintable(device),
        PartitionWaitMs);
    *code = stop ? Wire::CANCELED : Wire::FAILED;
    return false;
}

Wire::PartitionCreate DiskEngines::createPartition(const Wire::PartitionCreate& request, const std::atomic_bool& stop)
{
    Wire::PartitionCreate answer = request;
    std::unique_lock<std::mutex> lock(m_writing, std::try_to_lock);
    if (!lock.owns_lock()) {
        qCWarning(lcMigration, "Refused PartitionCreate on drive %u: another disk change is under way", request.driveid());
        answer.set_code(Wire::IN_PROGRESS);
        return answer;
    }
    const Target target = resolve("PartitionCreate", request.driveid(), QString(), true);
    if (target.refusal) {
        answer.set_code(target.refusal.code);
        return answer;
    }
    Wire::Code code = Wire::SUCCESS;
    const Command readTable = tool("sfdisk", {QStringLiteral("--json"), target.devicePath});
    QByteArray json;
    const quint64 diskBytes = BlockDevices::sizeBytes(target.disk);
    if (!run(readTable, stop, &code, &json)) {
        answer.set_code(code);
        return answer;
    }
    const std::optional<TableLayout> before = parseLayout(json, diskBytes);
    QString problem = before ? placementProblem(*before, request.partition())
                             : QStringLiteral("the disk's partition table cannot be read");
    const QByteArray line = problem.isEmpty() ? scriptLine(*before, request.partition(), &problem) : QByteArray();
    if (!problem.isEmpty()) {
        qCWarning(lcMigration, "Cannot create partition on drive %u (%s, %llu bytes at %llu): %s", request.driveid(),
            qPrintable(target.devicePath), static_cast<unsigned long long>(request.partition().size()),
            static_cast<unsigned long long>(request.partition().offset()), qPrintable(problem));
        answer.set_code(Wire::INVALID_REQUEST);
        return answer;
    }
    if (!run(tool("sfdisk", {QStringLiteral("-q"), QStringLiteral("--append"), QStringLiteral("--no-reread"),
                                QStringLiteral("--no-tell-kernel"), QStringLiteral("--wipe-partitions"),
                                QStringLiteral("always"), target.devicePath}, line), stop, &code)
        || !run(readTable, stop, &code, &json)) {
        answer.set_code(code);
        return answer;
    }
    const std::optional<TableLayout> after = parseLayout(json, diskBytes);
    std::optional<TableEntry> created;
    for (const TableEntry& entry : after ? after->entries : QVector<TableEntry>()) {
        if (std::none_of(before->entries.cbegin(), before->entries.cend(),
                [&entry](const TableEntry& old) { return old.number == entry.number; }))
            created = entry;
    }
    if (!created) {
        qCWarning(lcMigration, "sfdisk ended well, but the table of %s shows no new partition", qPrintable(target.devicePath));
        answer.set_code(Wire::FAILED);
        return answer;
    }
    if (!showPartition(target.disk, created->number, stop, &code)) {
        answer.set_code(code);
        return answer;
    }
    qCInfo(lcMigration, "Partition %u created on drive %u (%s): %llu bytes at %llu", created->number, request.driveid(),
        qPrintable(target.devicePath), static_cast<unsigned long long>(created->size),
        static_cast<unsigned long long>(created->start));
    answer.set_newpartitionid(created->number);
    answer.set_code(Wire::SUCCESS);
    return answer;
}

Wire::PartitionFormat DiskEngines::formatPartition(const Wire::PartitionFormat& request, const std::atomic_bool& stop)
{
    Wire::PartitionFormat answer = request;
    std::unique_lock<std::mutex> lock(m_writing, std::try_to_lock);
    if (!lock.owns_lock()) {
        qCWarning(lcMigration, "Refused PartitionFormat on drive %u: another disk change is under way", request.driveid());
        answer.set_code(Wire::IN_PROGRESS);
        return answer;
    }
    const Target target = resolve("PartitionFormat", request.driveid(), QString(), true);
    if (target.refusal) {
        answer.set_code(target.refusal.code);
        return answer;
    }
    const quint32 number = request.partition().id();
    const auto partition = kernelPartition(target.disk, number);
    if (!partition) {
        qCWarning(lcMigration, "Refused PartitionFormat on drive %u (%s): it has no partition %u", request.driveid(),
            qPrintable(target.devicePath), number);
        answer.set_code(Wire::NOT_FOUND);
        return answer;
    }
    const QString fileSystem = QString::fromStdString(request.partition().filesystem());
    const QString label = QString::fromStdString(request.partition().label());
    const QString device = QStringLiteral("/dev/") + partition->name;
    const std::optional<Command> command = formatCommand(fileSystem, label, device);
    if (!command) {
        qCWarning(lcMigration, "Cannot format partition %u of drive %u with file system \"%s\": this system cannot make it",
            number, request.driveid(), qPrintable(fileSystem));
        answer.set_code(Wire::INVALID_REQUEST);
        return answer;
    }
    Wire::Code code = Wire::SUCCESS;
    if (!run(*command, stop, &code)) {
        answer.set_code(code);
        return answer;
    }
    qCInfo(lcMigration, "Partition %u of drive %u (%s) formatted as %s, label \"%s\"", number, request.driveid(),
        qPrintable(device), qPrintable(fileSystem), qPrintable(label));
    answer.set_code(Wire::SUCCESS);
    return answer;
}

} // namespace Velmora::Daemon::Migration
