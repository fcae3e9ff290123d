#pragma once

#include "gui/Page.h"

#include <QMetaObject>
#include <QString>

class QLabel;
class QPushButton;

namespace Velmora::System {
class System;
}

namespace Velmora::Update {
class FirmwareUpdate;
}

namespace Velmora::Gui {

class ParamValueWidget;

// "FIRMWARE UPDATE": the current drive's model and firmware against the newest version the
// back-end named. The update itself happens on the web page the back-end names; the page only
// opens it in the browser.
class FirmwareUpdatePage : public Page
{
    Q_OBJECT

public:
    FirmwareUpdatePage(Velmora::Update::FirmwareUpdate* firmwareUpdate, Velmora::System::System* system,
        QWidget* parent = nullptr);

private slots:
    void onCurrentDriveChanged(int id);
    void refreshFirmwareStatus();
    void onFirmwareUpdatePushButtonClick();

private:
    void buildForm();
    static QString analysisTime();

    Velmora::System::System* system;
    QMetaObject::Connection driveConnection;
    QString firmwareUrl;

    QLabel* titleLabel = nullptr;
    ParamValueWidget* driveModel = nullptr;
    ParamValueWidget* currentFVersion = nullptr;
    ParamValueWidget* newestFVersion = nullptr;
    QLabel* label_analyzed = nullptr;
    QLabel* label_analyzedTime = nullptr;
    QPushButton* pushButton_checkForUpdates = nullptr;
    QPushButton* firmwareUpdatePushButton = nullptr;
};

} // namespace Velmora::Gui
