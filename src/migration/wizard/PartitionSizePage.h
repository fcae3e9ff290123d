#pragma once

#include "migration/wizard/PageBase.h"

#include <QList>
#include <QPointer>
#include <QTimer>

class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace Velmora::System {
class Drive;
class DriveWidget;
class MigrationDestDrive;
class MigrationDestDriveWidget;
} // namespace Velmora::System

namespace Velmora::Migration {

class PartitionDetailsWidget;
class SizeCalculationProgressBar;

// The second step: both drives as bars and, between them, one row per partition of the plan, in
// which the user decides what goes across and how large it becomes. While the sizes are being
// estimated the rows give way to a progress bar.
class PartitionSizePage : public PageBase
{
    Q_OBJECT

public:
    explicit PartitionSizePage(QWidget* parent = nullptr);

    void setDrives(System::Drive* source, System::MigrationDestDrive* destination);
    void rebuildRows();
    const QList<PartitionDetailsWidget*>& rows() const { return m_rows; }

    void startEstimation();
    void setEstimationProgress(int percent);
    void finishEstimation();
    bool isEstimating() const { return m_estimating; }
    int estimationProgress() const;

    // Brings the rows up to date at the next turn of the event loop: a replanning changes every
    // partition several times, and the rows need to show only the end of it.
    void refresh();

signals:
    void requestFiltersPage(int partitionId);

private slots:
    void updateRows();

private:
    QWidget* buildListHeader();

    QPointer<System::MigrationDestDrive> m_destination;
    QList<PartitionDetailsWidget*> m_rows;
    bool m_estimating = false;
    QTimer m_refreshTimer;
    System::DriveWidget* sourceDriveWidget;
    System::MigrationDestDriveWidget* destDriveWidget;
    QWidget* partitionsHeader;
    QScrollArea* partitionsArea;
    QWidget* partitionsList;
    QVBoxLayout* partitionsLayout;
    QLabel* sizeCalculation_info;
    SizeCalculationProgressBar* sizeCalculationProgressBar;
};

} // namespace Velmora::Migration
