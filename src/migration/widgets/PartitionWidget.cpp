#include "migration/widgets/PartitionWidget.h"

#include "system/Partition.h"

#include <QLinearGradient>
#include <QPainter>

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

// The letter, the label in brackets, and how much of the size is used, on two lines. A static text
// breaks lines only at the Unicode separator.
QString captionOf(const Partition& partition)
{
    const QString label = partition.label().isEmpty() ? QString() : QStringLiteral("[%1]").arg(partition.label());
    QString text = QStringLiteral("%1 %2\n%3 / %4")
                       .arg(partition.letter(), label, partition.used().toString(), partition.size().toString())
                       .trimmed();
    return text.replace(QLatin1Char('\n'), QChar::LineSeparator);
}

} // namespace

PartitionWidget::PartitionWidget(Partition* partition, QWidget* parent)
    : BaseSystemWidget(parent)
    , m_partition(partition)
{
    setMinimumHeight(MinimumHeight);
    setFont(partitionFont());
    m_caption.setTextFormat(Qt::PlainText);
    m_caption.setPerformanceHint(QStaticText::AggressiveCaching);
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

void PartitionWidget::paintUnusedSpace(QPainter& painter, const QRect& frame) const
{
    painter.setPen(UnusedSpaceColor);
    // A stroked QRect covers one pixel more than its size on each axis.
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
    painter.drawText(frame.adjusted(4, 0, -4, 0), Qt::AlignCenter, m_partition->size().toString());
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

    const QString text = captionOf(*m_partition);
    if (text != m_caption.text())
        m_caption.setText(text);
    const QRect textArea = inner.adjusted(3, 1, -2, -UsageBarHeight);
    painter.setClipRect(textArea);
    painter.setPen(Qt::white);
    const double top = textArea.top() + (textArea.height() - m_caption.size().height()) / 2;
    painter.drawStaticText(QPointF(textArea.left(), top), m_caption);
}

} // namespace Velmora::System
