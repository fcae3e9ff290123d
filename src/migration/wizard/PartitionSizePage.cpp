#include "migration/wizard/PartitionSizePage.h"

#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "migration/widgets/DriveWidget.h"
#include "migration/widgets/MigrationDestDriveWidget.h"
#include "migration/wizard/PartitionDetailsWidget.h"
#include "migration/wizard/SizeCalculationProgressBar.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace Velmora::Migration {

using System::MigrationDestPartition;

namespace {

QLabel* caption(const QString& objectName, const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(objectName);
    return label;
}

// A drive bar wants 40 pixels a box: a drive of many partitions scrolls sideways in its row instead
// of widening the whole window.
QScrollArea* sideways(QWidget* bar, QWidget* parent)
{
    auto* area = new QScrollArea(parent);
    area->setObjectName(bar->objectName() + QStringLiteral("Area"));
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setFixedHeight(bar->minimumHeight());
    area->setWidget(bar);
    return area;
}

QLabel* column(const QString& text, int width, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("label_listHeader"));
    if (width > 0)
        label->setFixedWidth(width);
    return label;
}

} // namespace

PartitionSizePage::PartitionSizePage(QWidget* parent)
    : PageBase(AlertPageId, tr("PARTITIONS"), parent, 2)
    , sourceDriveWidget(new System::DriveWidget(this))
    , destDriveWidget(new System::MigrationDestDriveWidget(this))
    , partitionsArea(new QScrollArea(this))
    , partitionsList(new QWidget)
    , partitionsLayout(new QVBoxLayout(partitionsList))
    , sizeCalculation_info(new QLabel(tr("Please wait for partition size estimation..."), this))
    , sizeCalculationProgressBar(new SizeCalculationProgressBar(this))
{
    setObjectName(QStringLiteral("PartitionSizePage"));
    sourceDriveWidget->setObjectName(QStringLiteral("sourceDriveWidget"));
    destDriveWidget->setObjectName(QStringLiteral("destDriveWidget"));
    partitionsList->setObjectName(QStringLiteral("partitionsList"));
    partitionsLayout->setContentsMargins(0, 0, 0, 0);
    partitionsLayout->setSpacing(2);
    partitionsLayout->addStretch(1);
    partitionsArea->setObjectName(QStringLiteral("partitionsArea"));
    partitionsArea->setWidgetResizable(true);
    partitionsArea->setFrameShape(QFrame::NoFrame);
    partitionsArea->setWidget(partitionsList);
    sizeCalculation_info->setObjectName(QStringLiteral("sizeCalculation_info"));
    sizeCalculationProgressBar->setObjectName(QStringLiteral("sizeCalculationProgressBar"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(caption(QStringLiteral("label_sourceDrive"), tr("SOURCE DRIVE"), this));
    layout->addWidget(sideways(sourceDriveWidget, this));
    layout->addSpacing(6);
    layout->addWidget(caption(QStringLiteral("label_partitionsToMigrate"), tr("PARTITIONS TO MIGRATE"), this));
    partitionsHeader = buildListHeader();
    layout->addWidget(partitionsHeader);
    layout->addWidget(partitionsArea, 1);
    layout->addWidget(sizeCalculation_info);
    layout->addWidget(sizeCalculationProgressBar);
    layout->addStretch(0);
    layout->addSpacing(6);
    layout->addWidget(caption(QStringLiteral("label_destinationDrive"), tr("DESTINATION DRIVE"), this));
    layout->addWidget(sideways(destDriveWidget, this));
    sizeCalculation_info->hide();
    sizeCalculationProgressBar->hide();

    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(0);
    connect(&m_refreshTimer, &QTimer::timeout, this, &PartitionSizePage::updateRows);
    connect(partitionsArea->verticalScrollBar(), &QScrollBar::valueChanged, this, &PartitionSizePage::updateRows);
}

QWidget* PartitionSizePage::buildListHeader()
{
    auto* header = new QWidget(this);
    header->setObjectName(QStringLiteral("partitionsHeader"));
    auto* layout = new QHBoxLayout(header);
    // The same margins and columns as a row, so that the captions stand over their columns.
    layout->setContentsMargins(8, 0, 8, 0);
    layout->setSpacing(10);
    layout->addSpacing(QCheckBox().sizeHint().width());
    layout->addWidget(column(tr("PARTITION"), 0, header), 1);
    layout->addWidget(column(tr("USED"), PartitionDetailsWidget::UsedColumnWidth, header));
    layout->addWidget(column(tr("SIZE"), PartitionDetailsWidget::SizeColumnWidth, header));
    layout->addWidget(column(tr("EXCLUDE FILES"), PartitionDetailsWidget::FiltersColumnWidth, header));
    layout->addSpacing(PartitionDetailsWidget::LampColumnWidth);
    return header;
}

void PartitionSizePage::setDrives(System::Drive* source, System::MigrationDestDrive* destination)
{
    sourceDriveWidget->setDrive(source);
    destDriveWidget->setDrive(destination);
    // A plan that was deleted leaves the pointer null; its rows must go all the same.
    if (destination && destination == m_destination.data())
        return;
    m_destination = destination;
    rebuildRows();
}

void PartitionSizePage::rebuildRows()
{
    qDeleteAll(m_rows);
    m_rows.clear();
    System::MigrationDestDrive* destination = m_destination.data();
    if (!destination)
        return;
    // Rows are made hidden and shown together, so that the list is laid out once.
    partitionsList->setUpdatesEnabled(false);
    for (System::Partition* partition : destination->partitions()) {
        auto* planned = qobject_cast<MigrationDestPartition*>(partition);
        if (!planned || planned->isExtended())
            continue;
        auto* row = new PartitionDetailsWidget(planned, partitionsList);
        row->setRowEnabled(!m_estimating);
        connect(row, &PartitionDetailsWidget::requestFiltersPage, this, &PartitionSizePage::requestFiltersPage);
        partitionsLayout->insertWidget(partitionsLayout->count() - 1, row);
        m_rows.append(row);
    }
    partitionsList->setUpdatesEnabled(true);
}

void PartitionSizePage::startEstimation()
{
    m_estimating = true;
    for (PartitionDetailsWidget* row : qAsConst(m_rows))
        row->setRowEnabled(false);
    partitionsHeader->hide();
    partitionsArea->hide();
    sizeCalculation_info->show();
    sizeCalculationProgressBar->show();
}

void PartitionSizePage::setEstimationProgress(int percent)
{
    sizeCalculationProgressBar->setValue(percent);
}

int PartitionSizePage::estimationProgress() const
{
    return sizeCalculationProgressBar->value();
}

void PartitionSizePage::finishEstimation()
{
    m_estimating = false;
    sizeCalculation_info->hide();
    sizeCalculationProgressBar->hide();
    partitionsHeader->show();
    partitionsArea->show();
    for (PartitionDetailsWidget* row : qAsConst(m_rows))
        row->setRowEnabled(true);
    updateRows();
}

void PartitionSizePage::refresh()
{
    m_refreshTimer.start();
}

void PartitionSizePage::updateRows()
{
    m_refreshTimer.stop();
    // Rows out of sight are brought up to date when they scroll into it: a replanning of a hundred
    // partitions would otherwise rewrite a hundred spin boxes that nobody sees.
    const bool onScreen = partitionsArea->isVisible();
    const QRect seen(QPoint(0, partitionsArea->verticalScrollBar()->value()), partitionsArea->viewport()->size());
    for (PartitionDetailsWidget* row : qAsConst(m_rows)) {
        if (!onScreen || row->geometry().intersects(seen))
            row->updateData();
    }
}

} // namespace Velmora::Migration
