#include <QApplication>

#include "PlanBuilder.h"
#include "support/TestEnvironment.h"

#include "migration/widgets/DriveWidget.h"
#include "migration/widgets/MigrationDestDriveWidget.h"
#include "migration/widgets/PartitionWidget.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace PlanBuilder;
using Velmora::System::DriveWidget;
using Velmora::System::MigrationDestDriveWidget;
using Velmora::System::PartitionWidget;

namespace {

constexpr qint64 TiB = 1024 * GiB;

// Waits for the layout that the last change scheduled.
void settle(DriveWidget& widget)
{
    QSignalSpy layouts(&widget, &DriveWidget::layoutUpdated);
    QVERIFY(layouts.wait(1000));
}

// The boxes that are on the bar, left to right, as "left+width".
QStringList boxes(const DriveWidget& widget)
{
    QMap<int, QString> byLeft;
    for (const PartitionWidget* box : widget.partitionWidgets()) {
        if (!box->isHidden())
            byLeft.insert(box->x(), QStringLiteral("%1+%2").arg(box->x()).arg(box->width()));
    }
    return byLeft.values();
}

} // namespace

class TestMigrationWidgets : public QObject
{
    Q_OBJECT

private slots:
    void layout_data()
    {
        QTest::addColumn<QList<qint64>>("sizes");
        QTest::addColumn<bool>("showFreeSpace");
        QTest::addColumn<int>("width");
        QTest::addColumn<QStringList>("expected");

        // On a 1 TiB drive; W = 839 + 1 - 80 = 760 pixels are shared by size, 1 MiB gets 0 of them.
        QTest::newRow("1 MiB") << QList<qint64>{MiB, 512 * GiB} << false << 839 << QStringList{"0+40", "40+420"};
        QTest::newRow("unused space shown") << QList<qint64>{512 * GiB} << true << 841 << QStringList{"0+421", "421+421"};
        QTest::newRow("unused space hidden") << QList<qint64>{512 * GiB} << false << 801 << QStringList{"0+421"};
        QTest::newRow("extended container only") << QList<qint64>{-512 * GiB} << false << 600 << QStringList{};
    }

    void layout()
    {
        QFETCH(QList<qint64>, sizes);
        QFETCH(bool, showFreeSpace);
        QFETCH(int, width);
        QFETCH(QStringList, expected);
        const std::unique_ptr<Drive> source(PlanBuilder::drive(1, TiB));
        for (int i = 0; i < sizes.size(); ++i)
            add(source.get(), i + 1, sizes[i] < 0 ? Extended : Data, qAbs(sizes[i]), 0);

        DriveWidget widget;
        widget.setShowFreeSpace(showFreeSpace);
        widget.setDrive(source.get());
        widget.resize(width, DriveWidget::FixedHeight);
        settle(widget);
        QCOMPARE(boxes(widget), expected);
        QCOMPARE(widget.minimumWidth(), DriveWidget::BoxMinimumWidth * expected.size());
    }

    // The usage bar ends at the frame however much the service says is in use.
    void usageBarStaysInFrame_data()
    {
        QTest::addColumn<qint64>("used");
        QTest::addColumn<bool>("innerEdgeLit");
        QTest::newRow("half") << 128 * GiB << false;
        QTest::newRow("full") << 256 * GiB << true;
        QTest::newRow("more than the size") << 300 * GiB << true;
    }

    void usageBarStaysInFrame()
    {
        QFETCH(qint64, used);
        QFETCH(bool, innerEdgeLit);
        const std::unique_ptr<Drive> source(PlanBuilder::drive(1, 256 * GiB + MiB));
        add(source.get(), 1, Data, 256 * GiB, used);
        DriveWidget widget;
        widget.setDrive(source.get());
        widget.resize(600, DriveWidget::FixedHeight);
        settle(widget);
        const QRect box = widget.partitionWidgets().first()->geometry();
        const QImage image = widget.grab().toImage();
        const auto lit = [&](int x) { return QColor(image.pixel(x, box.bottom() - 9)).blue() > 200; };
        QCOMPARE(lit(box.right() - 4), innerEdgeLit);
        QVERIFY(!lit(box.right() - 2));
    }

