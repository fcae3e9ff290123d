#pragma once

#include "gui/Page.h"

class QComboBox;
class QLabel;

namespace Velmora::System {
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

    Velmora::System::System* system;
    QLabel* label_noDrives = nullptr;
    QComboBox* DriveSelectComboBox = nullptr;
};

} // namespace Velmora::Gui
