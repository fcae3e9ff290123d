#pragma once

#include "update/ApplicationUpdate.h"

#include <QString>
#include <QWidget>

class QLabel;
class QPushButton;

namespace Velmora::Gui {
class ParamValueWidget;
class ProgressBar;
}

namespace Velmora::Update {

// The program's own update on the settings page: the installed and the offered version, the
// download with its progress and speed, and the way to the about view.
class UpdateSettingsWidget : public QWidget
{
    Q_OBJECT

public:
    explicit UpdateSettingsWidget(ApplicationUpdate* applicationUpdate, QWidget* parent = nullptr);

signals:
    void showAboutApp();

public slots:
    void onApplicationUpdateStatusChanged(Velmora::Update::ApplicationUpdateStatus updateStatus, QString newestVersion);
    void onDownloadProgressChanged(double percentageCompleted, double speedInBytesPerSecond);

private:
    void buildForm();
    void refresh();

    ApplicationUpdateStatus status;
    QString newestVersion;

    Gui::ParamValueWidget* applicationVersion = nullptr;
    Gui::ParamValueWidget* availableVersion = nullptr;
    QWidget* downloadProgress = nullptr;
    Gui::ProgressBar* progressBar_download = nullptr;
    QLabel* label_speedCaption = nullptr;
    QLabel* label_speed = nullptr;
    QPushButton* pushButton_checkForUpdates = nullptr;
    QPushButton* pushButton_updateApplication = nullptr;
    QPushButton* pushButton_about = nullptr;
};

} // namespace Velmora::Update
