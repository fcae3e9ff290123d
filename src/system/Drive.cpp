#include "system/Drive.h"

#include "logger/Logger.h"
#include "performance/PerformanceResult.h"
#include "smart/SmartController.h"
#include "system/DriveHealthStatus.h"
#include "system/FileCategories.h"
#include "system/Partition.h"

#include <QChar>

namespace Velmora::System {

const QStringList Drive::modelSuffixes = {
    QStringLiteral(" SCSI Disk Device"), QStringLiteral(" SATA Disk Device"), QStringLiteral(" ATA Disk Device"),
    QStringLiteral(" SCSI Device"), QStringLiteral(" SATA Device"), QStringLiteral(" ATA Device"),
    QStringLiteral("NVMe "), QStringLiteral(" USB Device")};

namespace {

constexpr quint32 UnusedSpaceMbrType = 7;
constexpr int HexSerialLength = 40;

quint32 highestSataSpeed(quint32 speeds)
{
    for (quint32 bit : {4u, 2u, 1u}) {
        if (speeds & bit)
            return bit;
    }
    return 0;
}

bool isSerialCharacter(QChar c)
{
    const ushort code = c.unicode();
    const bool asciiLetterOrDigit = code < 128 && c.isLetterOrNumber();
    return asciiLetterOrDigit || c.isSpace() || c.category() == QChar::Punctuation_Dash;
}

} // namespace

Drive::Drive(int id, const QString& model, const QString& serial, const QString& warranty,
    const QString& firmwareVersion, const Bytes& capacity, quint32 currentSataSpeed, quint32 supportedSataSpeed,
    bool isGpt, const QString& type, QObject* parent)
    : QObject(parent)
    , m_id(id)
    , m_isGpt(isGpt)
    , m_model(cleanedModel(model))
    , m_warranty(warranty)
    , m_firmwareVersion(firmwareVersion)
    , m_type(type)
    , m_capacity(capacity)
    , m_serialNumber(normalizedSerial(serial))
    , m_supportedSataSpeed(highestSataSpeed(supportedSataSpeed))
    , m_currentSataSpeed(currentSataSpeed)
{
    m_smartController = Velmora::Smart::createSmartController(this);
    m_fileCategories = new FileCategories(m_model + m_serialNumber, this);
    m_healthStatus = new DriveHealthStatus(this);
    Partition* everything = newUnusedSpace(-1, Bytes(0), capacity);
    m_partitions.insert(everything->id(), everything);
}

QString Drive::cleanedModel(const QString& model)
{
    QString cleaned = model;
    for (const QString& suffix : modelSuffixes)
        cleaned.remove(suffix, Qt::CaseSensitive);
    return cleaned;
}

QString Drive::normalizedSerial(const QString& serial)
{
    const QString trimmed = serial.trimmed();
    if (trimmed.size() != HexSerialLength)
        return trimmed;

    for (int i = 0; i < trimmed.size(); i += 2) {
        bool ok = false;
        const uint code = trimmed.midRef(i, 2).toUInt(&ok, 16);
        if (!ok || !isSerialCharacter(QChar(code)))
            return trimmed;
    }
    QByteArray decoded = QByteArray::fromHex(trimmed.toLatin1());
    const int zero = decoded.indexOf('\0');
    if (zero >= 0)
        decoded.truncate(zero);
    return QString::fromLatin1(decoded).trimmed();
}

void Drive::setPerformanceResult(Velmora::Performance::PerformanceResult* result)
{
    if (result == m_performanceResult)
        return;
    delete m_performanceResult;
    m_performanceResult = result;
    if (result)
        result->setParent(this);
}

void Drive::setGpt(bool isGpt)
{
    m_isGpt = isGpt;
}

void Drive::setFirmwareVersion(const QString& firmwareVersion)
{
    m_firmwareVersion = firmwareVersion;
    if (m_smartController)
        m_smartController->setFirmwareVersion(firmwareVersion);
}

void Drive::setNewestFirmwareVersion(const QString& version)
{
    if (version == m_newestFirmwareVersion)
        return;
    m_newestFirmwareVersion = version;
    emit dataChanged();
}

void Drive::setNewestFirmwareUrl(const QString& url)
{
    if (url == m_newestFirmwareUrl)
        return;
    m_newestFirmwareUrl = url;
    emit dataChanged();
}

Partition* Drive::newUnusedSpace(int id, const Bytes& offset, const Bytes& size)
{
    return new Partition(id, QString(), QString(), size, Bytes(0), offset, Partition::UnusedSpace, UnusedSpaceMbrType,
        QString(), QString(), QString(), false, false, this);
}

void Drive::addPartition(Partition* partition)
{
    if (partition->type() == Partition::UnusedSpace)
        return;
    partition->setParent(this);
    connect(partition, &Partition::dataChanged, this, &Drive::dataChanged);
    m_partitions.insert(partition->id(), partition);
    carveOutOfUnusedSpace(partition);
    emit partitionAdded(partition->id());
    emit dataChanged();
}

void Drive::carveOutOfUnusedSpace(Partition* partition)
{
    const Bytes headAllowance(1.0, Bytes::MB);
    const Bytes tailAllowance(10.0, Bytes::MB);
    const QList<Partition*> entries = m_partitions.values();
    for (Partition* unused : entries) {
        if (unused->type() != Partition::UnusedSpace)
            continue;
        if (partition->offset() < unused->offset() || partition->offset() > unused->end())
            continue;

        if (partition->offset() - unused->offset() <= headAllowance) {
            if (unused->size() - partition->size() <= tailAllowance) {
                m_partitions.remove(unused->id());
                delete unused;
            } else {
                const Bytes remaining = unused->size() - partition->size();
                unused->setOffset(partition->end());
                unused->setSize(remaining);
            }
            continue;
        }

        if (unused->end() != partition->end()) {
            Partition* behind = newUnusedSpace(firstFreeUnusedSpaceId(), partition->end(), unused->end() - partition->end());
            m_partitions.insert(behind->id(), behind);
            emit partitionAdded(behind->id());
        }
        unused->setSize(partition->offset() - unused->offset());
    }
}

int Drive::firstFreeUnusedSpaceId() const
{
    int id = -1;
    while (m_partitions.contains(id))
        --id;
    return id;
}

void Drive::removePartition(int id)
{
    Partition* partition = m_partitions.take(id);
    delete partition;
    emit partitionRemoved(id);
    emit dataChanged();
}

Bytes Drive::used() const
{
    Bytes sum;
    for (const Partition* partition : m_partitions) {
        if (!partition->isExtended())
            sum += partition->used();
    }
    return sum;
}

double Drive::usedPercent() const
{
    if (m_capacity.value() == 0)
        return 0.0;
    return static_cast<double>(used().value()) / static_cast<double>(m_capacity.value()) * 100.0;
}

bool Drive::hasOperatingSystem() const
{
    for (const Partition* partition : m_partitions) {
        if (partition->isOs())
            return true;
    }
    return false;
}

QString Drive::displayText(bool withCapacity) const
{
    QString text = m_model;
    if (withCapacity)
        text += QStringLiteral(" [") + m_capacity.toString() + QLatin1Char(']');
    QStringList letters;
    for (const Partition* partition : m_partitions) {
        if (!partition->letter().isEmpty())
            letters.append(partition->letter().left(2));
    }
    if (!letters.isEmpty())
        text += QStringLiteral(" (") + letters.join(QStringLiteral(", ")) + QLatin1Char(')');
    return text;
}

QString Drive::toString() const
{
    QStringList lines = {
        QStringLiteral("Id = ") + QString::number(m_id),
        QStringLiteral("Partitions count = ") + QString::number(partitionCount()),
        QStringLiteral("Model = ") + m_model,
        QStringLiteral("Serial Number = ") + m_serialNumber,
        QStringLiteral("Capacity = ") + m_capacity.toString(),
        QStringLiteral("Free = ") + free().toString(),
        QStringLiteral("Used = ") + used().toString(),
        QStringLiteral("Firmware version = ") + m_firmwareVersion,
        QStringLiteral("Warranty = ") + m_warranty,
        QStringLiteral("Type = ") + m_type,
    };
    for (const Partition* partition : m_partitions)
        lines.append(partition->toString());
    return lines.join(QLatin1Char('\n'));
}

void Drive::updateFileCategories()
{
    emit requestFileCategoriesUpdate(m_id);
}

void Drive::stopUpdatingFileCategories()
{
    emit stopFileCategoriesUpdate(m_id);
}

void Drive::enableHealthMonitoring()
{
    connect(m_smartController, &Velmora::Smart::SmartController::dataChanged, this, &Drive::updateDriveStatus);
    connect(this, &Drive::dataChanged, this, &Drive::updateDriveStatus);
    connect(m_healthStatus, &DriveHealthStatus::issueSeverityChanged, this, &Drive::onDriveStatusIssueSeverityChanged);
    updateDriveStatus();
}

void Drive::updateDriveStatus()
{
    Logger::debug(QString(), QStringLiteral("Updating drive status"));
    const double usedShare = used().inUnit(Bytes::KB) / m_capacity.inUnit(Bytes::KB) * 1000.0;
    m_healthStatus->setIssueValue(FreeSpace, usedShare);

    bool lifeValid = false;
    const double life = m_smartController->parameterValue(Velmora::Smart::LifeRemaining, &lifeValid);
    bool badSectorsValid = false;
    const double badSectors = m_smartController->parameterValue(Velmora::Smart::BadSectors, &badSectorsValid);
    if (lifeValid)
        m_healthStatus->setIssueValue(LifeRemaining, static_cast<uint>(life));
    if (badSectorsValid)
        m_healthStatus->setIssueValue(BadSectors, static_cast<qulonglong>(badSectors));

    m_healthStatus->setIssueValue(SATASpeedLimit,
        QVariant::fromValue(SATASpeedCapabilities{m_supportedSataSpeed, m_currentSataSpeed}));
    const bool newerFirmware = !m_newestFirmwareVersion.isEmpty()
        && m_newestFirmwareVersion.compare(m_firmwareVersion, Qt::CaseInsensitive) != 0;
    m_healthStatus->setIssueValue(FirmwareUpdate, newerFirmware);
}

void Drive::onDriveStatusIssueSeverityChanged(DriveIssueType type, DriveIssueSeverity severity)
{
    Logger::debug(QString(), QStringLiteral("Issue %1 severity changed to %2").arg(type).arg(severity));
    if (severity != ActionNeeded)
        return;

    QString text;
    switch (type) {
    case FreeSpace: text = tr("LOW FREE SPACE ON DRIVE %1."); break;
    case LifeRemaining: text = tr("LOW LIFE REMAINING ON DRIVE %1."); break;
    case BadSectors: text = tr("BAD SECTORS ON DRIVE %1."); break;
    case SATASpeedLimit: text = tr("DRIVE %1 COULD WORK FASTER."); break;
    default: return;
    }
    emit notifyError(text.arg(m_model), QVariant(m_id));
}

} // namespace Velmora::System
