#include "support/TestEnvironment.h"
#include "WidgetShots.h"

#include "gui/ApplicationFonts.h"
#include "gui/widgets/Arc.h"
#include "gui/widgets/ColorGradient.h"
#include "gui/widgets/GraphicsPieChart.h"
#include "gui/widgets/ProgressBar.h"
#include "gui/widgets/RoundProgressBar.h"
#include "gui/widgets/SmoothEllipseItem.h"
#include "gui/widgets/TimeGraph.h"
#include "smart/SmartController.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPainter>
#include <QSignalSpy>
#include <QTimeLine>
#include <QtMath>

#include <memory>

using namespace Velmora::Gui;
using Velmora::Smart::SmartHistoryPoint;

namespace {

const QColor Unlit(16, 44, 107);

// The scene drawn 1:1 on a transparent image: what the items left untouched stays transparent.
QImage renderScene(QGraphicsScene& scene, const QString& shotName)
{
    QImage image(250, 250, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    scene.render(&painter, QRectF(0, 0, 250, 250), QRectF(0, 0, 250, 250));
    painter.end();

    QImage shot(image.size(), QImage::Format_ARGB32);
    shot.fill(QColor(0, 8, 49));
    QPainter onPage(&shot);
    onPage.drawImage(0, 0, image);
    onPage.end();
    saveWidgetShot(shot, shotName);
    return image;
}

QPoint polar(double radius, double degrees)
{
    const double r = qDegreesToRadians(degrees);
    return QPoint(qRound(125 + radius * qCos(r)), qRound(125 - radius * qSin(r)));
}

bool near(const QColor& a, const QColor& b, int tolerance)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance
        && qAbs(a.blue() - b.blue()) <= tolerance && qAbs(a.alpha() - b.alpha()) <= tolerance;
}

// Lets a time line run to its end in a few tens of milliseconds.
void finish(QTimeLine* timeLine)
{
    QTRY_COMPARE(timeLine->state(), QTimeLine::NotRunning);
}

struct History {
    QList<SmartHistoryPoint*> points;
    ~History() { qDeleteAll(points); }
    // Newest first; each time is "hh:mm:ss" on the day given.
    void add(const QString& time, double value, int day = 2)
    {
        points.append(new SmartHistoryPoint{
            value, QDateTime(QDate(2026, 3, day), QTime::fromString(time, QStringLiteral("hh:mm:ss")))});
    }
};

} // namespace

class TestGuiCharts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void gradientColorAt_data();
    void gradientColorAt();

    void arcCoversTheRingOfItsRank_data();
    void arcCoversTheRingOfItsRank();

    void roundProgressBarSettlesOnTarget_data();
    void roundProgressBarSettlesOnTarget();
    void roundProgressBarInterpolatesFromPreviousValue();
    void roundProgressBarRetargetsTheRunningAnimation();
    void roundProgressBarPixels();

    void pieChartOrdersSlices_data();
    void pieChartOrdersSlices();
    void pieChartAnglesAfterAnimation();
    void pieChartMovesValueAndRankTogether();
    void pieChartArcsFollowKeys();
    void pieChartProgress_data();
    void pieChartProgress();
    void pieChartClearAndHide();
    void pieChartZeroSliceIsVisible();

    void progressBarSegments_data();
    void progressBarSegments();

    void timeGraphResample_data();
    void timeGraphResample();
    void timeGraphIntervalZeroIsOne();
    void timeGraphOnePointIsOneDotInTheMiddle();
    void timeGraphNarrowerThanLabelsDrawsNothing();
    void timeGraphJoinsNeighboursAsSteps();
};

void TestGuiCharts::initTestCase()
{
    QVERIFY(registerApplicationFonts().contains(QStringLiteral("Inter")));
}

void TestGuiCharts::gradientColorAt_data()
{
    QTest::addColumn<double>("t");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("below 0 clamps to start") << -0.5 << QColor(0, 225, 255);
    QTest::newRow("start") << 0.0 << QColor(0, 225, 255);
    QTest::newRow("quarter, truncated") << 0.25 << QColor(40, 169, 245);
    QTest::newRow("half, truncated not rounded") << 0.5 << QColor(80, 114, 236);
    QTest::newRow("end") << 1.0 << QColor(160, 3, 218);
    QTest::newRow("above 1 clamps to end") << 2.0 << QColor(160, 3, 218);
}

