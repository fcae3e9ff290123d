#pragma once

#include "system/DriveIssueTypes.h"

#include <QDialog>
#include <QMetaObject>

class QGridLayout;
class QLabel;
class QPushButton;

namespace Velmora::System {
class System;
}

namespace Velmora::Gui {

// What lies behind a drive's overall status: one lamp and one line of explanation per health
// rule of the current drive.
class DriveHealthInfoWidget : public QDialog
{
    Q_OBJECT

public:
    explicit DriveHealthInfoWidget(Velmora::System::System* system, QWidget* parent = nullptr);

private slots:
    void onCurrentDriveChanged(int id);
    void refreshDriveStatus();

private:
    void buildForm();
    void addRow(QGridLayout* layout, QLabel* led, const QString& caption, QLabel* description);
    void showIssue(Velmora::System::DriveIssueType type, QLabel* led, QLabel* description);

    Velmora::System::System* system;
    QMetaObject::Connection driveConnection;

    QLabel* FreeSpaceStatusLED = nullptr;
    QLabel* label_descFreeSpace = nullptr;
    QLabel* LifeRemainingStatusLED = nullptr;
    QLabel* label_descLifeRemain = nullptr;
    QLabel* BadSectorsStatusLED = nullptr;
    QLabel* label_descBadSector = nullptr;
    QLabel* SataSpeedStatusLED = nullptr;
    QLabel* label_descSataSpeed = nullptr;
    QLabel* FirmwareUpdateStatusLED = nullptr;
    QLabel* label_descFirmware = nullptr;
    QPushButton* button_close = nullptr;
};

} // namespace Velmora::Gui
