#pragma once

#include <QColor>
#include <QGraphicsWidget>
#include <QList>
#include <QMap>
#include <QString>

class QGraphicsRectItem;
class QGraphicsTextItem;
class QTimeLine;

namespace Velmora::Gui {

class Arc;
class SmoothEllipseItem;

// A ring of slices, largest first from the top, anticlockwise; the larger a slice, the further
// it stands out. A busy arc in the middle shows how far the figures behind the slices are.
class GraphicsPieChart : public QGraphicsWidget
{
    Q_OBJECT

public:
    struct Slice {
        double value = 15.0;
        QString label;
        double percent = 0.0;
        QColor color = Qt::black;
    };
    using Slices = QMap<int, Slice>;

    explicit GraphicsPieChart(const QRectF& rect, QGraphicsItem* parent = nullptr);

    void setData(const Slices& slices);
    // p from 0 to 1; anything from 1 up is a full ring.
    void setProgress(double p);
    void hideProgress();

    double progress() const { return m_progress; }
    QString text() const;
    // The slices' arcs by key, and the keys in their drawing order (largest first).
    Arc* arc(int key) const { return m_arcs.value(key); }
    QList<int> order() const { return m_order; }
    SmoothEllipseItem* busyRing() const { return m_busyRing; }
    QTimeLine* timeLine() const { return m_timeLine; }

public slots:
    void clear();

protected slots:
    void updateFrame(int frame);
    void updateFinished();

private:
    struct Placement {
        double value = 0.0;
        double rank = 0.0;
    };

    void setText(const QString& text);

    QRectF m_rect;
    QGraphicsRectItem* m_area = nullptr;
    Slices m_slices;
    QMap<int, Arc*> m_arcs;
    QList<int> m_order;
    SmoothEllipseItem* m_busyRing = nullptr;
    QGraphicsTextItem* m_text = nullptr;
    double m_progress = 0.0;
    QTimeLine* m_timeLine = nullptr;
    QMap<int, Placement> m_previous;
    QMap<int, Placement> m_next;
};

} // namespace Velmora::Gui
