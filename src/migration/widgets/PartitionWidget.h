#pragma once

#include "migration/widgets/BaseSystemWidget.h"

#include <QPointer>
#include <QStaticText>

namespace Velmora::System {

class Partition;

// One box of a drive bar: a partition with a bar of how full it is, or a stretch of unused space.
class PartitionWidget : public BaseSystemWidget
{
    Q_OBJECT

public:
    explicit PartitionWidget(Partition* partition, QWidget* parent = nullptr);

    Partition* partition() const { return m_partition; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintUnusedSpace(QPainter& painter, const QRect& frame) const;
    void paintPartition(QPainter& painter, const QRect& frame);

    QPointer<Partition> m_partition;
    // Shaping the caption is most of the cost of a paint; a replanning repaints every box.
    QStaticText m_caption;
};

} // namespace Velmora::System