void TestGuiCharts::gradientColorAt()
{
    QFETCH(double, t);
    QFETCH(QColor, expected);
    const QColor c = ColorGradient().colorAt(t);
    QCOMPARE(colorText(c), colorText(expected));
}

void TestGuiCharts::arcCoversTheRingOfItsRank_data()
{
    QTest::addColumn<double>("rank");
    QTest::addColumn<int>("span");
    QTest::addColumn<double>("radius");
    QTest::addColumn<double>("angle");
    QTest::addColumn<bool>("filled");
    // Rectangle of 250: the inner radius is 0.4 x 125 = 50, each rank takes 5 off the outer 125.
    QTest::newRow("hole") << 0.0 << 5760 << 45.0 << 30.0 << false;
    QTest::newRow("inner edge") << 0.0 << 5760 << 55.0 << 30.0 << true;
    QTest::newRow("outer edge rank 0") << 0.0 << 5760 << 121.0 << 30.0 << true;
    QTest::newRow("rank 4 ends at 105") << 4.0 << 5760 << 110.0 << 30.0 << false;
    QTest::newRow("rank 4 inside") << 4.0 << 5760 << 100.0 << 30.0 << true;
    QTest::newRow("quarter span, inside") << 0.0 << 1440 << 90.0 << 45.0 << true;
    QTest::newRow("quarter span, past its end") << 0.0 << 1440 << 90.0 << 135.0 << false;
    QTest::newRow("quarter span, before its start") << 0.0 << 1440 << 90.0 << -45.0 << false;
    QTest::newRow("negative span runs clockwise") << 0.0 << -1440 << 90.0 << -45.0 << true;
}

void TestGuiCharts::arcCoversTheRingOfItsRank()
{
    QFETCH(double, rank);
    QFETCH(int, span);
    QFETCH(double, radius);
    QFETCH(double, angle);
    QFETCH(bool, filled);

    QGraphicsScene scene(0, 0, 250, 250);
    auto* arc = new Arc(QRectF(0, 0, 250, 250), rank);
    arc->setStartAngle(0);
    arc->setSpanAngle(span);
    arc->setBrush(Qt::red);
    arc->setPen(Qt::NoPen);
    scene.addItem(arc);

    const QImage image = renderScene(scene, QStringLiteral("arc-rank%1-span%2").arg(rank).arg(span));
    const QColor pixel = image.pixelColor(polar(radius, angle));
    QVERIFY2(filled ? near(pixel, Qt::red, 0) : pixel.alpha() == 0, qPrintable(colorText(pixel)));
    QCOMPARE(arc->shape().contains(polar(radius, angle)), filled);
}

void TestGuiCharts::roundProgressBarSettlesOnTarget_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("span");
    QTest::newRow("above 100 shows 100") << 120.0 << QStringLiteral("100.00%") << -5760;
    QTest::newRow("exactly 100") << 100.0 << QStringLiteral("100.00%") << -5760;
    QTest::newRow("span truncated, not rounded") << 33.333 << QStringLiteral("33.33%") << -1919;
    QTest::newRow("two decimals") << 7.5 << QStringLiteral("7.50%") << -432;
}

void TestGuiCharts::roundProgressBarSettlesOnTarget()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QFETCH(int, span);

    QGraphicsScene scene(0, 0, 250, 250);
    auto* bar = new RoundProgressBar(QRectF(0, 0, 250, 250));
    scene.addItem(bar);
    QCOMPARE(bar->text(), QStringLiteral("0.00%"));
    QCOMPARE(bar->timeLine()->duration(), 500);
    bar->timeLine()->setDuration(20);

    bar->setValue(value);
    QCOMPARE(bar->timeLine()->state(), QTimeLine::Running);
    finish(bar->timeLine());
    QCOMPARE(bar->text(), text);
    QCOMPARE(bar->valueArc()->spanAngle(), span);
    QCOMPARE(bar->valueArc()->startAngle(), -1440);
    QCOMPARE(bar->target(), qMin(value, 100.0));

    renderScene(scene, QStringLiteral("roundprogressbar-%1").arg(value));
}