    // Switching a partition off replans every size; the bar follows once, without the partition.
    void replanningIsOneLayoutWithoutTheSwitchedOffPartition()
    {
        const std::unique_ptr<Drive> source(exampleSource());
        const std::unique_ptr<MigrationDestDrive> destination(plan(*source, ExampleCapacity));
        destination->resizePartitionsToFitDrive();
        MigrationDestDriveWidget widget;
        widget.setDrive(destination.get());
        widget.resize(900, DriveWidget::FixedHeight);
        settle(widget);

        QSignalSpy layouts(&widget, &DriveWidget::layoutUpdated);
        const Bytes sizeBefore = destination->partition(3)->size();
        destination->migrationPartition(4)->setMigrate(false);
        QVERIFY(layouts.wait(1000));
        QTest::qWait(3 * DriveWidget::LayoutDelayMs);
        QCOMPARE(layouts.count(), 1);
        QVERIFY(destination->partition(3)->size() > sizeBefore);

        QCOMPARE(widget.minimumWidth(), 4 * DriveWidget::BoxMinimumWidth);
        // The plan fills the disk, so the last box ends at the bar's end only if the hidden one
        // took no place before it.
        const QStringList placed = boxes(widget);
        QCOMPARE(placed.size(), 4);
        const QStringList last = placed.last().split('+');
        QVERIFY2(qAbs(last[0].toInt() + last[1].toInt() - 901) <= 1, qPrintable(placed.join(' ')));
    }

    // However narrow a box, its caption is whole phrases that fit, an ellipsis, or the letter alone.
    void captionShowsWholeWordsThatFit_data()
    {
        QTest::addColumn<int>("barWidth");
        QTest::addColumn<QString>("expected");
        QTest::newRow("narrowest") << 39 << "C:";
        for (int width : {90, 130, 170, 230, 300})
            QTest::newRow(qPrintable(QString::number(width))) << width << QString();
        QTest::newRow("wide") << 900 << "C: [System Data]\n200.00 GB / 512.00 GB";
    }

    void captionShowsWholeWordsThatFit()
    {
        QFETCH(int, barWidth);
        QFETCH(QString, expected);
        const std::unique_ptr<Drive> source(PlanBuilder::drive(1, TiB));
        add(source.get(), 1, Data, 512 * GiB, 200 * GiB, QStringLiteral("C:"))->setLabel(QStringLiteral("System Data"));
        DriveWidget widget;
        widget.setDrive(source.get());
        widget.resize(barWidth, DriveWidget::FixedHeight);
        settle(widget);
        PartitionWidget* box = widget.partitionWidgets().first();
        box->grab();
        const QStringList clean = {"C: [System Data]", "C: [System…", "C:", "200.00 GB / 512.00 GB", "200.00 GB…"};
        for (const QString& line : box->shownCaption().split('\n', Qt::SkipEmptyParts)) {
            QVERIFY2(QFontMetricsF(box->font()).horizontalAdvance(line) < box->width() - 12, qPrintable(line));
            QVERIFY2(clean.contains(line), qPrintable(line));
        }
        if (!expected.isEmpty())
            QCOMPARE(box->shownCaption(), expected);
    }

    void pressIsIgnoredReleaseClicks()
    {
        const std::unique_ptr<Drive> source(exampleSource());
        DriveWidget widget;
        widget.setDrive(source.get());
        QSignalSpy clicks(&widget, &DriveWidget::clicked);
        PartitionWidget* box = widget.partitionWidgets().value(3);
        QTest::mousePress(box, Qt::LeftButton);
        QCOMPARE(clicks.count(), 0);
        QTest::mouseRelease(box, Qt::LeftButton);
        QCOMPARE(clicks.count(), 1);
    }
};

KESTRAVIN_GUI_TEST_MAIN(TestMigrationWidgets)
#include "tst_migrationwidgets.moc"
