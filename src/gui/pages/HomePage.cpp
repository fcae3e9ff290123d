#include "gui/pages/HomePage.h"

#include "gui/widgets/TitleLabel.h"
#include "migration/widgets/DriveWidget.h"
#include "system/Drive.h"
#include "system/System.h"

#include <QComboBox>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace Velmora::Gui {

namespace {

const char* const Stylesheet = R"(
#HomePage { background-color: rgb(0, 10, 50); }
#titleLabel { font: 28px "Inter UI Black"; }
#label_welcome { color: rgb(140, 150, 195); font: 15px "Inter UI"; }
#label_noDrives { color: rgb(255, 255, 255); font: 15px "Inter UI Semi Bold"; }
#DriveSelectComboBox {
    background-color: rgb(0, 2, 63); color: rgb(255, 255, 255); border: 1px solid rgb(0, 36, 94);
    padding: 0 16px; font: 14px "Inter UI Semi Bold"; min-height: 44px; min-width: 420px;
}
#DriveSelectComboBox:hover { background-color: rgb(0, 34, 89); }
QScrollBar:vertical { background: rgb(0, 2, 63); width: 8px; margin: 0; }
QScrollBar::handle:vertical { background: rgb(91, 148, 198); min-height: 24px; }
QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }
#DriveSelectComboBox QAbstractItemView {
    background-color: rgb(0, 2, 63); color: rgb(255, 255, 255);
    selection-background-color: rgb(0, 36, 94); outline: none;
}
)";

// The first entry of the list stands for "nothing chosen yet".
constexpr int PlaceholderData = -1;
constexpr int DriveBarWidth = 720;

} // namespace

HomePage::HomePage(Velmora::System::System* system, QWidget* parent)
    : Page(parent)
    , system(system)
{
    setObjectName(QStringLiteral("HomePage"));
    setStyleSheet(QString::fromUtf8(Stylesheet));
    buildForm();

    for (int id : system->driveIds())
        onDriveAdded(id);

    connect(system, &System::System::driveAdded, this, &HomePage::onDriveAdded);
    connect(system, &System::System::driveRemoved, this, &HomePage::onDriveRemoved);
    connect(DriveSelectComboBox, qOverload<int>(&QComboBox::currentIndexChanged), this,
        &HomePage::on_DriveSelectComboBox_currentIndexChanged);
}

void HomePage::buildForm()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 48, 48, 48);
    layout->setSpacing(20);
    layout->addStretch(2);

    auto* title = new TitleLabel(tr("WELCOME"), this);
    title->setObjectName(QStringLiteral("titleLabel"));
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);

    auto* welcome = new QLabel(tr("SELECT THE DRIVE YOU WANT TO LOOK AFTER."), this);
    welcome->setObjectName(QStringLiteral("label_welcome"));
    welcome->setAlignment(Qt::AlignCenter);
    layout->addWidget(welcome);

    label_noDrives = new QLabel(tr("SEARCHING FOR DRIVES..."), this);
    label_noDrives->setObjectName(QStringLiteral("label_noDrives"));
    label_noDrives->setAlignment(Qt::AlignCenter);
    layout->addWidget(label_noDrives);

    DriveSelectComboBox = new QComboBox(this);
    DriveSelectComboBox->setObjectName(QStringLiteral("DriveSelectComboBox"));
    DriveSelectComboBox->hide();
    layout->addWidget(DriveSelectComboBox, 0, Qt::AlignHCenter);

    // A machine with many drives scrolls their bars rather than growing the page past the window.
    driveBarArea = new QScrollArea(this);
    driveBarArea->setObjectName(QStringLiteral("driveBarArea"));
    driveBarArea->setFrameShape(QFrame::NoFrame);
    driveBarArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    driveBarArea->setWidgetResizable(true);
    driveBarArea->viewport()->setAutoFillBackground(false);
    auto* driveBars = new QWidget(driveBarArea);
    driveBars->setFixedWidth(DriveBarWidth);
    layout_driveBars = new QVBoxLayout(driveBars);
    layout_driveBars->setContentsMargins(0, 0, 0, 0);
    layout_driveBars->setSpacing(12);
    layout_driveBars->addStretch();
    driveBarArea->setWidget(driveBars);
    driveBars->setAutoFillBackground(false);
    driveBarArea->setFixedWidth(DriveBarWidth + driveBarArea->verticalScrollBar()->sizeHint().width());
    driveBarArea->setMaximumHeight(0);
    // Before the spacers get any of the height, the bars get what they need.
    layout->addWidget(driveBarArea, 10, Qt::AlignHCenter);
    layout->addStretch(3);
}

void HomePage::onDriveAdded(int driveId)
{
    // The box is hidden until the first drive comes. Its first entry waits for it too: with an
    // entry, the box lays out its list, font and all, before the window can be shown.
    if (DriveSelectComboBox->count() == 0) {
        DriveSelectComboBox->addItem(tr("CHOOSE YOUR DRIVE"), PlaceholderData);
        DriveSelectComboBox->setCurrentIndex(0);
    }
    System::Drive* drive = system->drive(driveId);
    // Drives behind USB are not looked after; the main window's drive box leaves them out as well.
    if (drive && !drive->isUsb()) {
        DriveSelectComboBox->addItem(drive->displayText(true), driveId);
        addDriveBar(drive);
    }
    DriveSelectComboBox->show();
    label_noDrives->hide();
}

void HomePage::addDriveBar(System::Drive* drive)
{
    auto* bar = new System::DriveWidget(layout_driveBars->parentWidget());
    bar->setCursor(Qt::PointingHandCursor);
    // An empty drive would otherwise show an empty bar.
    bar->setShowFreeSpace(true);
    bar->setDrive(drive);
    const int driveId = drive->id();
    connect(bar, &System::DriveWidget::clicked, this, [this, driveId] { onDriveBarClicked(driveId); });
    delete driveBars.take(driveId);
    driveBars.insert(driveId, bar);
    // Above the stretch that keeps the bars together at the top.
    layout_driveBars->insertWidget(layout_driveBars->count() - 1, bar);
    // Shown now, not at the next turn of the loop, so that the area's height counts it.
    bar->show();
    fitDriveBarArea();
}

void HomePage::fitDriveBarArea()
{
    // The area grows with the page up to the height of all bars, and scrolls when the page is
    // lower than that, down to two bars.
    const int allBars = layout_driveBars->sizeHint().height();
    driveBarArea->setMaximumHeight(allBars);
    driveBarArea->setMinimumHeight(qMin(allBars, 2 * System::DriveWidget::FixedHeight + layout_driveBars->spacing()));
}

void HomePage::onDriveBarClicked(int driveId)
{
    const int index = DriveSelectComboBox->findData(driveId);
    if (index < 0)
        return;
    // Chosen here, the drive is shown even when the list already names it.
    {
        const QSignalBlocker blocker(DriveSelectComboBox);
        DriveSelectComboBox->setCurrentIndex(index);
    }
    emit changeCurrentDrive(driveId);
}

void HomePage::onDriveRemoved(int driveId)
{
    delete driveBars.take(driveId);
    fitDriveBarArea();
    const int index = DriveSelectComboBox->findData(driveId);
    if (index < 0)
        return;
    const QSignalBlocker blocker(DriveSelectComboBox);
    DriveSelectComboBox->removeItem(index);
}

void HomePage::on_DriveSelectComboBox_currentIndexChanged(int)
{
    const int driveId = DriveSelectComboBox->currentData().toInt();
    if (driveId >= 0)
        emit changeCurrentDrive(driveId);
}

} // namespace Velmora::Gui
