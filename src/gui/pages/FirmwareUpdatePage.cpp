#include "gui/pages/FirmwareUpdatePage.h"

#include "gui/pages/PageStyle.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/TitleLabel.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "update/FirmwareUpdate.h"

#include <QDate>
#include <QDesktopServices>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTime>
#include <QUrl>
#include <QVBoxLayout>

namespace Velmora::Gui {

namespace {

constexpr int NameWidth = 250;

ParamValueWidget* valueRow(const QString& objectName, const QString& caption, QWidget* parent)
{
    auto* row = new ParamValueWidget(parent);
    row->setObjectName(objectName);
    row->setName(caption);
    row->setNameWidth(NameWidth);
    return row;
}

const char* const Stylesheet = R"(
#label_analyzed { color: rgb(140, 150, 195); }
)";

} // namespace

FirmwareUpdatePage::FirmwareUpdatePage(Update::FirmwareUpdate* firmwareUpdate, System::System* system, QWidget* parent)
    : Page(parent)
    , system(system)
{
    buildForm();

    connect(pushButton_checkForUpdates, &QPushButton::clicked, firmwareUpdate, &Update::FirmwareUpdate::checkForUpdates);
    connect(firmwareUpdatePushButton, &QPushButton::clicked, this, &FirmwareUpdatePage::onFirmwareUpdatePushButtonClick);
    connect(firmwareUpdate, &Update::FirmwareUpdate::firmwareUpdateCheckFinished, this,
        &FirmwareUpdatePage::refreshFirmwareStatus);
    connect(system, &System::System::currentDriveChanged, this, &FirmwareUpdatePage::onCurrentDriveChanged);

    if (const System::Drive* drive = system->currentDrive())
        onCurrentDriveChanged(drive->id());
    refreshFirmwareStatus();
}

void FirmwareUpdatePage::buildForm()
{
    setObjectName(QStringLiteral("FirmwareUpdatePage"));
    setStyleSheet(PageStyle::stylesheet() + QString::fromUtf8(Stylesheet));

    titleLabel = new TitleLabel(tr("FIRMWARE UPDATE"), this);
    titleLabel->setObjectName(QStringLiteral("titleLabel"));

    QFrame* statusPanel = PageStyle::panel(QStringLiteral("statusPanel"), this);
    driveModel = valueRow(QStringLiteral("driveModel"), tr("SSD MODEL:"), statusPanel);
    currentFVersion = valueRow(QStringLiteral("currentFVersion"), tr("FIRMWARE VERSION:"), statusPanel);
    newestFVersion = valueRow(QStringLiteral("newestFVersion"), tr("AVAILABLE UPDATES:"), statusPanel);

    label_analyzed = new QLabel(tr("ANALYZED:"), statusPanel);
    label_analyzed->setObjectName(QStringLiteral("label_analyzed"));
    label_analyzed->setMinimumWidth(NameWidth);
    label_analyzedTime = new QLabel(statusPanel);
    label_analyzedTime->setObjectName(QStringLiteral("label_analyzedTime"));
    auto* analyzedLayout = new QHBoxLayout;
    analyzedLayout->setContentsMargins(0, 0, 0, 0);
    // Lined up with the value column of the rows above.
    analyzedLayout->setSpacing(driveModel->layout()->spacing());
    analyzedLayout->addWidget(label_analyzed);
    analyzedLayout->addWidget(label_analyzedTime, 1);

    auto* statusLayout = new QVBoxLayout(statusPanel);
    statusLayout->setContentsMargins(24, 20, 24, 20);
    statusLayout->setSpacing(16);
    statusLayout->addWidget(driveModel);
    statusLayout->addWidget(currentFVersion);
    statusLayout->addWidget(newestFVersion);
    statusLayout->addLayout(analyzedLayout);

    pushButton_checkForUpdates = new QPushButton(tr("CHECK FOR UPDATES"), this);
    pushButton_checkForUpdates->setObjectName(QStringLiteral("pushButton_checkForUpdates"));
    firmwareUpdatePushButton = new QPushButton(tr("UPDATE FIRMWARE"), this);
    firmwareUpdatePushButton->setObjectName(QStringLiteral("firmwareUpdatePushButton"));
    for (QPushButton* button : {pushButton_checkForUpdates, firmwareUpdatePushButton}) {
        button->setMinimumWidth(220);
        button->setCursor(Qt::PointingHandCursor);
    }
    PageStyle::markPrimary(firmwareUpdatePushButton);
    auto* buttonLayout = new QHBoxLayout;
    buttonLayout->setSpacing(16);
    buttonLayout->addStretch(1);
    buttonLayout->addWidget(pushButton_checkForUpdates);
    buttonLayout->addWidget(firmwareUpdatePushButton);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 32, 40, 32);
    layout->setSpacing(24);
    layout->addWidget(titleLabel);
    layout->addWidget(statusPanel);
    layout->addStretch(1);
    layout->addLayout(buttonLayout);
}

QString FirmwareUpdatePage::analysisTime()
{
    return QDate::currentDate().toString(Qt::ISODate) + QLatin1Char(' ') + QTime::currentTime().toString();
}

void FirmwareUpdatePage::onCurrentDriveChanged(int id)
{
    disconnect(driveConnection);
    if (System::Drive* drive = system->drive(id))
        driveConnection = connect(drive, &System::Drive::dataChanged, this, &FirmwareUpdatePage::refreshFirmwareStatus);
    refreshFirmwareStatus();
}

void FirmwareUpdatePage::refreshFirmwareStatus()
{
    const QString noUpdates = tr("NO AVAILABLE UPDATES");
    const QString noData = tr("NO DATA");

    const System::Drive* drive = system->currentDrive();
    if (!drive) {
        const QString notAvailable = tr("NOT AVAILABLE");
        driveModel->setValue(notAvailable);
        currentFVersion->setValue(notAvailable);
        newestFVersion->setValue(noUpdates);
        firmwareUpdatePushButton->setEnabled(false);
        label_analyzedTime->setText(noData);
        return;
    }

    driveModel->setValue(drive->model());
    currentFVersion->setValue(drive->firmwareVersion());
    firmwareUpdatePushButton->setEnabled(false);
    firmwareUrl = drive->newestFirmwareUrl();

    const QString newest = drive->newestFirmwareVersion();
    if (!newest.isEmpty()) {
        newestFVersion->setValue(newest);
        label_analyzedTime->setText(analysisTime());
        // Only a version other than the installed one, with a page to get it from, is an update.
        if (drive->firmwareVersion() == newest || firmwareUrl.isEmpty())
            return;
        firmwareUpdatePushButton->setEnabled(true);
    } else if (!System::SupportedDrivesManager::isSupportedDrive(*drive)) {
        // Other makers' drives are never asked about: there is nothing more to wait for.
        newestFVersion->setValue(noUpdates);
        label_analyzedTime->setText(analysisTime());
    } else {
        // One of the maker's drives that the back-end has not answered for yet.
        label_analyzedTime->setText(noData);
        newestFVersion->setValue(noUpdates);
    }
}

void FirmwareUpdatePage::onFirmwareUpdatePushButtonClick()
{
    if (firmwareUrl.isEmpty())
        return;
    QDesktopServices::openUrl(QUrl(firmwareUrl));
}

} // namespace Velmora::Gui
