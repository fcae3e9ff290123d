#include "gui/pages/SSDStatusPage.h"

#include "gui/pages/DriveHealthInfoWidget.h"
#include "gui/pages/StatusLed.h"
#include "gui/widgets/GraphicsPieChart.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/RoundProgressBar.h"
#include "gui/widgets/TitleLabel.h"
#include "system/Bytes.h"
#include "system/Drive.h"
#include "system/DriveHealthStatus.h"
#include "system/DriveIssue.h"
#include "system/FileCategories.h"
#include "system/System.h"

#include <QFrame>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace Velmora::Gui {

using System::FileCategories;
namespace FileCategoryStatus = System::FileCategoryStatus;

namespace {

const char* const Stylesheet = R"(
#SSDStatusPage { background-color: rgb(0, 10, 50); }
#statusPanel, #chartsPanel { background-color: rgb(0, 36, 94); border-radius: 8px; }
QLabel { color: rgb(255, 255, 255); font: 13px "Inter UI"; }
QLabel:disabled { color: rgb(72, 88, 140); }
#titleLabel { font: 28px "Inter UI Black"; }
#label_trim, #label_ahci { color: rgb(140, 150, 195); }
#label_analyzed { color: rgb(140, 150, 195); }
QPushButton {
    color: rgb(255, 255, 255); background-color: rgb(0, 10, 50); border: 1px solid rgb(0, 225, 255);
    border-radius: 4px; padding: 4px 14px; font: 12px "Inter UI Semi Bold";
}
QPushButton:hover { background-color: rgb(0, 34, 89); }
QPushButton:disabled { color: rgb(90, 104, 150); border-color: rgb(50, 66, 120); }
QGraphicsView { background: transparent; border: none; }
)";

const char* const LegendStylesheet = "QLabel {\n\tfont: 13px \"Inter UI\";\n}";

// Both charts are drawn for a scene of this side; the view leaves room around it for the
// outline of the outermost slice.
constexpr int ChartSide = 250;
constexpr int ChartMargin = 6;
constexpr int NameWidth = 150;

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

QLabel* newLabel(const QString& objectName, const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(objectName);
    return label;
}

QPushButton* newButton(const QString& objectName, const QString& text, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

ParamValueWidget* newParamValue(const QString& objectName, const QString& name, QWidget* parent)
{
    auto* widget = new ParamValueWidget(parent);
    widget->setObjectName(objectName);
    widget->setName(name);
    widget->setNameWidth(NameWidth);
    return widget;
}

} // namespace

