// The widgets of the drive status page and their arrangement; what they show is the business of
// SSDStatusPage.cpp.
#include "gui/pages/SSDStatusPage.h"

#include "gui/pages/PageStyle.h"
#include "gui/pages/StatusLed.h"
#include "gui/widgets/GraphicsPieChart.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/RoundProgressBar.h"
#include "gui/widgets/TitleLabel.h"

#include <QFrame>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace Velmora::Gui {

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

ParamValueWidget* newParamValue(const QString& objectName, const QString& name, QWidget* parent)
{
    auto* widget = new ParamValueWidget(parent);
    widget->setObjectName(objectName);
    widget->setName(name);
    widget->setNameWidth(NameWidth);
    return widget;
}

} // namespace

void SSDStatusPage::buildForm()
{
    setObjectName(QStringLiteral("SSDStatusPage"));
    setStyleSheet(QString::fromUtf8(Stylesheet));

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

    resetStatusGroups();
}

QWidget* SSDStatusPage::buildStatusColumn()
{
    auto* panel = new QFrame(this);
    panel->setObjectName(QStringLiteral("statusPanel"));
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(8);
    // At least 360 wide, and wider where its texts need it: a minimum width set on the panel would
    // cut a long caption or value instead.
    layout->addStrut(360 - 2 * 24);

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
    label_driveStatusActionNeeded = PageStyle::label(QStringLiteral("label_driveStatusActionNeeded"), tr("ACTION NEEDED"), panel);
    button_driveStatusActionNeeded = PageStyle::button(QStringLiteral("button_driveStatusActionNeeded"), tr("DETAILS"), panel);
    led_driveStatusOk = StatusLed::create(QStringLiteral("led_driveStatusOk"), panel);
    label_driveStatusOk = PageStyle::label(QStringLiteral("label_driveStatusOk"), tr("OK"), panel);
    button_driveStatusOk = PageStyle::button(QStringLiteral("button_driveStatusOk"), tr("DETAILS"), panel);
    led_driveStatusGood = StatusLed::create(QStringLiteral("led_driveStatusGood"), panel);
    label_driveStatusGood = PageStyle::label(QStringLiteral("label_driveStatusGood"), tr("GOOD"), panel);
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
        PageStyle::label(QStringLiteral("label_firmwareStatusActionNeeded"), tr("UPDATE AVAILABLE"), panel);
    button_frimwareStatusDetails = PageStyle::button(QStringLiteral("button_frimwareStatusDetails"), tr("DETAILS"), panel);
    led_firmwareStatusGood = StatusLed::create(QStringLiteral("led_firmwareStatusGood"), panel);
    label_firmwareStatusGood = PageStyle::label(QStringLiteral("label_firmwareStatusGood"), tr("UP TO DATE"), panel);
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

    label_analyzed = PageStyle::label(QStringLiteral("label_analyzed"), tr("ANALYZED:"), panel);
    reload_button = PageStyle::button(QStringLiteral("reload_button"), tr("RELOAD"), panel);
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
    auto* captionLabel = PageStyle::label(QStringLiteral("label_") + objectName, caption, owner);
    captionLabel->setMinimumWidth(NameWidth);
    row->addWidget(captionLabel);
    row->addWidget(yesLed);
    row->addWidget(PageStyle::label(QStringLiteral("label_") + objectName + QStringLiteral("Yes"), tr("YES"), owner));
    row->addSpacing(16);
    row->addWidget(noLed);
    row->addWidget(PageStyle::label(QStringLiteral("label_") + objectName + QStringLiteral("No"), tr("NO"), owner));
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

} // namespace Velmora::Gui
