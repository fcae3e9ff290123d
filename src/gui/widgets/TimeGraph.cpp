#include "gui/widgets/TimeGraph.h"

#include "gui/widgets/ColorGradient.h"
#include "smart/SmartController.h"

#include <QLocale>
#include <QPainter>
#include <QTime>

#include <algorithm>
#include <cstdlib>

namespace Velmora::Gui {

namespace {

constexpr int DotSize = 4;
constexpr int TopRow = 10;
constexpr int GraphBottom = 250;
constexpr int LabelGap = 5;

QFont labelFont()
{
    return QFont(QStringLiteral("Inter UI"), 10);
}

QString valueText(const QString& number, const QString& unit)
{
    return QStringLiteral("%1 %2").arg(number, unit);
}

} // namespace

TimeGraph::TimeGraph(QWidget* parent)
    : QWidget(parent)
{
}

void TimeGraph::setInterval(int seconds)
{
    m_interval = seconds == 0 ? 1 : seconds;
    update();
}

void TimeGraph::setUnit(const QString& unit)
{
    m_unit = unit;
    update();
}

void TimeGraph::setData(const QList<Velmora::Smart::SmartHistoryPoint*>& data)
{
    if (data == m_data)
        return;
    m_data = data;
    update();
}

void TimeGraph::clear()
{
    m_data.clear();
    update();
}

QSize TimeGraph::sizeHint() const
{
    return QSize(400, GraphBottom + 20);
}

int TimeGraph::labelColumnWidth(double maximum) const
{
    const QFontMetrics metrics(labelFont());
    return metrics.horizontalAdvance(valueText(QString::number(maximum), m_unit)) + LabelGap;
}

QVector<double> TimeGraph::resample(const QList<Velmora::Smart::SmartHistoryPoint*>& data, int interval,
                                    int columns)
{
    QVector<double> samples;
    if (data.isEmpty() || columns <= 0)
        return samples;
    interval = std::max(1, interval);

    samples.append(data.first()->value);
    QTime cursor = data.first()->time.time();
    for (int p = 1; p < data.size() && samples.size() < columns; ++p) {
        const Velmora::Smart::SmartHistoryPoint* point = data.at(p);
        const int diff = std::abs(cursor.secsTo(point->time.time()));
        if (diff < interval)
            continue;
        for (int n = diff / interval; n > 0 && samples.size() < columns; --n) {
            samples.append(point->value);
            cursor = cursor.addSecs(-interval);
        }
    }
    return samples;
}

void TimeGraph::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setFont(labelFont());

    double highest = 0.0;
    for (const auto* point : qAsConst(m_data))
        highest = std::max(highest, point->value);
    const int areaWidth = width() - labelColumnWidth(highest);
    const int columns = std::max(0, areaWidth / Grid);

    const QVector<double> samples = resample(m_data, m_interval, columns);

    painter.setPen(Qt::NoPen);
    painter.setBrush(ColorGradient::unlitColor());
    for (int x = 0; x < columns * Grid; x += Grid) {
        for (int y = TopRow; y < GraphBottom; y += Grid)
            painter.drawRoundedRect(QRectF(x, y, DotSize, DotSize), 4, 4);
    }
    if (samples.isEmpty())
        return;

    double low = *std::min_element(samples.cbegin(), samples.cend());
    double high = *std::max_element(samples.cbegin(), samples.cend());
    if (high - low < 1e-6) {
        low -= 1.0;
        high += 1.0;
    }

    painter.setPen(Qt::white);
    painter.drawText(areaWidth + LabelGap, 20, valueText(QString::number(high, 'f', 0), m_unit));
    painter.drawText(areaWidth + LabelGap, 240, valueText(QString::number(low, 'f', 0), m_unit));

    const ColorGradient gradient;
    const QLocale locale = QLocale::system();
    QTime cursor = m_data.first()->time.time();
    int previousLevel = 0;
    for (int i = 0; i < samples.size(); ++i) {
        const int x = (columns - 1 - i) * Grid;
        const int level = static_cast<int>((samples.at(i) - low) * (Rows - 1) / (high - low));
        const int from = i == 0 ? level : std::min(level, previousLevel);
        const int to = i == 0 ? level : std::max(level, previousLevel);

        painter.setPen(Qt::NoPen);
        painter.setBrush(gradient.colorAt(double(i) / columns));
        for (int l = from; l <= to; ++l)
            painter.drawRoundedRect(QRectF(x, (Rows - 1 - l) * Grid + TopRow, DotSize, DotSize), 4, 4);
        previousLevel = level;

        if (i % 8 == 0 && x >= 40) {
            painter.setPen(Qt::white);
            painter.drawText(QRect(x - 40, GraphBottom, 80, 20), Qt::AlignCenter,
                             locale.toString(cursor, QLocale::ShortFormat));
        }
        cursor = cursor.addSecs(-m_interval);
    }
}

} // namespace Velmora::Gui
