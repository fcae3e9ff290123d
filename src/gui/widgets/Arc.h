#pragma once

#include <QGraphicsEllipseItem>

namespace Velmora::Gui {

// An annular sector over the item's rectangle. The inner radius is fixed at 0.4 of the radius;
// the outer edge draws in by a small step per rank, so a slice of lower rank stands out further.
// Start and span are the inherited angles, in sixteenths of a degree.
class Arc : public QGraphicsEllipseItem
{
public:
    Arc(const QRectF& rect, double rankFactor, QGraphicsItem* parent = nullptr);

    double rankFactor() const { return m_rankFactor; }
    void setRankFactor(double rankFactor);

    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    QPainterPath sectorPath() const;

    double m_rankFactor;
    double m_innerInset;
    double m_outerStep;
};

} // namespace Velmora::Gui
