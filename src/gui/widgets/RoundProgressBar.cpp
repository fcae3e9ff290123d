#include "gui/widgets/RoundProgressBar.h"

#include "gui/widgets/Arc.h"
#include "gui/widgets/ColorGradient.h"

#include <QBrush>
#include <QConicalGradient>
#include <QFontMetrics>
#include <QGraphicsEllipseItem>
#include <QGraphicsTextItem>
#include <QPen>
#include <QTimeLine>

namespace Velmora::Gui {

RoundProgressBar::RoundProgressBar(const QRectF& rect, QGraphicsItem* parent)
    : QGraphicsWidget(parent)
    , m_rect(rect)
{
    setMinimumSize(rect.size());
    setMaximumSize(rect.size());
    setPos(rect.topLeft());

    const QRectF local(QPointF(0, 0), rect.size());
    const ColorGradient gradient;
    m_gradientStops = {{0.0, gradient.start()}, {1.0, gradient.end()}};
    m_gradient = new QConicalGradient(local.center(), 270);
    m_gradient->setStops(m_gradientStops);

    auto* disk = new QGraphicsEllipseItem(local.adjusted(50, 50, -50, -50), this);
    disk->setBrush(QColor(0, 1, 29));
    disk->setPen(Qt::NoPen);

    m_valueArc = new Arc(local, 0.0, this);
    m_valueArc->setStartAngle(-1440);
    m_valueArc->setSpanAngle(0);
    m_valueArc->setBrush(QBrush(*m_gradient));
    m_valueArc->setPen(Qt::NoPen);

    m_text = new QGraphicsTextItem(this);
    m_text->setDefaultTextColor(Qt::white);
    m_text->setFont(QFont(QStringLiteral("Inter UI"), 16));

    m_timeLine = new QTimeLine(500, this);
    m_timeLine->setEasingCurve(QEasingCurve::InOutSine);
    m_timeLine->setFrameRange(0, 100);
    connect(m_timeLine, &QTimeLine::frameChanged, this, &RoundProgressBar::updateFrame);
    connect(m_timeLine, &QTimeLine::finished, this, &RoundProgressBar::updateFinished);

    // Show "0.00%" rather than an empty middle until the first value comes.
    updateFrame(0);
}

RoundProgressBar::~RoundProgressBar()
{
    delete m_gradient;
}

QString RoundProgressBar::text() const
{
    return m_text->toPlainText();
}

void RoundProgressBar::setValue(double v)
{
    if (qFuzzyCompare(v, m_target))
        return;
    m_target = qMin(v, 100.0);
    if (m_timeLine->state() != QTimeLine::Running)
        m_timeLine->start();
}

void RoundProgressBar::updateFrame(int frame)
{
    const double shown = ((100 - frame) * m_previous + frame * m_target) / 100.0;
    m_valueArc->setSpanAngle(static_cast<int>(shown * 16 * -3.6));

    m_text->setPlainText(QStringLiteral("%1%").arg(shown, 0, 'f', 2));
    const QFontMetrics metrics(m_text->font());
    m_text->setPos((m_rect.width() - m_text->boundingRect().width()) * 0.5,
                   (m_rect.height() - metrics.height()) * 0.5);
}

void RoundProgressBar::updateFinished()
{
    m_previous = m_target;
}

} // namespace Velmora::Gui