void TestGuiCharts::roundProgressBarInterpolatesFromPreviousValue()
{
    QGraphicsScene scene(0, 0, 250, 250);
    auto* bar = new RoundProgressBar(QRectF(0, 0, 250, 250));
    scene.addItem(bar);

    bar->setValue(40);
    bar->timeLine()->stop();
    QVERIFY(QMetaObject::invokeMethod(bar, "updateFrame", Q_ARG(int, 50)));
    QCOMPARE(bar->text(), QStringLiteral("20.00%"));
    QCOMPARE(bar->valueArc()->spanAngle(), -1152);

    QVERIFY(QMetaObject::invokeMethod(bar, "updateFinished"));
    bar->setValue(80);
    bar->timeLine()->stop();
    QVERIFY(QMetaObject::invokeMethod(bar, "updateFrame", Q_ARG(int, 25)));
    QCOMPARE(bar->text(), QStringLiteral("50.00%"));

    // A value equal to the target by the fuzzy rule starts nothing.
    QVERIFY(QMetaObject::invokeMethod(bar, "updateFinished"));
    bar->setValue(80.0 + 1e-13);
    QCOMPARE(bar->timeLine()->state(), QTimeLine::NotRunning);
    bar->setValue(80.01);
    QCOMPARE(bar->timeLine()->state(), QTimeLine::Running);
}

void TestGuiCharts::roundProgressBarRetargetsTheRunningAnimation()
{
    QGraphicsScene scene(0, 0, 250, 250);
    auto* bar = new RoundProgressBar(QRectF(0, 0, 250, 250));
    scene.addItem(bar);
    bar->timeLine()->setDuration(60);
    QSignalSpy finished(bar->timeLine(), &QTimeLine::finished);

    bar->setValue(40);
    bar->setValue(60);
    finish(bar->timeLine());
    QCOMPARE(finished.count(), 1);
    QCOMPARE(bar->text(), QStringLiteral("60.00%"));
}

void TestGuiCharts::roundProgressBarPixels()
{
    QGraphicsScene scene(0, 0, 250, 250);
    auto* bar = new RoundProgressBar(QRectF(0, 0, 250, 250));
    scene.addItem(bar);
    bar->timeLine()->setDuration(20);
    bar->setValue(30);
    finish(bar->timeLine());

    const QImage image = renderScene(scene, QStringLiteral("roundprogressbar-pixels-30"));
    // Clockwise from the bottom: the left side is filled at 30%, the top and the right are not.
    QVERIFY(image.pixelColor(polar(100, 180)).alpha() == 255);
    QCOMPARE(image.pixelColor(polar(100, 90)).alpha(), 0);
    QCOMPARE(image.pixelColor(polar(100, 0)).alpha(), 0);
    // The disk behind the text shows inside the ring's hole, below the text.
    QCOMPARE(colorText(image.pixelColor(125, 165)), colorText(QColor(0, 1, 29)));
    // The seam of the conical gradient lies at the start of the arc: just past it the colour is at
    // the far end of the gradient, and a quarter further on it is three quarters along.
    const ColorGradient gradient;
    QVERIFY2(near(image.pixelColor(polar(100, 266)), gradient.end(), 12),
             qPrintable(colorText(image.pixelColor(polar(100, 266)))));
    QVERIFY2(near(image.pixelColor(polar(100, 180)), gradient.colorAt(0.75), 12),
             qPrintable(colorText(image.pixelColor(polar(100, 180)))));
    // White text in the middle.
    QVERIFY(containsColor(image, Qt::white, QRect(75, 110, 100, 30)));
}

void TestGuiCharts::pieChartOrdersSlices_data()
{
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("largest first") << QList<double>{10, 30, 20} << QList<int>{1, 2, 0};
    QTest::newRow("equal values: highest key first") << QList<double>{5, 5, 7} << QList<int>{2, 1, 0};
    QTest::newRow("zero goes last") << QList<double>{0, 3, 1} << QList<int>{1, 2, 0};
}

void TestGuiCharts::pieChartOrdersSlices()
{
    QFETCH(QList<double>, values);
    QFETCH(QList<int>, order);

    GraphicsPieChart chart(QRectF(0, 0, 250, 250));
    GraphicsPieChart::Slices slices;
    for (int key = 0; key < values.size(); ++key)
        slices[key] = GraphicsPieChart::Slice{values.at(key), QString::number(key), 0.0, Qt::red};
    chart.setData(slices);
    QCOMPARE(chart.order(), order);
    for (int rank = 0; rank < order.size(); ++rank)
        QCOMPARE(chart.arc(order.at(rank))->rankFactor(), double(rank));
}

