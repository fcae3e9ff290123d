#pragma once

#include "migration/widgets/BaseSystemWidget.h"

#include <QMap>
#include <QPointer>
#include <QTimer>

namespace Velmora::System {

class Drive;
class Partition;
class PartitionWidget;

// A drive drawn as a bar with one box per partition, each as wide as its share of the disk plus a
// fixed 40 pixels, so that even the smallest partition stays readable.
class DriveWidget : public BaseSystemWidget
{
    Q_OBJECT

public:
    static constexpr int FixedHeight = 90;
    static constexpr int BoxMinimumWidth = 40;
    static constexpr int BoxTop = 30;
    // Changes that come in a burst (a replanning resizes every partition) are folded into one
    // layout by waiting this long after the last one.
    static constexpr int LayoutDelayMs = 10;

    explicit DriveWidget(QWidget* parent = nullptr);

    Drive* drive() const { return m_drive; }
    void setDrive(Drive* drive);

    bool showFreeSpace() const { return m_showFreeSpace; }
    // Unused stretches of the disk get boxes of their own only when this is set.
    void setShowFreeSpace(bool show);

    const QMap<int, PartitionWidget*>& partitionWidgets() const { return m_partitionWidgets; }

public slots:
    void updateLayout();

signals:
    // After every layout, so that a caller can tell how many a burst of changes cost.
    void layoutUpdated();

protected slots:
    virtual void onItemAdded(int id);
    void onItemRemoved(int id);
    void doUpdateLayout();

protected:
    // Whether `partition` gets a box: never an extended container, unused space only on request.
    bool isShown(const Partition* partition) const;
    // Wires a new box to its partition and to this bar and schedules a layout.
    void addPartitionWidget(int id, PartitionWidget* widget);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void removePartitionWidgets();
    int boxCount() const;
    // The boxes that take a place in the bar, in the order of their partitions on the disk.
    QList<PartitionWidget*> placedWidgets() const;

    QPointer<Drive> m_drive;
    QMap<int, PartitionWidget*> m_partitionWidgets;
    bool m_showFreeSpace = false;
    QTimer m_layoutTimer;
};

} // namespace Velmora::System