SSDStatusPage::SSDStatusPage(Velmora::System::System* system, QWidget* parent)
    : Page(parent)
    , system(system)
{
    setObjectName(QStringLiteral("SSDStatusPage"));
    setStyleSheet(QString::fromUtf8(Stylesheet));
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

void SSDStatusPage::buildForm()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(20);

    titleLabel = new TitleLabel(tr("MY SSD"), this);
    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    layout->addWidget(titleLabel);

    auto* columns = new QHBoxLayout;
    columns->setSpacing(20);
    columns->addWidget(buildStatusColumn(), 0, Qt::AlignTop);
    columns->addWidget(buildChartsColumn(), 1, Qt::AlignTop);
    layout->addLayout(columns);
    layout->addStretch(1);

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

QWidget* SSDStatusPage::buildStatusColumn()
{
    auto* panel = new QFrame(this);
    panel->setObjectName(QStringLiteral("statusPanel"));
    panel->setMinimumWidth(360);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(8);

    DriveModel = newParamValue(QStringLiteral("DriveModel"), tr("SSD MODEL:"), panel);
    DriveCapacity = newParamValue(QStringLiteral("DriveCapacity"), tr("CAPACITY:"), panel);
    DriveSN = newParamValue(QStringLiteral("DriveSN"), tr("SERIAL NUMBER:"), panel);
    DriveFirmware = newParamValue(QStringLiteral("DriveFirmware"), tr("FIRMWARE:"), panel);
    for (ParamValueWidget* row : {DriveModel, DriveCapacity, DriveSN, DriveFirmware})
        layout->addWidget(row);
    layout->addSpacing(18);

    DriveStatus = newParamValue(QStringLiteral("DriveStatus"), tr("DRIVE STATUS:"), panel);
    layout->addWidget(DriveStatus);
    led_driveStatusActionNeeded = StatusLed::create(QStringLiteral("led_driveStatusActionNeeded"), panel);
    label_driveStatusActionNeeded = newLabel(QStringLiteral("label_driveStatusActionNeeded"), tr("ACTION NEEDED"), panel);
    button_driveStatusActionNeeded = newButton(QStringLiteral("button_driveStatusActionNeeded"), tr("DETAILS"), panel);
    led_driveStatusOk = StatusLed::create(QStringLiteral("led_driveStatusOk"), panel);
    label_driveStatusOk = newLabel(QStringLiteral("label_driveStatusOk"), tr("OK"), panel);
    button_driveStatusOk = newButton(QStringLiteral("button_driveStatusOk"), tr("DETAILS"), panel);
    led_driveStatusGood = StatusLed::create(QStringLiteral("led_driveStatusGood"), panel);
    label_driveStatusGood = newLabel(QStringLiteral("label_driveStatusGood"), tr("GOOD"), panel);
    layout_driveStatus = new QVBoxLayout;
    layout_driveStatus->setObjectName(QStringLiteral("layout_driveStatus"));
    layout_driveStatus->setContentsMargins(NameWidth / 3, 0, 0, 0);
    layout_driveStatus->addLayout(ledRow(led_driveStatusActionNeeded, label_driveStatusActionNeeded,
        button_driveStatusActionNeeded));
    layout_driveStatus->addLayout(ledRow(led_driveStatusOk, label_driveStatusOk, button_driveStatusOk));
    layout_driveStatus->addLayout(ledRow(led_driveStatusGood, label_driveStatusGood));
    layout->addLayout(layout_driveStatus);
    layout->addSpacing(12);

    FirmwareStatus = newParamValue(QStringLiteral("FirmwareStatus"), tr("FIRMWARE STATUS:"), panel);
    layout->addWidget(FirmwareStatus);
    led_firmwareStatusActionNeeded = StatusLed::create(QStringLiteral("led_firmwareStatusActionNeeded"), panel);
    label_firmwareStatusActionNeeded =
        newLabel(QStringLiteral("label_firmwareStatusActionNeeded"), tr("UPDATE AVAILABLE"), panel);
    button_frimwareStatusDetails = newButton(QStringLiteral("button_frimwareStatusDetails"), tr("DETAILS"), panel);
    led_firmwareStatusGood = StatusLed::create(QStringLiteral("led_firmwareStatusGood"), panel);
    label_firmwareStatusGood = newLabel(QStringLiteral("label_firmwareStatusGood"), tr("UP TO DATE"), panel);
    layout_firmwareStatus = new QVBoxLayout;
    layout_firmwareStatus->setObjectName(QStringLiteral("layout_firmwareStatus"));
    layout_firmwareStatus->setContentsMargins(NameWidth / 3, 0, 0, 0);
    layout_firmwareStatus->addLayout(ledRow(led_firmwareStatusActionNeeded, label_firmwareStatusActionNeeded,
        button_frimwareStatusDetails));
    layout_firmwareStatus->addLayout(ledRow(led_firmwareStatusGood, label_firmwareStatusGood));
    layout->addLayout(layout_firmwareStatus);
    layout->addSpacing(18);

    led_trimYes = StatusLed::create(QStringLiteral("led_trimYes"), panel);
    led_trimNo = StatusLed::create(QStringLiteral("led_trimNo"), panel);
    layout->addLayout(yesNoRow(QStringLiteral("trim"), tr("TRIM SUPPORT:"), led_trimYes, led_trimNo));
    led_ahciYes = StatusLed::create(QStringLiteral("led_ahciYes"), panel);
    led_ahciNo = StatusLed::create(QStringLiteral("led_ahciNo"), panel);
    layout->addLayout(yesNoRow(QStringLiteral("ahci"), tr("AHCI SUPPORT:"), led_ahciYes, led_ahciNo));
    return panel;
}

QWidget* SSDStatusPage::buildChartsColumn()
{
    auto* panel = new QFrame(this);
    panel->setObjectName(QStringLiteral("chartsPanel"));
    auto* layout = new QGridLayout(panel);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->setHorizontalSpacing(12);
    layout->setVerticalSpacing(12);

    driveSpaceChartView = chartView(QStringLiteral("driveSpaceChartView"));
    driveSpaceChart = new RoundProgressBar(QRectF(0, 0, ChartSide, ChartSide));
    driveSpaceChartView->scene()->addItem(driveSpaceChart);
    fileTypesChartView = chartView(QStringLiteral("fileTypesChartView"));
    fileTypesChart = new GraphicsPieChart(QRectF(0, 0, ChartSide, ChartSide));
    fileTypesChartView->scene()->addItem(fileTypesChart);

    fileCategories = new QWidget(panel);
    fileCategories->setObjectName(QStringLiteral("fileCategories"));
    fileCategories->setStyleSheet(QString::fromLatin1(LegendStylesheet));
    auto* legendLayout = new QVBoxLayout(fileCategories);
    legendLayout->setContentsMargins(0, 0, 0, 0);
    legendLayout->setSpacing(6);
    legendLayout->addStretch(1);

    auto* storage = new QVBoxLayout;
    storage->setSpacing(6);
    pvWidget_totoalStorage = newParamValue(QStringLiteral("pvWidget_totoalStorage"), tr("TOTAL STORAGE:"), panel);
    pvWidget_usedStorage = newParamValue(QStringLiteral("pvWidget_usedStorage"), tr("USED STORAGE:"), panel);
    pvWidget_freeStorage = newParamValue(QStringLiteral("pvWidget_freeStorage"), tr("FREE STORAGE:"), panel);
    for (ParamValueWidget* row : {pvWidget_totoalStorage, pvWidget_usedStorage, pvWidget_freeStorage}) {
        row->setNameWidth(120);
        storage->addWidget(row);
    }

    label_analyzed = newLabel(QStringLiteral("label_analyzed"), tr("ANALYZED:"), panel);
    reload_button = newButton(QStringLiteral("reload_button"), tr("RELOAD"), panel);
    auto* analysis = new QHBoxLayout;
    analysis->addWidget(label_analyzed);
    analysis->addStretch(1);
    analysis->addWidget(reload_button);

    layout->addWidget(driveSpaceChartView, 0, 0, Qt::AlignCenter);
    layout->addWidget(fileTypesChartView, 0, 1, Qt::AlignCenter);
    layout->addWidget(fileCategories, 0, 2, Qt::AlignVCenter);
    layout->addLayout(storage, 1, 0, Qt::AlignTop);
    layout->addLayout(analysis, 1, 1, 1, 2, Qt::AlignTop);
    layout->setColumnStretch(2, 1);
    return panel;
}

QHBoxLayout* SSDStatusPage::ledRow(QLabel* led, QLabel* label, QPushButton* button)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(10);
    row->addWidget(led);
    row->addWidget(label);
    row->addStretch(1);
    if (button)
        row->addWidget(button);
    return row;
}

