#include "update/UpdateSettingsWidget.h"

#include "gui/pages/PageStyle.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/ProgressBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace Velmora::Update {

namespace {
constexpr int NameWidth = 220;
}

UpdateSettingsWidget::UpdateSettingsWidget(ApplicationUpdate* applicationUpdate, QWidget* parent)
    : QWidget(parent)
    , status(applicationUpdate->status())
    , newestVersion(applicationUpdate->newestVersion())
{
    buildForm();

    connect(pushButton_checkForUpdates, &QPushButton::clicked, applicationUpdate, &ApplicationUpdate::checkForUpdates);
    connect(pushButton_updateApplication, &QPushButton::clicked, applicationUpdate,
        &ApplicationUpdate::onUpdateApplicationRequest);
    connect(pushButton_about, &QPushButton::clicked, this, &UpdateSettingsWidget::showAboutApp);
    connect(applicationUpdate, &ApplicationUpdate::applicationUpdateStatusChanged, this,
        &UpdateSettingsWidget::onApplicationUpdateStatusChanged);
    connect(applicationUpdate, &ApplicationUpdate::downloadProgressChanged, this,
        &UpdateSettingsWidget::onDownloadProgressChanged);
    refresh();
}

void UpdateSettingsWidget::buildForm()
{
    setObjectName(QStringLiteral("UpdateSettingsWidget"));
    applicationVersion = new Gui::ParamValueWidget(this);
    applicationVersion->setObjectName(QStringLiteral("applicationVersion"));
    applicationVersion->setName(tr("APPLICATION VERSION:"));
    applicationVersion->setValue(QString::fromLatin1(ApplicationUpdate::ApplicationVersion));
    availableVersion = new Gui::ParamValueWidget(this);
    availableVersion->setObjectName(QStringLiteral("availableVersion"));
    availableVersion->setName(tr("AVAILABLE VERSION:"));
    for (Gui::ParamValueWidget* row : { applicationVersion, availableVersion })
        row->setNameWidth(NameWidth);

    downloadProgress = new QWidget(this);
    downloadProgress->setObjectName(QStringLiteral("downloadProgress"));
    progressBar_download = new Gui::ProgressBar(downloadProgress);
    progressBar_download->setObjectName(QStringLiteral("progressBar_download"));
    progressBar_download->setRange(0, 100);
    progressBar_download->setTextVisible(false);
    progressBar_download->setFixedHeight(16);
    label_speedCaption = new QLabel(tr("SPEED:"), downloadProgress);
    label_speedCaption->setObjectName(QStringLiteral("label_speedCaption"));
    label_speed = new QLabel(downloadProgress);
    label_speed->setObjectName(QStringLiteral("label_speed"));
    label_speed->setMinimumWidth(110);
    auto* progressLayout = new QHBoxLayout(downloadProgress);
    progressLayout->setContentsMargins(0, 0, 0, 0);
    progressLayout->setSpacing(12);
    progressLayout->addWidget(progressBar_download, 1);
    progressLayout->addWidget(label_speedCaption);
    progressLayout->addWidget(label_speed);

    pushButton_checkForUpdates = new QPushButton(tr("CHECK FOR UPDATES"), this);
    pushButton_checkForUpdates->setObjectName(QStringLiteral("pushButton_checkForUpdates"));
    pushButton_updateApplication = new QPushButton(this);
    pushButton_updateApplication->setObjectName(QStringLiteral("pushButton_updateApplication"));
    pushButton_about = new QPushButton(tr("ABOUT"), this);
    pushButton_about->setObjectName(QStringLiteral("pushButton_about"));
    Gui::PageStyle::markPrimary(pushButton_updateApplication);
    auto* buttonLayout = new QHBoxLayout;
    buttonLayout->setSpacing(16);
    for (QPushButton* button : { pushButton_checkForUpdates, pushButton_updateApplication, pushButton_about })
        button->setCursor(Qt::PointingHandCursor);
    buttonLayout->addWidget(pushButton_checkForUpdates);
    buttonLayout->addWidget(pushButton_updateApplication);
    buttonLayout->addStretch(1);
    buttonLayout->addWidget(pushButton_about);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(16);
    layout->addWidget(applicationVersion);
    layout->addWidget(availableVersion);
    layout->addWidget(downloadProgress);
    layout->addLayout(buttonLayout);
}

void UpdateSettingsWidget::onApplicationUpdateStatusChanged(ApplicationUpdateStatus updateStatus, QString version)
{
    status = updateStatus;
    newestVersion = version;
    refresh();
}

void UpdateSettingsWidget::onDownloadProgressChanged(double percentageCompleted, double speedInBytesPerSecond)
{
    progressBar_download->setValue(qBound(0, qRound(percentageCompleted), 100));
    label_speed->setText(tr("%1 MB/s").arg(QString::number(speedInBytesPerSecond / 1024 / 1024, 'f', 2)));
}

void UpdateSettingsWidget::refresh()
{
    QString text;
    switch (status) {
    case UpdateAvailable:
    case InstallerStarted:
        text = newestVersion;
        break;
    case UpToDate:
        text = tr("NO UPDATES AVAILABLE");
        break;
    case CheckFailed:
    case Unknown:
        text = tr("DATA NOT AVAILABLE");
        break;
    case Downloading:
        text = tr("DOWNLOADING UPDATE");
        break;
    case DownloadFailed:
        text = tr("UPDATE FAILED, PLEASE RETRY");
        break;
    case Checking:
        text = tr("COLLECTING DATA");
        break;
    }
    availableVersion->setValue(text);

    const bool downloading = status == Downloading;
    if (downloading) {
        // A new download starts from nothing, not from where the last one ended.
        onDownloadProgressChanged(0.0, 0.0);
    }
    downloadProgress->setVisible(downloading);

    // The update can be asked for exactly where the updater would act on the request.
    pushButton_updateApplication->setVisible(status == UpdateAvailable || status == DownloadFailed
        || status == InstallerStarted);
    pushButton_updateApplication->setText(status == InstallerStarted ? tr("RESTART UPDATE DOWNLOAD")
                                                                     : tr("UPDATE APPLICATION"));
    // Another check now would only end the progress display of the running download, or repeat the
    // request under way.
    pushButton_checkForUpdates->setEnabled(status != Downloading && status != Checking);
}

} // namespace Velmora::Update
