#include "system/Partition.h"

#include "logger/Logger.h"

namespace Velmora::System {

const QList<int> Partition::extendedMbrTypes = {0x05, 0x0F, 0x1F, 0x3B, 0x85, 0x91, 0x9B, 0xC5, 0xCF, 0xD5, 0xE1, 0xE4};
const char* const Partition::efiSystemGuid = "c12a7328-f81f-11d2-ba4b-00a0c93ec93b";
const char* const Partition::microsoftReservedGuid = "e3c9e316-0b5c-4db8-817d-f92df00215ae";
const char* const Partition::recoveryGuid = "de94bba4-06d1-4d40-a16a-bfd50179d6ac";

namespace {
QString boolText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

bool sameGuid(const QString& text, const char* guid)
{
    return text.compare(QLatin1String(guid), Qt::CaseInsensitive) == 0;
}
} // namespace

Partition::Partition(int id, const QString& letter, const QString& label, const Bytes& size, const Bytes& used,
    const Bytes& offset, PartitionType type, quint32 mbrType, const QString& gptType, const QString& volumeName,
    const QString& fileSystem, bool isBootable, bool isLogical, QObject* parent)
    : QObject(parent)
    , m_id(id)
    , m_letter(letter.trimmed())
    , m_label(label.trimmed())
    , m_volumeName(volumeName)
    , m_fileSystem(fileSystem)
    , m_size(size)
    , m_used(used)
    , m_offset(offset)
    , m_type(type)
    , m_mbrType(mbrType)
    , m_gptType(gptType)
    , m_isLogical(isLogical)
    , m_isBootable(isBootable)
{
}

void Partition::setUsed(const Bytes& used) { update(m_used, used); }
void Partition::setLetter(const QString& letter) { update(m_letter, letter.trimmed()); }
void Partition::setLabel(const QString& label) { update(m_label, label.trimmed()); }
void Partition::setOffset(const Bytes& offset) { update(m_offset, offset); }
void Partition::setType(PartitionType type) { update(m_type, type); }
void Partition::setMbrType(quint32 mbrType) { update(m_mbrType, mbrType); }
void Partition::setGptType(const QString& gptType) { update(m_gptType, gptType); }
void Partition::setVolumeName(const QString& volumeName) { update(m_volumeName, volumeName); }
void Partition::setFileSystem(const QString& fileSystem) { update(m_fileSystem, fileSystem); }
void Partition::setBootable(bool isBootable) { update(m_isBootable, isBootable); }
void Partition::setLogical(bool isLogical) { update(m_isLogical, isLogical); }
void Partition::setOs(const QString& os) { update(m_os, os); }

void Partition::setSize(const Bytes& size)
{
    if (size.value() <= 0)
        Logger::warning(QString(), QStringLiteral("Set partition size to 0."));
    update(m_size, size);
}

bool Partition::isMicrosoftReserved() const
{
    if (m_type == GPT)
        return sameGuid(m_gptType, microsoftReservedGuid);
    if (m_type == MBR) {
        const double megabytes = m_size.inUnit(Bytes::MB);
        return m_volumeName.isEmpty() && (qFuzzyCompare(megabytes, 128.0) || qFuzzyCompare(megabytes, 16.0));
    }
    return false;
}

bool Partition::isRecovery() const
{
    if (m_type == GPT)
        return sameGuid(m_gptType, recoveryGuid);
    if (m_type == MBR)
        return m_letter.isEmpty() && m_label.contains(QLatin1String("Recovery"), Qt::CaseInsensitive);
    return false;
}

bool Partition::isEfiSystem() const
{
    if (m_type == GPT)
        return sameGuid(m_gptType, efiSystemGuid);
    if (m_type == MBR)
        return m_isBootable && m_letter.isEmpty();
    return false;
}

bool Partition::isSystemRequired() const
{
    return isMicrosoftReserved() || isRecovery() || isEfiSystem();
}

QString Partition::toString() const
{
    QStringList lines = {
        QStringLiteral("Id: ") + QString::number(m_id),
        QStringLiteral("Letter: ") + m_letter,
        QStringLiteral("Label: ") + m_label,
        QStringLiteral("File system: ") + m_fileSystem,
        QStringLiteral("Volume: ") + m_volumeName,
        QStringLiteral("Size: ") + m_size.toString(),
        QStringLiteral("Used: ") + m_used.toString(),
        QStringLiteral("Offset: %1").arg(offset().toString()),
        QStringLiteral("OS: ") + m_os,
        QStringLiteral("Bootable: ") + boolText(m_isBootable),
        QStringLiteral("Logical: ") + boolText(m_isLogical),
        QStringLiteral("SystemRequired: ") + boolText(isSystemRequired()),
    };
    if (m_type == MBR)
        lines.append(QStringLiteral("MBR Type: %1").arg(m_mbrType));
    else if (m_type == GPT)
        lines.append(QStringLiteral("GPT Type: %1").arg(m_gptType));
    return lines.join(QLatin1Char('\n'));
}

} // namespace Velmora::System
