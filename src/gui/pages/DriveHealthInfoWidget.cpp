#include "gui/pages/DriveHealthInfoWidget.h"

#include "gui/pages/StatusLed.h"
#include "gui/widgets/TitleLabel.h"
#include "system/Drive.h"
#include "system/DriveHealthStatus.h"
#include "system/DriveIssue.h"
#include "system/System.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace Velmora::Gui {

using System::DriveIssueSeverity;
using System::DriveIssueType;

namespace {

const char* const Stylesheet = R"(
QDialog { background-color: rgb(0, 10, 50); }
QLabel { color: rgb(255, 255, 255); font: 14px "Inter UI Semi Bold"; }
#titleLabel { font: 22px "Inter UI Black"; }
QLabel[description="true"] { color: rgb(140, 150, 195); font: 13px "Inter UI"; }
#button_close {
    color: rgb(255, 255, 255); background-color: rgb(0, 36, 94); border: none;
    padding: 8px 28px; font: 13px "Inter UI Semi Bold";
}
#button_close:hover { background-color: rgb(0, 34, 89); }
)";

QLabel* newDescription(const QString& objectName, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setProperty("description", true);
    label->setWordWrap(true);
    return label;
}

QString ledFor(DriveIssueSeverity severity)
{
    switch (severity) {
    case System::OK: return StatusLed::Ok;
    case System::Good: return StatusLed::Good;
    default: return StatusLed::Bad;
    }
}

// The thresholds named here are those of the health rules; a change there must come here too.
QString describe(DriveIssueType type, DriveIssueSeverity severity)
{
    if (severity != System::ActionNeeded && severity != System::OK)
        return QString();
    const bool worst = severity == System::ActionNeeded;
    switch (type) {
    case System::FreeSpace:
        return worst ? DriveHealthInfoWidget::tr("LESS THAN 10% OF FREE DISK SPACE LEFT.")
                     : DriveHealthInfoWidget::tr("LESS THAN 20% OF FREE DISK SPACE LEFT.");
    case System::LifeRemaining:
        return worst ? DriveHealthInfoWidget::tr("LESS THAN 10% OF REMAINING DISK LIFE LEFT.")
                     : DriveHealthInfoWidget::tr("LESS THAN 70% OF REMAINING DISK LIFE LEFT.");
    case System::SATASpeedLimit:
        return DriveHealthInfoWidget::tr("DRIVE CAN WORK BETTER IF CONNECTED TO FASTER SATA CONTROLLER.");
    case System::FirmwareUpdate:
        return DriveHealthInfoWidget::tr("FIRMWARE UPDATE AVAILABLE FOR DRIVE.");
    default:
        return QString();
    }
}

} // namespace

DriveHealthInfoWidget::DriveHealthInfoWidget(Velmora::System::System* system, QWidget* parent)
    : QDialog(parent)
    , system(system)
{
    setObjectName(QStringLiteral("DriveHealthInfoWidget"));
    setWindowTitle(tr("DRIVE STATUS"));
    setStyleSheet(QString::fromUtf8(Stylesheet));
    buildForm();

    for (QLabel* description : {label_descFreeSpace, label_descLifeRemain, label_descBadSector, label_descSataSpeed,
             label_descFirmware})
        description->hide();
    for (QLabel* led : {FreeSpaceStatusLED, LifeRemainingStatusLED, BadSectorsStatusLED, SataSpeedStatusLED,
             FirmwareUpdateStatusLED})
        StatusLed::show(led, StatusLed::Good);

    connect(system, &System::System::currentDriveChanged, this, &DriveHealthInfoWidget::onCurrentDriveChanged);
    connect(button_close, &QPushButton::clicked, this, &QDialog::accept);
    // The dialog is made when first asked for, long after the drive was chosen.
    if (system->currentDrive())
        onCurrentDriveChanged(system->currentDriveId());
}

