#pragma once

#include "gui/Page.h"

#include <QList>
#include <QMap>
#include <QMetaObject>

class QGraphicsView;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace Velmora::System {
class System;
}

namespace Velmora::Gui {

class DriveHealthInfoWidget;
class GraphicsPieChart;
class ParamValueWidget;
class RoundProgressBar;

// "MY SSD": the chosen drive's identity, health, firmware state, TRIM and AHCI state, how full it
// is and what kinds of files fill it.
class SSDStatusPage : public Page
{
    Q_OBJECT

public:
    explicit SSDStatusPage(Velmora::System::System* system, QWidget* parent = nullptr);

signals:
    void changePageRequest(Velmora::Gui::Page::PageId id);

protected slots:
    void updateDriveInformation();
    void onCurrentDriveChanged();
    void updateFileCategories();
    void refreshSystemStatus();

private slots:
    void on_reload_button_clicked();
    void checkReloadFinished();
    void onDriveHealthInfoButtonClicked();

private:
    void buildForm();
    // Every lamp dark, every caption dimmed, no DETAILS: the state before a drive's figures apply.
    void resetStatusGroups();
    QWidget* buildStatusColumn();
    QWidget* buildChartsColumn();
    QHBoxLayout* ledRow(QLabel* led, QLabel* label, QPushButton* button = nullptr);
    QHBoxLayout* yesNoRow(const QString& objectName, const QString& caption, QLabel* yesLed, QLabel* noLed);
    QGraphicsView* chartView(const QString& objectName);
    void createLegend();
    void showDriveStatus(int severity);
    void showFirmwareStatus(int severity);
    void updateReloadButton(int status);

    Velmora::System::System* system;
    GraphicsPieChart* fileTypesChart = nullptr;
    RoundProgressBar* driveSpaceChart = nullptr;
    DriveHealthInfoWidget* driveHealthInfo = nullptr;
    QMap<int, ParamValueWidget*> categoryLabels;
    QList<QMetaObject::Connection> driveConnections;
    // RELOAD stays disabled until the scan it asked for ends; these tell the reports of that scan
    // from those of the scan before it.
    bool reloadPending = false;
    bool stoppedScanPending = false;
    bool reloadCheckQueued = false;

    QLabel* titleLabel = nullptr;
    QVBoxLayout* layout_driveStatus = nullptr;
    QLabel* led_driveStatusActionNeeded = nullptr;
    QLabel* label_driveStatusActionNeeded = nullptr;
    QPushButton* button_driveStatusActionNeeded = nullptr;
    QLabel* led_driveStatusOk = nullptr;
    QLabel* label_driveStatusOk = nullptr;
    QPushButton* button_driveStatusOk = nullptr;
    QLabel* led_driveStatusGood = nullptr;
    QLabel* label_driveStatusGood = nullptr;
    QVBoxLayout* layout_firmwareStatus = nullptr;
    QLabel* led_firmwareStatusActionNeeded = nullptr;
    QLabel* label_firmwareStatusActionNeeded = nullptr;
    QLabel* led_firmwareStatusGood = nullptr;
    QLabel* label_firmwareStatusGood = nullptr;
    QPushButton* button_frimwareStatusDetails = nullptr;
    QLabel* led_trimYes = nullptr;
    QLabel* led_trimNo = nullptr;
    QLabel* led_ahciYes = nullptr;
    QLabel* led_ahciNo = nullptr;
    ParamValueWidget* DriveModel = nullptr;
    ParamValueWidget* DriveCapacity = nullptr;
    ParamValueWidget* DriveSN = nullptr;
    ParamValueWidget* DriveFirmware = nullptr;
    ParamValueWidget* FirmwareStatus = nullptr;
    ParamValueWidget* DriveStatus = nullptr;
    ParamValueWidget* pvWidget_totoalStorage = nullptr;
    ParamValueWidget* pvWidget_usedStorage = nullptr;
    ParamValueWidget* pvWidget_freeStorage = nullptr;
    QGraphicsView* driveSpaceChartView = nullptr;
    QGraphicsView* fileTypesChartView = nullptr;
    QWidget* fileCategories = nullptr;
    QPushButton* reload_button = nullptr;
    QLabel* label_analyzed = nullptr;
};

} // namespace Velmora::Gui
