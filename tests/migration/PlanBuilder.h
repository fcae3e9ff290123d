#pragma once

#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "system/Drive.h"
#include "system/Partition.h"

#include <QString>

// Source drives and plans for the migration tests, with the partition kinds a Windows disk holds.
namespace PlanBuilder {

using Velmora::System::Bytes;
using Velmora::System::Drive;
using Velmora::System::MigrationDestDrive;
using Velmora::System::MigrationDestPartition;
using Velmora::System::Partition;

constexpr qint64 MiB = qint64(1) << 20;
constexpr qint64 GiB = qint64(1) << 30;

enum Kind { Efi, Msr, Recovery, Os, Data, Raw, Extended, Logical };

inline const char* gptTypeOf(Kind kind)
{
    switch (kind) {
    case Efi: return Partition::efiSystemGuid;
    case Msr: return Partition::microsoftReservedGuid;
    case Recovery: return Partition::recoveryGuid;
    default: return "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7";
    }
}

inline Drive* drive(int id, qint64 capacity, bool gpt = true, QObject* parent = nullptr,
    const QString& model = QStringLiteral("Orvane Disk"))
{
    return new Drive(id, model, QStringLiteral("SN%1").arg(id), QString(), QStringLiteral("FW1"), Bytes(capacity), 4, 4,
        gpt, QStringLiteral("SATA"), parent);
}

// Adds a partition of `kind` to a source drive; offsets follow each other from 1 MiB.
inline Partition* add(Drive* drive, int id, Kind kind, qint64 size, qint64 used, const QString& letter = QString())
{
    qint64 offset = MiB;
    for (const Partition* p : drive->partitions()) {
        if (p->type() != Partition::UnusedSpace && !p->isLogical())
            offset = qMax(offset, p->end().value());
    }
    const bool mbr = kind == Extended || kind == Logical;
    const Partition::PartitionType type = mbr || !drive->isGpt() ? Partition::MBR : Partition::GPT;
    const quint32 mbrType = kind == Extended ? 0x0F : 0x07;
    const QString fileSystem = kind == Msr || kind == Raw || kind == Extended ? QString() : QStringLiteral("NTFS");
    auto* partition = new Partition(id, letter, kind == Recovery ? QStringLiteral("Recovery") : QString(), Bytes(size),
        Bytes(used), Bytes(offset), type, mbrType, QString::fromLatin1(gptTypeOf(kind)), QString(), fileSystem,
        kind == Efi, kind == Logical);
    if (kind == Os)
        partition->setOs(QStringLiteral("Windows"));
    drive->addPartition(partition);
    return partition;
}

// A plan of every partition of `source` on a destination of `capacity`, without the replanning
// that a Migration would start.
inline MigrationDestDrive* plan(const Drive& source, qint64 capacity, QObject* parent = nullptr)
{
    Drive target(99, QStringLiteral("BRANTEL Target"), QStringLiteral("T1"), QString(), QStringLiteral("FW1"),
        Bytes(capacity), 4, 4, source.isGpt(), QStringLiteral("NVMe"));
    auto* destination = new MigrationDestDrive(target, parent);
    for (int id : source.partitions().keys()) {
        if (id >= 0)
            destination->addPartition(new MigrationDestPartition(*source.partition(id)));
    }
    return destination;
}

// The source disk of the worked example: EFI, MSR, C: with the system, D:, recovery.
inline Drive* exampleSource(QObject* parent = nullptr)
{
    Drive* source = drive(1, 512 * GiB, true, parent);
    add(source, 1, Efi, 100 * MiB, 30 * MiB);
    add(source, 2, Msr, 16 * MiB, 0);
    add(source, 3, Os, 150 * GiB, 40 * GiB, QStringLiteral("C:"));
    add(source, 4, Data, 300 * GiB, 120 * GiB, QStringLiteral("D:"));
    add(source, 5, Recovery, 500 * MiB, 400 * MiB);
    return source;
}

constexpr qint64 ExampleCapacity = 256060514304;

} // namespace PlanBuilder
