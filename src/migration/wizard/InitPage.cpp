#include "migration/wizard/InitPage.h"

#include "migration/Migration.h"
#include "system/Drive.h"

#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace Velmora::Migration {

InitPage::InitPage(Migration* migration, QWidget* parent)
    : PageBase(PartitionSizePageId, tr("CHOOSE YOUR DRIVE"), parent, 1)
    , migration(migration)
{
    setObjectName(QStringLiteral("InitPage"));
    auto* layout = new QHBoxLayout(this);
    layout->setSpacing(24);
    layout->addWidget(buildColumn(QStringLiteral("driveFrom"), tr("MIGRATE FROM"), from));
    layout->addWidget(buildColumn(QStringLiteral("driveTo"), tr("MIGRATE TO"), to));

    connect(from.comboBox, qOverload<int>(&QComboBox::currentIndexChanged), this,
        &InitPage::on_driveFrom_comboBox_currentIndexChanged);
    connect(to.comboBox, qOverload<int>(&QComboBox::currentIndexChanged), this,
        &InitPage::on_driveTo_comboBox_currentIndexChanged);
    connect(this, &InitPage::sourceDriveSelected, migration, &Migration::setSourceDriveId);
    connect(this, &InitPage::desinationDriveSelected, migration, &Migration::setDestDriveId);
    connect(migration, &Migration::driveListChanged, this, &InitPage::onDriveListChanged);
    connect(migration, &Migration::sourceDriveChanged, this, &InitPage::updateMigrationData);
    connect(migration, &Migration::destinationDriveChanged, this, &InitPage::updateMigrationData);
    listRefresh.setSingleShot(true);
    listRefresh.setInterval(0);
    connect(&listRefresh, &QTimer::timeout, this, &InitPage::onDriveListChanged);
    onDriveListChanged();
}

QWidget* InitPage::buildColumn(const QString& name, const QString& caption, DriveColumn& column)
{
    auto* panel = new QFrame(this);
    panel->setObjectName(name + QStringLiteral("_panel"));
    auto* title = new QLabel(caption, panel);
    title->setObjectName(name + QStringLiteral("_caption"));
    column.comboBox = new QComboBox(panel);
    column.comboBox->setObjectName(name + QStringLiteral("_comboBox"));
    column.comboBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    column.comboBox->setMinimumContentsLength(24);
    column.drive = new QLabel(panel);
    column.drive->setObjectName(name + QStringLiteral("_drive"));
    column.drive->setWordWrap(true);
    column.storage = new QLabel(panel);
    column.storage->setObjectName(name + QStringLiteral("_storage"));
    column.occupied = new QLabel(panel);
    column.occupied->setObjectName(name + QStringLiteral("_occupied"));

    auto* values = new QFormLayout;
    values->setHorizontalSpacing(16);
    values->setVerticalSpacing(10);
    values->addRow(tr("DRIVE:"), column.drive);
    values->addRow(tr("DRIVE STORAGE:"), column.storage);
    values->addRow(tr("OCCUPIED SPACE:"), column.occupied);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->setSpacing(16);
    layout->addWidget(title);
    layout->addWidget(column.comboBox);
    layout->addLayout(values);
    layout->addStretch(1);
    return panel;
}

void InitPage::onDriveListChanged()
{
    const int sourceId = from.comboBox->currentData().isValid() ? from.comboBox->currentData().toInt() : -1;
    const int destinationId = to.comboBox->currentData().isValid() ? to.comboBox->currentData().toInt() : -1;
    fill(from.comboBox, migration->sourceDrives());
    fill(to.comboBox, migration->destinationDrives());
    // The model has already let go of a drive that left; the boxes only follow it.
    const QSignalBlocker blockFrom(from.comboBox);
    const QSignalBlocker blockTo(to.comboBox);
    from.comboBox->setCurrentIndex(qMax(0, from.comboBox->findData(sourceId)));
    to.comboBox->setCurrentIndex(qMax(0, to.comboBox->findData(destinationId)));
    updateMigrationData();
}

void InitPage::fill(QComboBox* comboBox, const QList<System::Drive*>& drives)
{
    const QSignalBlocker blocker(comboBox);
    comboBox->clear();
    comboBox->addItem(tr("CHOOSE YOUR DRIVE"));
    for (System::Drive* drive : drives) {
        comboBox->addItem(drive->displayText(true), drive->id());
        connect(drive, &System::Drive::dataChanged, &listRefresh, qOverload<>(&QTimer::start), Qt::UniqueConnection);
    }
}

void InitPage::updateMigrationData()
{
    showDrive(from, migration->sourceDrive());
    // The plan only mirrors the source; storage and occupied space are those of the real drive.
    const System::Drive* target = nullptr;
    if (const System::Drive* plan = migration->destinationDrive()) {
        for (const System::Drive* drive : migration->destinationDrives()) {
            if (drive->id() == plan->id())
                target = drive;
        }
    }
    showDrive(to, target);
}

void InitPage::showDrive(const DriveColumn& column, const System::Drive* drive)
{
    column.drive->setText(drive ? drive->model() : QString());
    column.storage->setText(drive ? drive->capacity().toString() : QString());
    column.occupied->setText(drive ? drive->used().toString() : QString());
}

void InitPage::on_driveFrom_comboBox_currentIndexChanged(int index)
{
    const QVariant id = from.comboBox->itemData(index);
    emit sourceDriveSelected(id.isValid() ? id.toInt() : -1);
}

void InitPage::on_driveTo_comboBox_currentIndexChanged(int index)
{
    const QVariant id = to.comboBox->itemData(index);
    emit desinationDriveSelected(id.isValid() ? id.toInt() : -1);
}

} // namespace Velmora::Migration
