#pragma once

#include "gui/Page.h"

#include <QMap>

class QComboBox;
class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace Velmora::System {
class Drive;
class DriveWidget;
class System;
}

namespace Velmora::Gui {

// The first page: the user picks the drive to look at.
class HomePage : public Page
{
    Q_OBJECT

public:
    explicit HomePage(Velmora::System::System* system, QWidget* parent = nullptr);

signals:
    void changeCurrentDrive(int driveId);

private slots:
    void onDriveAdded(int driveId);
    void onDriveRemoved(int driveId);
    void on_DriveSelectComboBox_currentIndexChanged(int index);

private:
    void buildForm();
    void addDriveBar(Velmora::System::Drive* drive);
    void fitDriveBarArea();
    void onDriveBarClicked(int driveId);

    Velmora::System::System* system;
    QLabel* label_noDrives = nullptr;
    QComboBox* DriveSelectComboBox = nullptr;
    // The partitions of each listed drive; a click on one chooses that drive.
    QScrollArea* driveBarArea = nullptr;
    QVBoxLayout* layout_driveBars = nullptr;
    QMap<int, Velmora::System::DriveWidget*> driveBars;
};

} // namespace Velmora::Gui
