#include "migration/widgets/DriveWidget.h"

#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "migration/widgets/PartitionWidget.h"
#include "system/Drive.h"
#include "system/Partition.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace Velmora::System {

namespace {

const QColor FrameColor(91, 148, 198);
const QColor DefaultBackground(0, 2, 63);

QFont captionFont()
{
    QFont font(QStringLiteral("Inter UI Semi Bold"));
    font.setPointSize(10);
    return font;
}

} // namespace

DriveWidget::DriveWidget(QWidget* parent)
    : BaseSystemWidget(parent)
{
    setFixedHeight(FixedHeight);
    setAutoFillBackground(true);
    QPalette background = palette();
    background.setColor(QPalette::Window, DefaultBackground);
    setPalette(background);

    m_layoutTimer.setSingleShot(true);
    m_layoutTimer.setInterval(LayoutDelayMs);
    connect(&m_layoutTimer, &QTimer::timeout, this, &DriveWidget::doUpdateLayout);
}

void DriveWidget::setDrive(Drive* drive)
{
    if (m_drive)
        disconnect(m_drive, nullptr, this, nullptr);
    removePartitionWidgets();
    m_drive = drive;
    if (drive) {
        // No repaint of its own: the layout that a change schedules repaints the whole bar. A
        // repaint at each change made a replanning of 128 partitions take 200 ms, and even one
        // at the next turn of the loop painted every box twice, first at its former place.
        connect(drive, &Drive::dataChanged, this, &DriveWidget::updateLayout);
        connect(drive, &Drive::partitionAdded, this, &DriveWidget::onItemAdded);
        connect(drive, &Drive::partitionRemoved, this, &DriveWidget::onItemRemoved);
        for (int id : drive->partitions().keys())
            onItemAdded(id);
    }
    updateLayout();
    update();
}

void DriveWidget::setShowFreeSpace(bool show)
{
    if (show == m_showFreeSpace)
        return;
    m_showFreeSpace = show;
    setDrive(m_drive);
}

void DriveWidget::updateLayout()
{
    m_layoutTimer.start();
}

bool DriveWidget::isShown(const Partition* partition) const
{
    if (!partition || partition->isExtended())
        return false;
    return partition->type() != Partition::UnusedSpace || m_showFreeSpace;
}

void DriveWidget::onItemAdded(int id)
{
    Partition* partition = m_drive ? m_drive->partition(id) : nullptr;
    if (!isShown(partition) || m_partitionWidgets.contains(id))
        return;
    auto* widget = new PartitionWidget(partition, this);
    widget->show();
    addPartitionWidget(id, widget);
}

void DriveWidget::addPartitionWidget(int id, PartitionWidget* widget)
{
    Partition* partition = widget->partition();
    // A partition's change reaches the bar through its drive as well, and the layout scheduled
    // there repaints every box; a box paints by itself only when no layout is on its way.
    connect(partition, &Partition::dataChanged, widget, [this, widget] {
        if (!m_layoutTimer.isActive())
            widget->update();
    });
    connect(widget, &BaseSystemWidget::clicked, this, &BaseSystemWidget::clicked);
    // The model drops stretches of unused space without telling; their boxes must not outlive them.
    connect(partition, &QObject::destroyed, this, [this, id] { onItemRemoved(id); });
    m_partitionWidgets.insert(id, widget);
    updateLayout();
}

void DriveWidget::onItemRemoved(int id)
{
    PartitionWidget* widget = m_partitionWidgets.take(id);
    if (!widget)
        return;
    if (widget->partition())
        disconnect(widget->partition(), nullptr, this, nullptr);
    delete widget;
    updateLayout();
}

void DriveWidget::removePartitionWidgets()
{
    for (int id : m_partitionWidgets.keys())
        onItemRemoved(id);
}

int DriveWidget::boxCount() const
{
    const auto* plan = qobject_cast<const MigrationDestDrive*>(m_drive.data());
    if (!plan)
        return m_partitionWidgets.size();
    int count = 0;
    for (const Partition* partition : plan->partitions()) {
        const auto* planned = qobject_cast<const MigrationDestPartition*>(partition);
        if (planned && planned->migrate() && !planned->isExtended())
            ++count;
    }
    return count;
}

QList<PartitionWidget*> DriveWidget::placedWidgets() const
{
    QList<PartitionWidget*> widgets;
    for (PartitionWidget* widget : m_partitionWidgets) {
        if (!widget->isHidden() && widget->partition())
            widgets.append(widget);
    }
    std::stable_sort(widgets.begin(), widgets.end(), [](const PartitionWidget* a, const PartitionWidget* b) {
        return a->partition()->offset() < b->partition()->offset();
    });
    return widgets;
}

void DriveWidget::doUpdateLayout()
{
    const int n = boxCount();
    setMinimumWidth(BoxMinimumWidth * n);
    const int shared = qMax(0, width() + 1 - BoxMinimumWidth * n);
    const double disk = m_drive ? double(m_drive->capacity().value()) : 0.0;
    const double scale = disk > 0 ? shared / disk : 0.0;

    const QList<PartitionWidget*> widgets = placedWidgets();
    for (int k = 0; k < widgets.size(); ++k) {
        const Partition* partition = widgets[k]->partition();
        const int left = qRound(BoxMinimumWidth * k + partition->offset().value() * scale);
        const int boxWidth = qRound(partition->size().value() * scale + BoxMinimumWidth);
        widgets[k]->setGeometry(left, BoxTop, boxWidth, widgets[k]->minimumHeight());
    }
    repaint();
    emit layoutUpdated();
}

void DriveWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // Lets a style sheet give the bar another background than the palette's.
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);

    painter.setPen(FrameColor);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (!m_drive)
        return;
    painter.setPen(Qt::white);
    painter.setFont(captionFont());
    const QString caption = tr("DRIVE %1 %2 %3 %4")
                                .arg(m_drive->id())
                                .arg(m_drive->model(), m_drive->serialNumber(), m_drive->capacity().toString());
    painter.drawText(QRect(5, 10, width() - 6, height() - 11), Qt::AlignLeft | Qt::AlignTop, caption);
}

void DriveWidget::resizeEvent(QResizeEvent* event)
{
    BaseSystemWidget::resizeEvent(event);
    updateLayout();
}

} // namespace Velmora::System
