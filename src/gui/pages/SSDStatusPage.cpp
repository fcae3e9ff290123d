#include "gui/pages/SSDStatusPage.h"

#include "gui/pages/DriveHealthInfoWidget.h"
#include "gui/pages/StatusLed.h"
#include "gui/widgets/GraphicsPieChart.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/RoundProgressBar.h"
#include "system/Bytes.h"
#include "system/Drive.h"
#include "system/DriveHealthStatus.h"
#include "system/DriveIssue.h"
#include "system/FileCategories.h"
#include "system/System.h"

#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace Velmora::Gui {

using System::FileCategories;
namespace FileCategoryStatus = System::FileCategoryStatus;

namespace {

QString figureWithPercent(const System::Bytes& size, double percent)
{
    return QStringLiteral("%1 - %2%").arg(size.toString(), QString::number(percent, 'f', 2));
}

double shareOf(const System::Bytes& part, const System::Bytes& whole)
{
    if (whole.value() <= 0)
        return 0.0;
    return static_cast<double>(part.value()) / static_cast<double>(whole.value()) * 100.0;
}

} // namespace

SSDStatusPage::SSDStatusPage(Velmora::System::System* system, QWidget* parent)
    : Page(parent)
    , system(system)
{
    buildForm();

    connect(system, &System::System::currentDriveChanged, this, &SSDStatusPage::onCurrentDriveChanged);
    connect(system, &System::System::systemConfigurationChanged, this, &SSDStatusPage::refreshSystemStatus);
    connect(button_driveStatusActionNeeded, &QPushButton::clicked, this, &SSDStatusPage::onDriveHealthInfoButtonClicked);
    connect(button_driveStatusOk, &QPushButton::clicked, this, &SSDStatusPage::onDriveHealthInfoButtonClicked);
    connect(button_frimwareStatusDetails, &QPushButton::clicked, this,
        [this] { emit changePageRequest(Page::FirmwareUpdateId); });
    connect(reload_button, &QPushButton::clicked, this, &SSDStatusPage::on_reload_button_clicked);

    refreshSystemStatus();
    if (system->currentDrive())
        onCurrentDriveChanged();
}

void SSDStatusPage::createLegend()
{
    auto* legendLayout = static_cast<QVBoxLayout*>(fileCategories->layout());
    // Each row goes on top of the ones before, so that the list reads from category 0 down.
    for (int category = System::FileCategory::Other; category >= System::FileCategory::System; --category) {
        auto* row = new ParamValueWidget(fileCategories);
        row->setObjectName(QStringLiteral("category_%1").arg(category));
        row->setName(FileCategories::categoryName(category));
        row->setColor(FileCategories::categoryColor(category));
        row->setNameWidth(96);
        legendLayout->insertWidget(0, row);
        categoryLabels.insert(category, row);
    }
}

void SSDStatusPage::onCurrentDriveChanged()
{
    for (const QMetaObject::Connection& connection : qAsConst(driveConnections))
        disconnect(connection);
    driveConnections.clear();
    reloadPending = false;
    stoppedScanPending = false;

    if (System::Drive* drive = system->currentDrive()) {
        driveConnections << connect(drive->fileCategories(), &FileCategories::categoryDataChanged, this,
            &SSDStatusPage::updateFileCategories);
        driveConnections << connect(drive, &System::Drive::dataChanged, this, &SSDStatusPage::updateDriveInformation);
        driveConnections << connect(drive->healthStatus(), &System::DriveHealthStatus::optimizationStatusChanged, this,
            &SSDStatusPage::updateDriveInformation);
    }

    fileTypesChart->clear();
    for (ParamValueWidget* row : qAsConst(categoryLabels))
        row->setValue(tr("0.00 BYTES"));
    updateDriveInformation();
    updateFileCategories();
}

void SSDStatusPage::updateDriveInformation()
{
    const System::Drive* drive = system->currentDrive();
    if (!drive)
        return;

    driveSpaceChart->setValue(drive->usedPercent());

    DriveModel->setValue(drive->model());
    DriveSN->setValue(drive->serialNumber());
    DriveCapacity->setValue(drive->capacity().toString());
    DriveFirmware->setValue(drive->firmwareVersion());

    pvWidget_totoalStorage->setValue(QStringLiteral("%1").arg(drive->capacity().toString()));
    pvWidget_usedStorage->setValue(figureWithPercent(drive->used(), shareOf(drive->used(), drive->capacity())));
    pvWidget_freeStorage->setValue(figureWithPercent(drive->free(), shareOf(drive->free(), drive->capacity())));

    resetStatusGroups();

    const System::DriveHealthStatus* health = drive->healthStatus();
    showDriveStatus(health->overallSeverity());
    const System::DriveIssue* firmware = health->issue(System::FirmwareUpdate);
    showFirmwareStatus(firmware ? firmware->severity() : System::Good);
}

void SSDStatusPage::showDriveStatus(int severity)
{
    switch (severity) {
    case System::ActionNeeded:
        StatusLed::show(led_driveStatusActionNeeded, StatusLed::Bad);
        label_driveStatusActionNeeded->setEnabled(true);
        button_driveStatusActionNeeded->show();
        break;
    case System::OK:
        StatusLed::show(led_driveStatusOk, StatusLed::Ok);
        label_driveStatusOk->setEnabled(true);
        button_driveStatusOk->show();
        break;
    default:
        StatusLed::show(led_driveStatusGood, StatusLed::Good);
        label_driveStatusGood->setEnabled(true);
        break;
    }
}

