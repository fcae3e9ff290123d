#include "migration/widgets/PartitionWidget.h"

#include "system/Partition.h"

#include <QHelpEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QToolTip>

namespace Velmora::System {

namespace {

const QColor FrameColor(91, 148, 198);
const QColor UnusedSpaceColor(128, 128, 128);
const QColor GradientStart(160, 3, 218);
const QColor GradientEnd(0, 225, 255);
constexpr int UsageBarHeight = 11;
constexpr int MinimumHeight = 56;

QFont partitionFont()
{
    QFont font(QStringLiteral("Inter UI Semi Bold"));
    font.setPointSize(8);
    return font;
}

// The letter and the label in brackets over how much of the size is used. A narrow box keeps the
// letter alone, or the used size with an ellipsis; a partition with neither letter nor label shows
// the sizes alone.
QList<BoxCaption::Line> captionOf(const Partition& partition)
{
    QStringList head;
    if (!partition.letter().isEmpty())
        head.append(partition.letter());
    if (!partition.label().isEmpty())
        head += QStringLiteral("[%1]").arg(partition.label()).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QList<BoxCaption::Line> lines;
    if (!head.isEmpty())
        lines.append(BoxCaption::elisions(head, !partition.letter().isEmpty()));
    lines.append(BoxCaption::elisions(
        {partition.used().toString(), QStringLiteral("/ %1").arg(partition.size().toString())}, false));
    return lines;
}

} // namespace

PartitionWidget::PartitionWidget(Partition* partition, QWidget* parent)
    : BaseSystemWidget(parent)
    , m_partition(partition)
{
    setMinimumHeight(MinimumHeight);
    setFont(partitionFont());
}

bool PartitionWidget::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return BaseSystemWidget::event(event);
    // Whatever a narrow box leaves out is there on hovering it.
    if (m_caption.isElided()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), m_caption.fullText(), this);
    } else {
        QToolTip::hideText();
        event->ignore();
    }
    return true;
}

void PartitionWidget::paintEvent(QPaintEvent*)
{
    if (!m_partition || m_partition->size() <= Bytes(0))
        return;
    QPainter painter(this);
    const QRect frame(QPoint(3, 3), QPoint(width() - 4, height() - 4));
    if (m_partition->type() == Partition::UnusedSpace)
        paintUnusedSpace(painter, frame);
    else
        paintPartition(painter, frame);
}

void PartitionWidget::paintUnusedSpace(QPainter& painter, const QRect& frame)
{
    painter.setPen(UnusedSpaceColor);
    // A stroked QRect covers one pixel more than its size on each axis.
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
    m_caption.setLines({{m_partition->size().toString()}});
    m_caption.draw(painter, frame.adjusted(4, 0, -4, 0), Qt::AlignCenter);
}

void PartitionWidget::paintPartition(QPainter& painter, const QRect& frame)
{
    const QRect inner = frame.adjusted(1, 1, -1, -1);
    QLinearGradient gradient(QPointF(0, 0), QPointF(width(), 0));
    gradient.setColorAt(0, GradientStart);
    gradient.setColorAt(1, GradientEnd);

    // A plan may size a partition below what is in use on the source.
    const double share = double(m_partition->used().value()) / double(m_partition->size().value());
    const int barWidth = qMin(inner.width(), qRound(share * inner.width()));
    if (barWidth > 0)
        painter.fillRect(QRect(inner.left(), inner.bottom() - UsageBarHeight + 1, barWidth, UsageBarHeight), gradient);

    painter.setPen(FrameColor);
    painter.drawRect(frame.adjusted(0, 0, -1, -1));

    m_caption.setLines(captionOf(*m_partition));
    painter.setPen(Qt::white);
    m_caption.draw(painter, inner.adjusted(3, 1, -2, -UsageBarHeight), Qt::AlignLeft | Qt::AlignVCenter);
}

} // namespace Velmora::System