void DriveHealthInfoWidget::buildForm()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 28, 32, 24);
    layout->setSpacing(20);

    auto* title = new TitleLabel(tr("DRIVE STATUS"), this);
    title->setObjectName(QStringLiteral("titleLabel"));
    layout->addWidget(title);

    auto* rows = new QGridLayout;
    rows->setHorizontalSpacing(14);
    rows->setVerticalSpacing(4);
    rows->setColumnStretch(1, 1);
    layout->addLayout(rows);

    FreeSpaceStatusLED = StatusLed::create(QStringLiteral("FreeSpaceStatusLED"), this);
    label_descFreeSpace = newDescription(QStringLiteral("label_descFreeSpace"), this);
    addRow(rows, FreeSpaceStatusLED, tr("FREE SPACE"), label_descFreeSpace);
    LifeRemainingStatusLED = StatusLed::create(QStringLiteral("LifeRemainingStatusLED"), this);
    label_descLifeRemain = newDescription(QStringLiteral("label_descLifeRemain"), this);
    addRow(rows, LifeRemainingStatusLED, tr("LIFE REMAINING"), label_descLifeRemain);
    BadSectorsStatusLED = StatusLed::create(QStringLiteral("BadSectorsStatusLED"), this);
    label_descBadSector = newDescription(QStringLiteral("label_descBadSector"), this);
    addRow(rows, BadSectorsStatusLED, tr("BAD SECTORS"), label_descBadSector);
    SataSpeedStatusLED = StatusLed::create(QStringLiteral("SataSpeedStatusLED"), this);
    label_descSataSpeed = newDescription(QStringLiteral("label_descSataSpeed"), this);
    addRow(rows, SataSpeedStatusLED, tr("SATA SPEED"), label_descSataSpeed);
    FirmwareUpdateStatusLED = StatusLed::create(QStringLiteral("FirmwareUpdateStatusLED"), this);
    label_descFirmware = newDescription(QStringLiteral("label_descFirmware"), this);
    addRow(rows, FirmwareUpdateStatusLED, tr("FIRMWARE UPDATE"), label_descFirmware);

    button_close = new QPushButton(tr("CLOSE"), this);
    button_close->setObjectName(QStringLiteral("button_close"));
    button_close->setCursor(Qt::PointingHandCursor);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(button_close);
    layout->addLayout(buttons);

    setMinimumWidth(520);
}

void DriveHealthInfoWidget::addRow(QGridLayout* layout, QLabel* led, const QString& caption, QLabel* description)
{
    const int row = layout->rowCount();
    auto* name = new QLabel(caption, this);
    // The row's name takes the name of its lamp, so that a row can be found by either.
    name->setObjectName(led->objectName() + QStringLiteral("_name"));
    layout->addWidget(led, row, 0, Qt::AlignTop);
    layout->addWidget(name, row, 1);
    layout->addWidget(description, row + 1, 1);
    layout->setRowMinimumHeight(row + 2, 8);
}

void DriveHealthInfoWidget::onCurrentDriveChanged(int id)
{
    disconnect(driveConnection);
    if (System::Drive* drive = system->drive(id)) {
        driveConnection = connect(drive->healthStatus(), &System::DriveHealthStatus::issueSeverityChanged, this,
            &DriveHealthInfoWidget::refreshDriveStatus);
    }
    refreshDriveStatus();
}

void DriveHealthInfoWidget::refreshDriveStatus()
{
    if (!system->currentDrive())
        return;
    // Bad sectors have no rule of their own: their row keeps the look it was built with.
    showIssue(System::FreeSpace, FreeSpaceStatusLED, label_descFreeSpace);
    showIssue(System::LifeRemaining, LifeRemainingStatusLED, label_descLifeRemain);
    showIssue(System::SATASpeedLimit, SataSpeedStatusLED, label_descSataSpeed);
    showIssue(System::FirmwareUpdate, FirmwareUpdateStatusLED, label_descFirmware);
}

void DriveHealthInfoWidget::showIssue(DriveIssueType type, QLabel* led, QLabel* description)
{
    const System::DriveIssue* issue = system->currentDrive()->healthStatus()->issue(type);
    const DriveIssueSeverity severity = issue ? issue->severity() : System::Good;
    StatusLed::show(led, ledFor(severity));
    const QString text = describe(type, severity);
    description->setText(text);
    description->setVisible(!text.isEmpty());
}

} // namespace Velmora::Gui
