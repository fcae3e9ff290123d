#pragma once

#include "migration/widgets/BaseSystemWidget.h"
#include "migration/widgets/BoxCaption.h"

#include <QPointer>

namespace Velmora::System {

class Partition;

// One box of a drive bar: a partition with a bar of how full it is, or a stretch of unused space.
class PartitionWidget : public BaseSystemWidget
{
    Q_OBJECT

public:
    explicit PartitionWidget(Partition* partition, QWidget* parent = nullptr);

    Partition* partition() const { return m_partition; }
    // The caption as the last paint showed it, shortened to what fits the box.
    QString shownCaption() const { return m_caption.shownText(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void paintUnusedSpace(QPainter& painter, const QRect& frame);
    void paintPartition(QPainter& painter, const QRect& frame);

    QPointer<Partition> m_partition;
    BoxCaption m_caption;
};

} // namespace Velmora::System
