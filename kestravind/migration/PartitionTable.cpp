#include "PartitionTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <algorithm>

namespace Velmora::Daemon::Migration {

namespace Wire = Velmora::Message;

namespace {

const QList<quint32> ExtendedMbrTypes{0x05, 0x0F, 0x85};
// An MBR entry counts sectors in 32 bits.
constexpr quint64 MbrSectorLimit = quint64(1) << 32;
// The attribute bits of a GPT entry that have names; 48 to 63 belong to the partition's type.
const char* const NamedGptAttributes[] = {"RequiredPartition", "NoBlockIOProtocol", "LegacyBIOSBootable"};
constexpr int FirstTypeAttributeBit = 48;
constexpr quint64 EbrRoom = 1024 * 1024;

bool overlaps(quint64 start, quint64 size, const TableEntry& entry)
{
    return start < entry.start + entry.size && entry.start < start + size;
}

quint32 numberOfNode(const QString& node)
{
    int digits = node.size();
    while (digits > 0 && node.at(digits - 1).isDigit())
        --digits;
    return node.mid(digits).toUInt();
}

bool isExtendedType(const Wire::PartitionInfo& partition)
{
    return partition.type() == Wire::PartitionInfo::MBR && ExtendedMbrTypes.contains(partition.mbrtype());
}

bool insideExtended(const TableLayout& layout, const Wire::PartitionInfo& wanted)
{
    if (isExtendedType(wanted))
        return false;
    return std::any_of(layout.entries.cbegin(), layout.entries.cend(), [&wanted](const TableEntry& entry) {
        return entry.extended && wanted.offset() >= entry.start && wanted.offset() + wanted.size() <= entry.start + entry.size;
    });
}

} // namespace

std::optional<TableLayout> parseLayout(const QByteArray& sfdiskJson, quint64 diskBytes)
{
    const QJsonObject table = QJsonDocument::fromJson(sfdiskJson).object().value(QLatin1String("partitiontable")).toObject();
    const QString label = table.value(QLatin1String("label")).toString();
    if (label != QLatin1String("gpt") && label != QLatin1String("dos"))
        return std::nullopt;
    TableLayout layout;
    layout.gpt = label == QLatin1String("gpt");
    layout.sectorSize = static_cast<quint32>(table.value(QLatin1String("sectorsize")).toInt(512));
    if (layout.sectorSize == 0)
        return std::nullopt;
    if (layout.gpt) {
        layout.firstUsable = static_cast<quint64>(table.value(QLatin1String("firstlba")).toDouble()) * layout.sectorSize;
        layout.usableEnd = (static_cast<quint64>(table.value(QLatin1String("lastlba")).toDouble()) + 1) * layout.sectorSize;
    } else {
        layout.firstUsable = layout.sectorSize; // behind the boot sector
        layout.usableEnd = qMin(diskBytes, MbrSectorLimit * layout.sectorSize);
    }
    QVector<TableEntry> entries;
    for (const QJsonValue& value : table.value(QLatin1String("partitions")).toArray()) {
        const QJsonObject partition = value.toObject();
        TableEntry entry;
        entry.number = numberOfNode(partition.value(QLatin1String("node")).toString());
        entry.start = static_cast<quint64>(partition.value(QLatin1String("start")).toDouble()) * layout.sectorSize;
        entry.size = static_cast<quint64>(partition.value(QLatin1String("size")).toDouble()) * layout.sectorSize;
        entry.extended = !layout.gpt && ExtendedMbrTypes.contains(partition.value(QLatin1String("type")).toString().toUInt(nullptr, 16));
        entry.logical = !layout.gpt && entry.number > 4;
        entries.append(entry);
    }
    layout.entries = entries;
    return layout;
}

QString placementProblem(const TableLayout& layout, const Wire::PartitionInfo& wanted)
{
    if (wanted.type() == Wire::PartitionInfo::RAW)
        return QStringLiteral("the partition has no table style");
    if ((wanted.type() == Wire::PartitionInfo::GPT) != layout.gpt)
        return QStringLiteral("the partition's table style is not the disk's");
    if (wanted.size() == 0)
        return QStringLiteral("the partition has no size");
    if (wanted.offset() % layout.sectorSize != 0 || wanted.size() % layout.sectorSize != 0)
        return QStringLiteral("the partition does not fall on %1-byte sectors").arg(layout.sectorSize);
    if (wanted.offset() < layout.firstUsable)
        return QStringLiteral("the partition starts inside the partition table");
    if (wanted.offset() > layout.usableEnd || wanted.size() > layout.usableEnd - wanted.offset())
        return QStringLiteral("the partition ends beyond the end of the disk (%1 bytes usable)").arg(layout.usableEnd);
    const bool extended = isExtendedType(wanted);
    const bool container = insideExtended(layout, wanted);
    int primaries = 0;
    for (const TableEntry& entry : layout.entries) {
        primaries += entry.logical ? 0 : 1;
        if (extended && entry.extended)
            return QStringLiteral("the disk has an extended partition already");
    }
    if (!layout.gpt && !container && primaries >= 4)
        return QStringLiteral("the table holds four primary partitions already");
    for (const TableEntry& entry : layout.entries) {
        // A logical partition lies inside its extended one and only meets the other logical ones.
        const bool sameLevel = container ? entry.logical : !entry.logical;
        if (sameLevel && overlaps(wanted.offset(), wanted.size(), entry))
            return QStringLiteral("the partition overlaps partition %1").arg(entry.number);
    }
    return QString();
}

QByteArray scriptLine(const TableLayout& layout, const Wire::PartitionInfo& wanted, QString* problem)
{
    quint64 start = wanted.offset();
    quint64 size = wanted.size();
    // A logical partition is planned where its boot record has to go (the extended partition
    // starts with the first one, each next one where the last ended): it keeps its end and gives
    // up its first MiB to the record.
    if (insideExtended(layout, wanted)) {
        if (size <= EbrRoom) {
            *problem = QStringLiteral("the logical partition leaves no room for its boot record");
            return QByteArray();
        }
        start += EbrRoom;
        size -= EbrRoom;
    }
    QByteArray line = "start=" + QByteArray::number(qulonglong(start / layout.sectorSize))
        + ", size=" + QByteArray::number(qulonglong(size / layout.sectorSize));
    if (!layout.gpt) {
        if (wanted.mbrtype() == 0 || wanted.mbrtype() > 0xFF) {
            *problem = QStringLiteral("the MBR type %1 is not a partition type").arg(wanted.mbrtype());
            return QByteArray();
        }
        line += ", type=" + QByteArray::number(wanted.mbrtype(), 16);
        if (wanted.isbootable())
            line += ", bootable";
        return line + '\n';
    }
    const QUuid type = QUuid::fromString(QString::fromStdString(wanted.gpttype()));
    if (type.isNull()) {
        *problem = QStringLiteral("the GPT type \"%1\" is not a GUID").arg(QString::fromStdString(wanted.gpttype()));
        return QByteArray();
    }
    line += ", type=" + type.toByteArray(QUuid::WithoutBraces).toUpper();
    const QString name = QString::fromStdString(wanted.gptname());
    for (const QChar c : name) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\') || c.category() == QChar::Other_Control) {
            *problem = QStringLiteral("the partition name holds a character a table script cannot carry");
            return QByteArray();
        }
    }
    if (!name.isEmpty())
        line += ", name=\"" + name.toUtf8() + '"';
    QByteArrayList attributes;
    for (int bit = 0; bit < 64; ++bit) {
        if (!(wanted.gptattributes() & (quint64(1) << bit)))
            continue;
        if (bit < 3) {
            attributes << NamedGptAttributes[bit];
        } else if (bit >= FirstTypeAttributeBit) {
            attributes << "GUID:" + QByteArray::number(bit);
        } else {
            *problem = QStringLiteral("the GPT attribute bit %1 is reserved").arg(bit);
            return QByteArray();
        }
    }
    if (!attributes.isEmpty())
        line += ", attrs=\"" + attributes.join(' ') + '"';
    return line + '\n';
}

} // namespace Velmora::Daemon::Migration
