#pragma once

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

namespace Velmora::System {

class Drive;

// The machine as the service reported it: its drives, the drive the user looks at, and a few facts
// of the computer. The one shared model of the program.
class System : public QObject
{
    Q_OBJECT

public:
    explicit System(QObject* parent = nullptr);

    Drive* drive(int id) const { return m_drives.value(id); }
    Drive* currentDrive() const { return m_drives.value(m_currentDriveId); }
    int currentDriveId() const { return m_currentDriveId; }
    QList<int> driveIds() const { return m_drives.keys(); }
    QList<Drive*> findDrives(const QString& modelPart, const QString& firmware) const;

    void addDrive(Drive* drive);
    void removeDrive(int id);

    bool ahciEnabled() const { return m_ahciEnabled; }
    bool trimEnabled() const { return m_trimEnabled; }
    bool isUefi() const { return m_isUefi; }
    bool is64Bit() const { return m_is64Bit; }
    QString computerName() const { return m_computerName; }
    QString operatingSystem() const { return m_operatingSystem; }
    QString motherboard() const { return m_motherboard; }
    void setAhciEnabled(bool enabled);
    void setTrimEnabled(bool enabled);
    void setUefi(bool isUefi);
    void set64Bit(bool is64Bit);
    void setComputerName(const QString& name);
    void setOperatingSystem(const QString& name);
    void setMotherboard(const QString& motherboard);

public slots:
    void setCurrentDrive(int driveId);
    void refresh();
    void enableTrimCommand();

signals:
    void driveAdded(int driveId);
    void driveRemoved(int driveId);
    void requestSystemDataUpdate();
    void requestFileCategoriesUpdate(int driveId);
    void stopFileCategoriesUpdate(int driveId);
    void currentDriveChanged(int driveId);
    void notifyError(QString errorMsg, QVariant data);
    void requestEnableTrimCommand();
    void systemConfigurationChanged();

private:
    QMap<int, Drive*> m_drives;
    int m_currentDriveId = -1;
    bool m_ahciEnabled = false;
    bool m_trimEnabled = false;
    bool m_isUefi = false;
    bool m_is64Bit = false;
    QString m_computerName;
    QString m_operatingSystem;
    QString m_motherboard;
};

} // namespace Velmora::System
