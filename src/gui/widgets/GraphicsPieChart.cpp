#include "gui/widgets/GraphicsPieChart.h"

#include "gui/widgets/Arc.h"
#include "gui/widgets/SmoothEllipseItem.h"

#include <QFontMetrics>
#include <QGraphicsRectItem>
#include <QGraphicsTextItem>
#include <QPen>
#include <QTimeLine>

#include <algorithm>

namespace Velmora::Gui {

namespace {

constexpr int TopAngle = 1440;
constexpr int FullCircle = 5760;

} // namespace

GraphicsPieChart::GraphicsPieChart(const QRectF& rect, QGraphicsItem* parent)
    : QGraphicsWidget(parent)
    , m_rect(rect)
{
    setMinimumSize(rect.size());
    setMaximumSize(rect.size());
    setPos(rect.topLeft());

    const QRectF local(QPointF(0, 0), rect.size());
    m_area = new QGraphicsRectItem(local, this);
    m_area->setPen(QPen(Qt::transparent));

    m_busyRing = new SmoothEllipseItem(local.adjusted(80, 80, -80, -80), this);
    m_busyRing->setStartAngle(TopAngle);
    m_busyRing->setSpanAngle(0);
    m_busyRing->setBrush(QColor(0, 59, 114));
    m_busyRing->setPen(Qt::NoPen);

    m_text = new QGraphicsTextItem(this);
    m_text->setDefaultTextColor(Qt::white);
    m_text->setFont(QFont(QStringLiteral("Inter UI"), 16));
    setText(QStringLiteral("0.0%"));

    m_timeLine = new QTimeLine(500, this);
    m_timeLine->setEasingCurve(QEasingCurve::InOutSine);
    m_timeLine->setFrameRange(0, 100);
    connect(m_timeLine, &QTimeLine::frameChanged, this, &GraphicsPieChart::updateFrame);
    connect(m_timeLine, &QTimeLine::finished, this, &GraphicsPieChart::updateFinished);
}

QString GraphicsPieChart::text() const
{
    return m_text->toPlainText();
}

void GraphicsPieChart::setText(const QString& text)
{
    m_text->setPlainText(text);
    const QFontMetrics metrics(m_text->font());
    m_text->setPos((m_rect.width() - m_text->boundingRect().width()) * 0.5,
                   (m_rect.height() - metrics.height()) * 0.5);
}

void GraphicsPieChart::setData(const Slices& slices)
{
    QList<int> order = slices.keys();
    std::stable_sort(order.begin(), order.end(), [&slices](int a, int b) {
        const double va = slices[a].value;
        const double vb = slices[b].value;
        if (!qFuzzyCompare(va, vb))
            return va > vb;
        return a > b;
    });

    for (auto it = m_arcs.begin(); it != m_arcs.end();) {
        if (slices.contains(it.key())) {
            ++it;
            continue;
        }
        delete it.value();
        m_previous.remove(it.key());
        m_next.remove(it.key());
        m_slices.remove(it.key());
        it = m_arcs.erase(it);
    }

    const QRectF local(QPointF(0, 0), m_rect.size());
    for (int rank = 0; rank < order.size(); ++rank) {
        const int key = order.at(rank);
        Slice slice = slices.value(key);
        // A slice of nothing still keeps a sliver, so that its colour can be found in the ring.
        if (qFuzzyCompare(slice.value, 0.0))
            slice.value = 1.0;

        Arc* arc = m_arcs.value(key);
        if (!arc) {
            arc = new Arc(local, rank, this);
            QPen pen(QColor(0, 8, 49), 6, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
            arc->setPen(pen);
            arc->setStartAngle(TopAngle);
            arc->setSpanAngle(0);
            m_arcs.insert(key, arc);
            // A new slice grows out of nothing at its own place.
            m_previous.insert(key, Placement{0.0, double(rank)});
        }
        arc->setBrush(slice.color);
        arc->setToolTip(slice.label);
        m_next.insert(key, Placement{slice.value, double(rank)});
        m_slices.insert(key, slice);
    }
    m_order = order;

    if (m_timeLine->state() != QTimeLine::Running)
        m_timeLine->start();
}

void GraphicsPieChart::updateFrame(int frame)
{
    QList<Placement> shown;
    double total = 0.0;
    for (int key : qAsConst(m_order)) {
        const Placement from = m_previous.value(key);
        const Placement to = m_next.value(key);
        const Placement now{(to.value * frame + from.value * (100 - frame)) / 100.0,
                            (to.rank * frame + from.rank * (100 - frame)) / 100.0};
        total += now.value;
        shown.append(now);
    }

    int angle = TopAngle;
    for (int i = 0; i < m_order.size(); ++i) {
        Arc* arc = m_arcs.value(m_order.at(i));
        const int span = total > 0.0 ? qRound(shown.at(i).value * 360.0 / (total * 0.0625)) : 0;
        arc->setRankFactor(shown.at(i).rank);
        arc->setStartAngle(angle);
        arc->setSpanAngle(span);
        angle += span;
    }
    update();

    setText(QStringLiteral("%1%").arg(m_progress * 100.0, 0, 'f', 1));
}

void GraphicsPieChart::updateFinished()
{
    m_previous = m_next;
}

void GraphicsPieChart::setProgress(double p)
{
    if (p >= 1.0) {
        p = 1.0;
        m_busyRing->setSpanAngle(-FullCircle);
    } else {
        m_busyRing->setSpanAngle(static_cast<int>(p * -FullCircle));
    }
    m_progress = p;
    setText(QStringLiteral("%1%").arg(m_progress * 100.0, 0, 'f', 1));
    m_busyRing->show();
    m_text->show();
}

void GraphicsPieChart::hideProgress()
{
    m_busyRing->hide();
    m_text->hide();
}

void GraphicsPieChart::clear()
{
    m_timeLine->stop();
    qDeleteAll(m_arcs);
    m_arcs.clear();
    m_slices.clear();
    m_order.clear();
    m_previous.clear();
    m_next.clear();
    m_progress = 0.0;
    m_busyRing->setSpanAngle(0);
    setText(QStringLiteral("0.0%"));
}

} // namespace Velmora::Gui
