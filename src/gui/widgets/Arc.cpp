#include "gui/widgets/Arc.h"

#include <QPainter>
#include <QPainterPath>

namespace Velmora::Gui {

Arc::Arc(const QRectF& rect, double rankFactor, QGraphicsItem* parent)
    : QGraphicsEllipseItem(rect, parent)
    , m_rankFactor(rankFactor)
    , m_innerInset(0.6 * rect.width() / 2.0)
    , m_outerStep(0.04 * rect.width() / 2.0)
{
}

void Arc::setRankFactor(double rankFactor)
{
    if (rankFactor == m_rankFactor)
        return;
    m_rankFactor = rankFactor;
    update();
}

QPainterPath Arc::sectorPath() const
{
    const QRectF inner = rect().adjusted(m_innerInset, m_innerInset, -m_innerInset, -m_innerInset);
    const double outerInset = m_outerStep * m_rankFactor;
    const QRectF outer = rect().adjusted(outerInset, outerInset, -outerInset, -outerInset);
    const double start = startAngle() * 0.0625;
    const double span = spanAngle() * 0.0625;

    QPainterPath path;
    path.arcMoveTo(inner, start);
    path.arcTo(outer, start, span);
    path.arcTo(inner, start + span, -span);
    path.setFillRule(Qt::OddEvenFill);
    return path;
}

QPainterPath Arc::shape() const
{
    // The hole in the middle is not part of the slice, so tool tips only show over the ring.
    return sectorPath();
}

void Arc::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    painter->setPen(pen());
    painter->setBrush(brush());
    painter->setRenderHint(QPainter::Antialiasing, true);
    painter->drawPath(sectorPath());
}

} // namespace Velmora::Gui