void SSDStatusPage::showFirmwareStatus(int severity)
{
    if (severity > System::OK) {
        StatusLed::show(led_firmwareStatusGood, StatusLed::Good);
        label_firmwareStatusGood->setEnabled(true);
        return;
    }
    StatusLed::show(led_firmwareStatusActionNeeded, StatusLed::Bad);
    label_firmwareStatusActionNeeded->setEnabled(true);
    button_frimwareStatusDetails->show();
}

void SSDStatusPage::resetStatusGroups()
{
    button_driveStatusActionNeeded->hide();
    button_driveStatusOk->hide();
    button_frimwareStatusDetails->hide();
    for (QLabel* label : {label_driveStatusActionNeeded, label_driveStatusOk, label_driveStatusGood,
             label_firmwareStatusActionNeeded, label_firmwareStatusGood})
        label->setEnabled(false);
    for (QLabel* led : {led_driveStatusActionNeeded, led_driveStatusOk, led_driveStatusGood,
             led_firmwareStatusActionNeeded, led_firmwareStatusGood})
        StatusLed::show(led, StatusLed::Inactive);
}

void SSDStatusPage::refreshSystemStatus()
{
    // Both rows follow the TRIM flag alone and so never disagree; the AHCI flag stays unread on
    // purpose.
    const bool enabled = system->trimEnabled();
    const QString& yes = enabled ? StatusLed::Good : StatusLed::Inactive;
    const QString& no = enabled ? StatusLed::Inactive : StatusLed::Bad;
    StatusLed::show(led_trimYes, yes);
    StatusLed::show(led_ahciYes, yes);
    StatusLed::show(led_trimNo, no);
    StatusLed::show(led_ahciNo, no);
}

void SSDStatusPage::updateFileCategories()
{
    const System::Drive* drive = system->currentDrive();
    if (!drive)
        return;
    if (categoryLabels.isEmpty())
        createLegend();

    const FileCategories* categories = drive->fileCategories();
    const double total = static_cast<double>(categories->totalSize());
    GraphicsPieChart::Slices slices;
    for (int category : System::categories()) {
        const qint64 size = categories->size(category);
        GraphicsPieChart::Slice slice;
        slice.value = static_cast<double>(size);
        slice.label = FileCategories::categoryName(category);
        slice.percent = total > 0.0 ? static_cast<double>(size) / total * 100.0 : 0.0;
        slice.color = FileCategories::categoryColor(category);
        slices.insert(category, slice);
        categoryLabels.value(category)->setValue(figureWithPercent(System::Bytes(size), slice.percent));
    }
    fileTypesChart->setData(slices);

    QString timeText = tr("NO DATA");
    const int status = categories->status();
    if (status == FileCategoryStatus::Complete) {
        timeText = QLocale::system().toString(categories->timestamp(), QLocale::ShortFormat);
        fileTypesChart->hideProgress();
    } else {
        fileTypesChart->setProgress(categories->progress());
    }
    updateReloadButton(status);
    label_analyzed->setText(tr("ANALYZED: ") + QLatin1Char(' ') + timeText);
}

void SSDStatusPage::updateReloadButton(int status)
{
    if (!reloadPending) {
        if (status != FileCategoryStatus::Scanning)
            reload_button->setEnabled(true);
        return;
    }
    // A report of the service announces the sizes before the state, so the first report of the new
    // scan shows the state of the old one for a moment, and a single finished report changes no state
    // at all. Judge the report once it has been taken in whole.
    if (!reloadCheckQueued) {
        reloadCheckQueued = true;
        QTimer::singleShot(0, this, &SSDStatusPage::checkReloadFinished);
    }
}

void SSDStatusPage::checkReloadFinished()
{
    reloadCheckQueued = false;
    const System::Drive* drive = system->currentDrive();
    const int status = drive ? drive->fileCategories()->status() : FileCategoryStatus::NotScanned;
    if (!reloadPending || status == FileCategoryStatus::Scanning)
        return;
    // A scan cut short by RELOAD says goodbye before the new one starts.
    if (status == FileCategoryStatus::NotScanned && stoppedScanPending) {
        stoppedScanPending = false;
        return;
    }
    reloadPending = false;
    stoppedScanPending = false;
    reload_button->setEnabled(true);
}

void SSDStatusPage::on_reload_button_clicked()
{
    reload_button->setEnabled(false);
    if (System::Drive* drive = system->currentDrive()) {
        reloadPending = true;
        if (drive->fileCategories()->status() == FileCategoryStatus::Scanning) {
            drive->stopUpdatingFileCategories();
            stoppedScanPending = true;
        }
        drive->updateFileCategories();
    }
    system->refresh();
}

void SSDStatusPage::onDriveHealthInfoButtonClicked()
{
    if (!driveHealthInfo)
        driveHealthInfo = new DriveHealthInfoWidget(system, this);
    driveHealthInfo->setModal(true);
    driveHealthInfo->show();
    driveHealthInfo->raise();
    driveHealthInfo->activateWindow();
}

} // namespace Velmora::Gui
