#pragma once

#include "migration/MigrationDestDrive.h"
#include "migration/MigrationStep.h"
#include "system/Bytes.h"
#include "system/Drive.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

namespace Velmora::System {
class System;
class SystemManager;
} // namespace Velmora::System

namespace Velmora::Migration {

// The one model of a migration: source and destination, the plan for the destination, the step a
// run has reached and how far the copy has got. It asks the service for nothing itself; what it
// wants goes out as signals that the controller answers.
class Migration : public QObject
{
    Q_OBJECT

public:
    // The manager reads the machine anew; the system holds the drives that it read.
    Migration(System::SystemManager* systemManager, System::System* system, QObject* parent = nullptr);

    MigrationStep migrationStep() const { return m_migrationStep; }
    void setMigrationStep(MigrationStep step);

    System::Drive* sourceDrive() const { return m_sourceDrive.data(); }
    System::MigrationDestDrive* destinationDrive() const { return m_destinationDrive.data(); }

    System::Bytes copiedSize() const { return m_copiedSize; }
    System::Bytes totalSize() const { return m_totalSize; }
    void setCopiedSize(const System::Bytes& size);
    double progress() const;

    QList<System::Drive*> sourceDrives() const;
    QList<System::Drive*> destinationDrives() const;

    void reportFaultedFiles(const QStringList& faultedFiles, const QStringList& faultedDirectories);
    void stopFilteredSizeRequests();

    System::SystemManager* systemManager() const { return m_systemManager; }

public slots:
    void setSourceDriveId(int driveId);
    void setDestDriveId(int driveId);
    void startMigration();
    void cancelMigration();
    void resetToDefaults();

signals:
    void start();
    void cancel();
    void sourceDriveChanged();
    void destinationDriveChanged();
    void driveListChanged();
    void migrationStepChanged();
    void progressChanged();
    void migrationFinished();
    void migrationFailed(QString errorMessage);
    void requestFileSystemData(QString path);
    void requestFilteredFilesSize(int partitionId);
    void stopRequestFilteredFilesSize();
    void requestSystemPaths(int driveId, int partitionId);
    void detectedFaultedFilesOrDirectories(QStringList faultedFiles, QStringList faultedDirectories);

private slots:
    void updateDriveList();

private:
    void rebuildPlan();

    const QList<MigrationStep> m_finishedSteps;
    MigrationStep m_migrationStep = Idle;
    System::SystemManager* m_systemManager;
    System::System* m_system;
    QPointer<System::MigrationDestDrive> m_destinationDrive;
    QPointer<System::Drive> m_sourceDrive;
    System::Bytes m_minimumDriveSize;
    System::Bytes m_copiedSize;
    System::Bytes m_totalSize;
};

} // namespace Velmora::Migration