void TestGuiCharts::pieChartAnglesAfterAnimation()
{
    QGraphicsScene scene(0, 0, 250, 250);
    auto* chart = new GraphicsPieChart(QRectF(0, 0, 250, 250));
    scene.addItem(chart);
    chart->timeLine()->setDuration(20);

    GraphicsPieChart::Slices slices;
    slices[0] = {10.0, QStringLiteral("DOCUMENTS"), 25.0, QColor(200, 0, 0)};
    slices[1] = {30.0, QStringLiteral("VIDEO"), 75.0, QColor(0, 200, 0)};
    slices[2] = {0.0, QStringLiteral("SOUND"), 0.0, QColor(0, 0, 200)};
    chart->setData(slices);
    finish(chart->timeLine());

    // Stored values 10, 30 and 1 (the zero's sliver): a total of 41, from the top anticlockwise.
    struct Expected {
        int key, start, span;
        double rank;
    };
    const Expected expected[] = {{1, 1440, 4215, 0}, {0, 5655, 1405, 1}, {2, 7060, 140, 2}};
    for (const Expected& e : expected) {
        const Arc* arc = chart->arc(e.key);
        QVERIFY(arc);
        QCOMPARE(arc->startAngle(), e.start);
        QCOMPARE(arc->spanAngle(), e.span);
        QCOMPARE(arc->rankFactor(), e.rank);
    }
    const Arc* arc = chart->arc(0);
    QCOMPARE(arc->toolTip(), QStringLiteral("DOCUMENTS"));
    QCOMPARE(arc->brush().color(), QColor(200, 0, 0));
    QCOMPARE(arc->pen().color(), QColor(0, 8, 49));
    QCOMPARE(arc->pen().widthF(), 6.0);
    QCOMPARE(arc->pen().style(), Qt::SolidLine);
    QCOMPARE(arc->pen().capStyle(), Qt::SquareCap);
    QCOMPARE(arc->pen().joinStyle(), Qt::BevelJoin);

    renderScene(scene, QStringLiteral("piechart-three-slices"));
}

void TestGuiCharts::pieChartMovesValueAndRankTogether()
{
    GraphicsPieChart chart(QRectF(0, 0, 250, 250));
    GraphicsPieChart::Slices slices;
    slices[1] = {10.0, QString(), 0.0, Qt::red};
    slices[2] = {30.0, QString(), 0.0, Qt::green};
    chart.setData(slices);
    chart.timeLine()->stop();
    QVERIFY(QMetaObject::invokeMethod(&chart, "updateFrame", Q_ARG(int, 100)));
    QVERIFY(QMetaObject::invokeMethod(&chart, "updateFinished"));

    // The two swap places: halfway both are worth 20 and both stand at rank 0.5.
    slices[1].value = 30.0;
    slices[2].value = 10.0;
    chart.setData(slices);
    chart.timeLine()->stop();
    QVERIFY(QMetaObject::invokeMethod(&chart, "updateFrame", Q_ARG(int, 50)));
    QCOMPARE(chart.order(), (QList<int>{1, 2}));
    QCOMPARE(chart.arc(1)->rankFactor(), 0.5);
    QCOMPARE(chart.arc(2)->rankFactor(), 0.5);
    QCOMPARE(chart.arc(1)->startAngle(), 1440);
    QCOMPARE(chart.arc(1)->spanAngle(), 2880);
    QCOMPARE(chart.arc(2)->startAngle(), 1440 + 2880);
    QCOMPARE(chart.arc(2)->spanAngle(), 2880);

    QVERIFY(QMetaObject::invokeMethod(&chart, "updateFrame", Q_ARG(int, 25)));
    // Values 15 and 25 of 40.
    QCOMPARE(chart.arc(1)->spanAngle(), 2160);
    QCOMPARE(chart.arc(2)->spanAngle(), 3600);
    QCOMPARE(chart.arc(1)->rankFactor(), 0.75);
}

void TestGuiCharts::pieChartArcsFollowKeys()
{
    GraphicsPieChart chart(QRectF(0, 0, 250, 250));
    const auto arcCount = [&chart] {
        int n = 0;
        for (QGraphicsItem* child : chart.childItems())
            n += dynamic_cast<Arc*>(child) ? 1 : 0;
        return n;
    };

    GraphicsPieChart::Slices slices;
    slices[3] = {5.0, QStringLiteral("A"), 0.0, Qt::red};
    slices[4] = {6.0, QStringLiteral("B"), 0.0, Qt::green};
    chart.setData(slices);
    const Arc* kept = chart.arc(3);
    QCOMPARE(arcCount(), 2);

    slices.remove(4);
    slices[3].label = QStringLiteral("A2");
    chart.setData(slices);
    QCOMPARE(arcCount(), 1);
    QVERIFY(!chart.arc(4));
    QCOMPARE(chart.arc(3), kept);
    QCOMPARE(chart.arc(3)->toolTip(), QStringLiteral("A2"));
}

