#pragma once

#include "system/Bytes.h"
#include "system/DriveIssueTypes.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace Velmora::Smart {
class SmartController;
}
namespace Velmora::Performance {
class PerformanceResult;
}

namespace Velmora::System {

class DriveHealthStatus;
class FileCategories;
class Partition;

// One drive of the machine with its partitions and unused stretches. Owns its partitions, its
// SMART controller, its file categories, its health status and its speed-test result.
class Drive : public QObject
{
    Q_OBJECT

public:
    static const QStringList modelSuffixes;

    Drive(int id, const QString& model, const QString& serial, const QString& warranty,
        const QString& firmwareVersion, const Bytes& capacity, quint32 currentSataSpeed,
        quint32 supportedSataSpeed, bool isGpt, const QString& type, QObject* parent = nullptr);

    // The service reports some serials as 40 hexadecimal digits of the real text.
    static QString normalizedSerial(const QString& serial);
    static QString cleanedModel(const QString& model);

    int id() const { return m_id; }
    bool isGpt() const { return m_isGpt; }
    QString model() const { return m_model; }
    QString warranty() const { return m_warranty; }
    QString firmwareVersion() const { return m_firmwareVersion; }
    QString type() const { return m_type; }
    Bytes capacity() const { return m_capacity; }
    QString serialNumber() const { return m_serialNumber; }
    quint32 supportedSataSpeed() const { return m_supportedSataSpeed; }
    quint32 currentSataSpeed() const { return m_currentSataSpeed; }
    QString newestFirmwareVersion() const { return m_newestFirmwareVersion; }
    QString newestFirmwareUrl() const { return m_newestFirmwareUrl; }
    bool isUsb() const { return m_type.contains(QLatin1String("USB"), Qt::CaseInsensitive); }

    Velmora::Smart::SmartController* smartController() const { return m_smartController; }
    FileCategories* fileCategories() const { return m_fileCategories; }
    DriveHealthStatus* healthStatus() const { return m_healthStatus; }
    Velmora::Performance::PerformanceResult* performanceResult() const { return m_performanceResult; }
    // Takes ownership.
    void setPerformanceResult(Velmora::Performance::PerformanceResult* result);

    void setGpt(bool isGpt);
    void setFirmwareVersion(const QString& firmwareVersion);
    void setNewestFirmwareVersion(const QString& version);
    void setNewestFirmwareUrl(const QString& url);

    const QMap<int, Partition*>& partitions() const { return m_partitions; }
    int partitionCount() const { return m_partitions.size(); }
    bool hasPartition(int id) const { return m_partitions.contains(id); }
    Partition* partition(int id) const { return m_partitions.value(id); }
    void addPartition(Partition* partition);
    void removePartition(int id);

    Bytes used() const;
    Bytes free() const { return m_capacity - used(); }
    double usedPercent() const;
    bool hasOperatingSystem() const;

    QString displayText(bool withCapacity) const;
    QString toString() const;

    // Connects the health evaluation and runs it once; not done for drives behind USB.
    void enableHealthMonitoring();

public slots:
    void updateFileCategories();
    void stopUpdatingFileCategories();
    void updateDriveStatus();

signals:
    void dataChanged();
    void partitionAdded(int id);
    void partitionRemoved(int id);
    void requestFileCategoriesUpdate(int driveId);
    void stopFileCategoriesUpdate(int driveId);
    void notifyError(QString errorMsg, QVariant data);

protected slots:
    void onDriveStatusIssueSeverityChanged(Velmora::System::DriveIssueType type,
        Velmora::System::DriveIssueSeverity severity);

private:
    void carveOutOfUnusedSpace(Partition* partition);
    int firstFreeUnusedSpaceId() const;
    Partition* newUnusedSpace(int id, const Bytes& offset, const Bytes& size);

    QMap<int, Partition*> m_partitions;
    int m_id;
    bool m_isGpt;
    QString m_model;
    QString m_warranty;
    QString m_firmwareVersion;
    QString m_type;
    Bytes m_capacity;
    QString m_serialNumber;
    Velmora::Smart::SmartController* m_smartController = nullptr;
    quint32 m_supportedSataSpeed;
    quint32 m_currentSataSpeed;
    FileCategories* m_fileCategories = nullptr;
    Velmora::Performance::PerformanceResult* m_performanceResult = nullptr;
    DriveHealthStatus* m_healthStatus = nullptr;
    QString m_newestFirmwareVersion;
    QString m_newestFirmwareUrl;
};

} // namespace Velmora::System
