#pragma once

#include <QGradientStops>
#include <QGraphicsWidget>

class QConicalGradient;
class QGraphicsTextItem;
class QTimeLine;

namespace Velmora::Gui {

class Arc;

// The round gauge: a ring filled clockwise from the bottom with the conical gradient, and the
// value in percent on a dark disk in the middle. A new value is eased in over half a second.
class RoundProgressBar : public QGraphicsWidget
{
    Q_OBJECT

public:
    explicit RoundProgressBar(const QRectF& rect, QGraphicsItem* parent = nullptr);
    ~RoundProgressBar() override;

    double target() const { return m_target; }
    QString text() const;
    Arc* valueArc() const { return m_valueArc; }
    QTimeLine* timeLine() const { return m_timeLine; }

public slots:
    void setValue(double v);

protected slots:
    void updateFrame(int frame);
    void updateFinished();

private:
    QRectF m_rect;
    Arc* m_valueArc = nullptr;
    QGradientStops m_gradientStops;
    QConicalGradient* m_gradient = nullptr;
    QGraphicsTextItem* m_text = nullptr;
    QTimeLine* m_timeLine = nullptr;
    double m_target = 0.0;
    double m_previous = 0.0;
};

} // namespace Velmora::Gui