void TestGuiCharts::pieChartProgress_data()
{
    QTest::addColumn<double>("p");
    QTest::addColumn<int>("span");
    QTest::addColumn<double>("stored");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << 0.0 << 0 << 0.0 << QStringLiteral("0.0%");
    QTest::newRow("quarter, clockwise from the top") << 0.25 << -1440 << 0.25 << QStringLiteral("25.0%");
    QTest::newRow("truncated") << 0.33333 << -1919 << 0.33333 << QStringLiteral("33.3%");
    QTest::newRow("full") << 1.0 << -5760 << 1.0 << QStringLiteral("100.0%");
    QTest::newRow("beyond full") << 1.5 << -5760 << 1.0 << QStringLiteral("100.0%");
}

void TestGuiCharts::pieChartProgress()
{
    QFETCH(double, p);
    QFETCH(int, span);
    QFETCH(double, stored);
    QFETCH(QString, text);

    QGraphicsScene scene(0, 0, 250, 250);
    auto* chart = new GraphicsPieChart(QRectF(0, 0, 250, 250));
    scene.addItem(chart);
    chart->setProgress(p);
    QCOMPARE(chart->busyRing()->startAngle(), 1440);
    QCOMPARE(chart->busyRing()->spanAngle(), span);
    QCOMPARE(chart->progress(), stored);
    QCOMPARE(chart->text(), text);

    const QImage image = renderScene(scene, QStringLiteral("piechart-progress-%1").arg(p));
    // The ring lies within radius 45 and runs clockwise from the top: 60 degrees on, at the upper
    // right, it is lit from a sixth on; at the left only from three quarters on.
    const QColor upperRight = image.pixelColor(polar(40, 30));
    const QColor left = image.pixelColor(polar(40, 178));
    const QColor ring(0, 59, 114);
    QCOMPARE(colorText(upperRight), colorText(stored >= 0.25 ? ring : QColor(Qt::transparent)));
    QCOMPARE(colorText(left), colorText(stored >= 1.0 ? ring : QColor(Qt::transparent)));
}

void TestGuiCharts::pieChartClearAndHide()
{
    GraphicsPieChart chart(QRectF(0, 0, 250, 250));
    GraphicsPieChart::Slices slices;
    slices[0] = {5.0, QString(), 0.0, Qt::red};
    chart.setData(slices);
    chart.setProgress(0.5);

    chart.hideProgress();
    QVERIFY(!chart.busyRing()->isVisible());
    QCOMPARE(chart.text(), QStringLiteral("50.0%"));
    chart.setProgress(0.6);
    QVERIFY(chart.busyRing()->isVisible());

    chart.clear();
    QCOMPARE(chart.text(), QStringLiteral("0.0%"));
    QVERIFY(!chart.arc(0));
    QVERIFY(chart.order().isEmpty());
    // Whatever runs after a clear draws no stale slice.
    QVERIFY(QMetaObject::invokeMethod(&chart, "updateFrame", Q_ARG(int, 100)));
    QCOMPARE(chart.text(), QStringLiteral("0.0%"));
}

void TestGuiCharts::pieChartZeroSliceIsVisible()
{
    QGraphicsScene scene(0, 0, 250, 250);
    auto* chart = new GraphicsPieChart(QRectF(0, 0, 250, 250));
    scene.addItem(chart);
    chart->timeLine()->setDuration(20);
    chart->hideProgress();

    GraphicsPieChart::Slices slices;
    slices[0] = {10.0, QStringLiteral("SYSTEM"), 100.0, QColor(255, 0, 0)};
    slices[1] = {0.0, QStringLiteral("OTHER"), 0.0, QColor(0, 255, 0)};
    chart->setData(slices);
    finish(chart->timeLine());

    // Weights 10 and 1: the empty slice spans 1/11 of the circle, right after the big one.
    QCOMPARE(chart->arc(1)->spanAngle(), qRound(5760.0 / 11));
    const double middle = (chart->arc(1)->startAngle() + chart->arc(1)->spanAngle() / 2.0) / 16.0;
    const QImage image = renderScene(scene, QStringLiteral("piechart-zero-slice"));
    QCOMPARE(colorText(image.pixelColor(polar(85, middle))), colorText(QColor(0, 255, 0)));
    QCOMPARE(colorText(image.pixelColor(polar(85, middle + 180))), colorText(QColor(255, 0, 0)));
}