QHBoxLayout* SSDStatusPage::yesNoRow(const QString& objectName, const QString& caption, QLabel* yesLed, QLabel* noLed)
{
    auto* row = new QHBoxLayout;
    row->setObjectName(QStringLiteral("layout_") + objectName);
    row->setSpacing(8);
    QWidget* owner = yesLed->parentWidget();
    auto* captionLabel = newLabel(QStringLiteral("label_") + objectName, caption, owner);
    captionLabel->setMinimumWidth(NameWidth);
    row->addWidget(captionLabel);
    row->addWidget(yesLed);
    row->addWidget(newLabel(QStringLiteral("label_") + objectName + QStringLiteral("Yes"), tr("YES"), owner));
    row->addSpacing(16);
    row->addWidget(noLed);
    row->addWidget(newLabel(QStringLiteral("label_") + objectName + QStringLiteral("No"), tr("NO"), owner));
    row->addStretch(1);
    return row;
}

QGraphicsView* SSDStatusPage::chartView(const QString& objectName)
{
    auto* view = new QGraphicsView(this);
    view->setObjectName(objectName);
    view->setScene(new QGraphicsScene(0, 0, ChartSide, ChartSide, view));
    view->setFixedSize(ChartSide + 2 * ChartMargin, ChartSide + 2 * ChartMargin);
    view->setFrameShape(QFrame::NoFrame);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setRenderHint(QPainter::Antialiasing);
    view->setAlignment(Qt::AlignCenter);
    return view;
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
    shownScanStatus = -1;
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

    button_driveStatusActionNeeded->hide();
    button_driveStatusOk->hide();
    button_frimwareStatusDetails->hide();
    for (QLabel* label : {label_driveStatusActionNeeded, label_driveStatusOk, label_driveStatusGood,
             label_firmwareStatusActionNeeded, label_firmwareStatusGood})
        label->setEnabled(false);
    for (QLabel* led : {led_driveStatusActionNeeded, led_driveStatusOk, led_driveStatusGood,
             led_firmwareStatusActionNeeded, led_firmwareStatusGood})
        StatusLed::show(led, StatusLed::Inactive);

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

void SSDStatusPage::refreshSystemStatus()
{
    // The service reports TRIM and AHCI apart, but both rows follow TRIM: a working TRIM is what
    // the user is to see twice.
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
    const bool changed = status != shownScanStatus;
    shownScanStatus = status;
    if (status == FileCategoryStatus::Scanning)
        return;
    if (reloadPending) {
        // Every report of the service announces the sizes before the state: the first report of
        // the new scan arrives with the state of the old one, which must not end the reload.
        if (!changed)
            return;
        // And a scan cut short by RELOAD says goodbye before the new one starts.
        if (status == FileCategoryStatus::NotScanned && stoppedScanPending) {
            stoppedScanPending = false;
            return;
        }
        reloadPending = false;
        stoppedScanPending = false;
    }
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
