#pragma once

#include "communication/Handler.h"
#include "migration/MigrationStep.h"
#include "system/Bytes.h"

#include <QList>
#include <QPair>
#include <QTimer>

namespace Velmora::System {
class MigrationDestDrive;
class MigrationDestPartition;
class System;
class SystemManager;
} // namespace Velmora::System

namespace Velmora::Migration {

class Migration;

// Carries a migration out over the service link, one request at a time: clean the destination,
// create each partition, format each that has a file system, copy each that has content, fix the
// boot configuration. A watchdog ends the run when the service falls silent. Also fetches what
// the filters need: directory listings, system paths and filtered sizes.
class MigrationController : public Communication::Handler
{
    Q_OBJECT

public:
    static constexpr int DefaultWatchdogTimeout = 120000;
    static constexpr int DefaultSystemPathsRetryInterval = 50;

    MigrationController(System::SystemManager* systemManager, System::System* system, QObject* parent = nullptr);

    void clientConnected() override;
    void handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload) override;

    // Made on first demand and kept for the life of the controller.
    Migration* migration();

    int watchdogTimeout() const { return m_watchdog.interval(); }
    void setWatchdogTimeout(int milliseconds);
    bool isWatchdogActive() const { return m_watchdog.isActive(); }
    int watchdogRemainingTime() const { return m_watchdog.remainingTime(); }

    int systemPathsRetryInterval() const { return m_systemPathsRetryInterval; }
    void setSystemPathsRetryInterval(int milliseconds) { m_systemPathsRetryInterval = milliseconds; }

signals:
    void migrationFailed(QString errorText);
    void migrationFinished();

private slots:
    void requestFileList(QString path);
    void startMigration();
    void cancelMigration();
    void onWatchdogTimeout();
    void onRequestFilteredPartitionSize(int partitionId);
    void stopRequestFilteredFilesSize();
    void onRequestFilterSystemPath(int driveId, int partitionId);
    void sendFilterSystemPathRequest();

private:
    System::MigrationDestDrive* destination() const;
    int sourceDriveId() const;
    void changeStep(MigrationStep step);
    void fail(const QString& text);
    void rereadSystem();

    void sendCleanDisk();
    void sendCreatePartition();
    void sendFormatPartition();
    void sendCopyFiles();
    void sendBootability();
    void onCanceled(MigrationStep previousStep);

    void onDiskCleaned(const QByteArray& payload);
    void onPartitionCreated(const QByteArray& payload);
    void onPartitionFormatted(const QByteArray& payload);
    void onFileCopyReport(const QByteArray& payload);
    void onBootabilityFixed(const QByteArray& payload);
    void onSystemPaths(const QByteArray& payload);
    void onFileList(const QByteArray& payload);
    void onFilteredSize(const QByteArray& payload);
    void logQueue(const QString& heading, const QList<int>& ids) const;

    System::SystemManager* m_systemManager;
    System::System* m_system;
    Migration* m_migration = nullptr;
    QList<int> m_partitionCreateQueue;
    QList<int> m_partitionFormatQueue;
    QList<int> m_fileCopyQueue;
    bool m_cancelRequested = false;
    QTimer m_watchdog;
    System::Bytes m_copiedSize;
    bool m_systemPathsRequestPending = false;
    QList<QPair<int, int>> m_systemPathsQueue;
    int m_systemPathsRetryInterval = DefaultSystemPathsRetryInterval;
};

} // namespace Velmora::Migration