void TestGuiCharts::progressBarSegments_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("lit");
    QTest::newRow("empty") << 0 << 100 << 0 << 0;
    QTest::newRow("half") << 0 << 100 << 50 << 5;
    QTest::newRow("just under a segment") << 0 << 100 << 90 << 9;
    QTest::newRow("just over a segment") << 0 << 100 << 91 << 10;
    QTest::newRow("full lights the last segment") << 0 << 100 << 100 << 10;
    QTest::newRow("offset minimum, measured against the maximum") << 20 << 100 << 60 << 4;
}

void TestGuiCharts::progressBarSegments()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, value);
    QFETCH(int, lit);

    ProgressBar bar;
    bar.setRange(minimum, maximum);
    bar.setValue(value);
    bar.resize(94, 12); // ten segments; the last 4 pixels hold none
    const QImage image = grabWidget(bar, QStringLiteral("progressbar-%1-%2-%3").arg(minimum).arg(maximum).arg(value));

    const ColorGradient gradient;
    for (int i = 0; i < 10; ++i) {
        const QColor expected = i < lit ? gradient.colorAt(i / 10.0) : Unlit;
        QCOMPARE(colorText(image.pixelColor(9 * i + 2, 6)), colorText(expected));
        // The gap between segments is not painted by the bar.
        QVERIFY(image.pixelColor(9 * i + 7, 6) != expected);
    }
    QVERIFY(!containsColor(image, Unlit, QRect(90, 0, 4, 12)));
    QVERIFY(!containsColor(image, gradient.colorAt(0.9), QRect(90, 0, 4, 12)));
}

void TestGuiCharts::timeGraphResample_data()
{
    QTest::addColumn<QStringList>("times");
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<int>("interval");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QVector<double>>("samples");

    QTest::newRow("one point") << QStringList{"12:00:00"} << QList<double>{5} << 60 << 10
                               << QVector<double>{5};
    QTest::newRow("one per interval") << QStringList{"12:00:00", "11:59:00", "11:58:00"}
                                      << QList<double>{1, 2, 3} << 60 << 10 << QVector<double>{1, 2, 3};
    QTest::newRow("a gap repeats the older value")
        << QStringList{"12:00:00", "11:57:00"} << QList<double>{1, 2} << 60 << 10
        << QVector<double>{1, 2, 2, 2};
    QTest::newRow("points closer than the interval are skipped")
        << QStringList{"12:00:00", "11:59:30", "11:59:00"} << QList<double>{1, 2, 3} << 60 << 10
        << QVector<double>{1, 3};
    QTest::newRow("the cursor moves by the interval, not to the point")
        << QStringList{"12:00:00", "11:58:30", "11:57:40", "11:57:10"} << QList<double>{1, 2, 3, 4} << 60
        << 10 << QVector<double>{1, 2, 3};
    QTest::newRow("no more samples than columns")
        << QStringList{"12:00:00", "11:50:00", "11:40:00"} << QList<double>{1, 2, 3} << 60 << 4
        << QVector<double>{1, 2, 2, 2};
    QTest::newRow("no columns, no samples") << QStringList{"12:00:00"} << QList<double>{5} << 60 << 0
                                            << QVector<double>{};
    QTest::newRow("only the time of day counts")
        << QStringList{"12:00:00", "12:00:00"} << QList<double>{1, 2} << 60 << 10 << QVector<double>{1};
}

void TestGuiCharts::timeGraphResample()
{
    QFETCH(QStringList, times);
    QFETCH(QList<double>, values);
    QFETCH(int, interval);
    QFETCH(int, columns);
    QFETCH(QVector<double>, samples);

    History history;
    // Each point a day older than the one before: only the clock time may matter.
    for (int i = 0; i < times.size(); ++i)
        history.add(times.at(i), values.at(i), 20 - i);
    QCOMPARE(TimeGraph::resample(history.points, interval, columns), samples);
}

void TestGuiCharts::timeGraphIntervalZeroIsOne()
{
    TimeGraph graph;
    graph.setInterval(0);
    QCOMPARE(graph.interval(), 1);
    graph.setInterval(300);
    QCOMPARE(graph.interval(), 300);

    // Over midnight the distance is the clock's: from 00:00:30 back to 23:59:30 is 86,340 s.
    History history;
    history.add(QStringLiteral("00:00:30"), 1, 3);
    history.add(QStringLiteral("23:59:30"), 2, 2);
    QCOMPARE(TimeGraph::resample(history.points, 60, 5), (QVector<double>{1, 2, 2, 2, 2}));
}

void TestGuiCharts::timeGraphOnePointIsOneDotInTheMiddle()
{
    History history;
    history.add(QStringLiteral("12:00:00"), 5);
    TimeGraph graph;
    graph.setUnit(QStringLiteral("GB"));
    graph.setInterval(60);
    graph.setData(history.points);
    graph.resize(400, 270);

    const int columns = (400 - graph.labelColumnWidth(5)) / 8;
    QVERIFY(columns > 10);
    const QImage image = grabWidget(graph, QStringLiteral("timegraph-one-point"));

    // A single value spans two units: level (1 x 29 / 2) = 14, drawn at y = 15 x 8 + 10.
    const int x = (columns - 1) * 8;
    for (int row = 0; row < 30; ++row) {
        const int y = row * 8 + 10;
        const QColor expected = y == 130 ? QColor(0, 225, 255) : Unlit;
        QCOMPARE(colorText(image.pixelColor(x + 2, y + 2)), colorText(expected));
        QCOMPARE(colorText(image.pixelColor(x - 8 + 2, y + 2)), colorText(Unlit));
    }
    // No column beyond the area, and white value labels beside it.
    QVERIFY(!containsColor(image, Unlit, QRect(columns * 8, 0, 400 - columns * 8, 250)));
    QVERIFY(containsColor(image, Qt::white, QRect(columns * 8, 0, 400 - columns * 8, 250)));
}

void TestGuiCharts::timeGraphNarrowerThanLabelsDrawsNothing()
{
    History history;
    history.add(QStringLiteral("12:00:00"), 123456);
    history.add(QStringLiteral("11:59:00"), 100000);
    TimeGraph graph;
    graph.setUnit(QStringLiteral("GB"));
    graph.setInterval(60);
    graph.setData(history.points);
    const int labels = graph.labelColumnWidth(123456);
    graph.resize(labels - 1, 270);

    const QImage image = grabWidget(graph, QStringLiteral("timegraph-narrow"));
    QVERIFY(!containsColor(image, Unlit));
    QVERIFY(!containsColor(image, QColor(0, 225, 255)));
    QVERIFY(!containsColor(image, Qt::white));
}

void TestGuiCharts::timeGraphJoinsNeighboursAsSteps()
{
    History history;
    history.add(QStringLiteral("12:00:00"), 10);
    history.add(QStringLiteral("11:59:00"), 0);
    history.add(QStringLiteral("11:58:00"), 0);
    TimeGraph graph;
    graph.setUnit(QStringLiteral("GB"));
    graph.setInterval(60);
    graph.setData(history.points);
    graph.resize(300, 270);
    const int columns = (300 - graph.labelColumnWidth(10)) / 8;
    const QImage image = grabWidget(graph, QStringLiteral("timegraph-steps"));

    const ColorGradient gradient;
    const auto lit = [&](int sample, int level) {
        const int x = (columns - 1 - sample) * 8 + 2;
        const int y = (29 - level) * 8 + 12;
        return image.pixelColor(x, y) == gradient.colorAt(double(sample) / columns);
    };
    // Newest at the top right; the next sample at the bottom, joined to it by a full column.
    QVERIFY(lit(0, 29));
    QVERIFY(!lit(0, 28));
    for (int level = 0; level < 30; ++level)
        QVERIFY2(lit(1, level), qPrintable(QString::number(level)));
    QVERIFY(lit(2, 0));
    QVERIFY(!lit(2, 1));
    QCOMPARE(colorText(image.pixelColor((columns - 4) * 8 + 2, 29 * 8 + 12)), colorText(Unlit));
    // A clock time under the newest column.
    QVERIFY(containsColor(image, Qt::white, QRect(0, 250, columns * 8, 20)));
}

KESTRAVIN_GUI_TEST_MAIN(TestGuiCharts)
#include "tst_gui_charts.moc"
