#include "PlanBuilder.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QScopedPointer>
#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace PlanBuilder;

class TestMigrationDestDrive : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void workedExampleToTheByte();
    void failingPlans_data();
    void failingPlans();
    void freeSpaceAndMaximumSizes();
    void partitionLimits_data();
    void partitionLimits();
};

void TestMigrationDestDrive::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
}

void TestMigrationDestDrive::workedExampleToTheByte()
{
    QScopedPointer<Drive> source(exampleSource());
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, ExampleCapacity));

    QVERIFY(plan->resizePartitionsToFitDrive());

    const QList<qint64> sizes = {100 * MiB, 16 * MiB, 81193 * MiB, 162384 * MiB, 500 * MiB};
    const QList<qint64> offsets = {1 * MiB, 101 * MiB, 117 * MiB, 81310 * MiB, 243694 * MiB};
    for (int id = 1; id <= 5; ++id) {
        MigrationDestPartition* p = plan->migrationPartition(id);
        QCOMPARE(p->size().value(), sizes.at(id - 1));
        QCOMPARE(p->offset().value(), offsets.at(id - 1));
        QCOMPARE(p->originalSize().value(), source->partition(id)->size().value());
        QVERIFY2(p->fits(), qPrintable(QString::number(p->sizeStatus())));
    }
    const qint64 end = plan->migrationPartition(5)->end().value();
    QCOMPARE(end, qint64(256055967744));
    QCOMPARE(ExampleCapacity - end, qint64(4546560));
    QCOMPARE(plan->migrationPartition(3)->minimumSize().value(), 51200 * MiB);
    QCOMPARE(plan->migrationPartition(4)->minimumSize().value(), 125338 * MiB);
    QCOMPARE(plan->migratedPartitionCount(), 5);
    QVERIFY(plan->allPartitionsFit());
    QCOMPARE(plan->usedSizeOfMigratedPartitions().value(), 30 * MiB + 40 * GiB + 120 * GiB + 400 * MiB);
}

void TestMigrationDestDrive::failingPlans_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<QString>("errorLine");
    QTest::addColumn<int>("zeroSizeWarnings");

    QTest::newRow("drive smaller than the system partitions")
        << "tiny" << "Partitions will not fit into destination drive" << 2;
    QTest::newRow("nothing marked") << "none" << "No partitions marked for migration" << 0;
    QTest::newRow("200 GiB used on a 128 GiB drive") << "full-os" << "Partitions will not fit into destination drive" << 1;
}

void TestMigrationDestDrive::failingPlans()
{
    QFETCH(QString, scenario);
    QFETCH(QString, errorLine);
    QFETCH(int, zeroSizeWarnings);

    QScopedPointer<Drive> source(exampleSource());
    qint64 capacity = ExampleCapacity;
    if (scenario == QLatin1String("tiny"))
        capacity = 500 * MiB;
    if (scenario == QLatin1String("full-os")) {
        source->partition(3)->setSize(250 * GiB);
        source->partition(3)->setUsed(200 * GiB);
        capacity = 128 * GiB;
    }
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, capacity));
    if (scenario == QLatin1String("none")) {
        for (int id = 1; id <= 5; ++id)
            plan->migrationPartition(id)->setMigrate(false);
    }

    QList<qint64> sizesBefore;
    for (int id = 1; id <= 5; ++id)
        sizesBefore.append(plan->migrationPartition(id)->size().value());

    LogCapture log;
    QVERIFY(!plan->resizePartitionsToFitDrive());
    QCOMPARE(log.messages(Velmora::Logger::Error), QStringList{errorLine});
    QCOMPARE(log.count(QStringLiteral("Set partition size to 0.")), zeroSizeWarnings);

    if (scenario == QLatin1String("tiny")) {
        // 494 MiB to give: EFI and MSR keep theirs, recovery gets the remaining 378 MiB, the rest nothing.
        QCOMPARE(plan->migrationPartition(5)->size().value(), 378 * MiB);
        QCOMPARE(plan->migrationPartition(5)->sizeStatus(), MigrationDestPartition::SizeDoesNotFit);
        QCOMPARE(plan->migrationPartition(3)->size().value(), qint64(0));
        QCOMPARE(plan->migrationPartition(4)->size().value(), qint64(0));
    } else if (scenario == QLatin1String("none")) {
        QVERIFY(log.messages().contains(QStringLiteral("OS scale factor: 0")));
        QVERIFY(log.messages().contains(QStringLiteral("DATA scale factor: 0")));
        QCOMPARE(plan->migratedPartitionCount(), 0);
        // Partitions left behind keep whatever size they had.
        for (int id = 1; id <= 5; ++id)
            QCOMPARE(plan->migrationPartition(id)->size().value(), sizesBefore.at(id - 1));
    } else {
        MigrationDestPartition* os = plan->migrationPartition(3);
        QCOMPARE(os->minimumSize().value(), 210 * GiB);
        QVERIFY(os->size() < os->minimumSize());
        QVERIFY(!os->fits());
        QCOMPARE(plan->migrationPartition(4)->size().value(), qint64(0));
        QVERIFY(log.messages().contains(QStringLiteral("DATA scale factor: 0")));
    }
}

void TestMigrationDestDrive::freeSpaceAndMaximumSizes()
{
    QScopedPointer<Drive> source(exampleSource());
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, ExampleCapacity));
    QVERIFY(plan->resizePartitionsToFitDrive());
    // The plan overshoots the reserve by 696,320 bytes; free space stops at 0.
    QCOMPARE(plan->freeSpace().value(), qint64(0));

    MigrationDestPartition* os = plan->migrationPartition(3);
    MigrationDestPartition* data = plan->migrationPartition(4);
    QSignalSpy limits(data, &MigrationDestPartition::sizeLimitationsChanged);
    os->setSize(os->size().value() - 1000 * MiB);
    const qint64 free = ExampleCapacity - 6 * MiB - (244193 - 1000) * MiB;
    QCOMPARE(plan->freeSpace().value(), free);
    QCOMPARE(data->maxSize().value(), data->size().value() + free);
    QCOMPARE(os->maxSize().value(), os->size().value() + free);
    // What the system needs can never grow.
    QCOMPARE(plan->migrationPartition(1)->maxSize().value(), 100 * MiB);
    QVERIFY(limits.count() >= 1);
}

void TestMigrationDestDrive::partitionLimits_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<qint64>("used");
    QTest::addColumn<qint64>("allowedMin");
    QTest::addColumn<qint64>("minimum");
    QTest::addColumn<qint64>("recommended");

    QTest::newRow("data with 10 MiB used") << int(Data) << 10 * MiB << 100 * MiB << 100 * MiB << 100 * MiB;
    QTest::newRow("data with 1 GiB used") << int(Data) << GiB << 100 * MiB << 1045 * MiB << 1127 * MiB;
    QTest::newRow("os with 200 GiB used") << int(Os) << 200 * GiB << 100 * MiB << 210 * GiB << 230 * GiB;
    QTest::newRow("efi keeps its size") << int(Efi) << 30 * MiB + 5 << 100 * MiB << 31 * MiB << 31 * MiB;
}

void TestMigrationDestDrive::partitionLimits()
{
    QFETCH(int, kind);
    QFETCH(qint64, used);
    QFETCH(qint64, allowedMin);
    QFETCH(qint64, minimum);
    QFETCH(qint64, recommended);

    QScopedPointer<Drive> source(drive(1, 512 * GiB));
    const qint64 size = kind == Efi ? 100 * MiB : 300 * GiB;
    Partition* p = add(source.data(), 1, static_cast<Kind>(kind), size, used, QStringLiteral("E:"));
    MigrationDestPartition planned(*p);
    if (planned.isSystemRequired())
        allowedMin = size;
    QCOMPARE(planned.allowedMinSize().value(), allowedMin);
    QCOMPARE(planned.minimumSize().value(), minimum);
    QCOMPARE(planned.recommendedSize().value(), recommended);

    planned.setMaxSize(Bytes(qint64(1)));
    QCOMPARE(planned.maxSize().value(), planned.isSystemRequired() ? size : allowedMin);
}

KESTRAVIN_TEST_SUITE(TestMigrationDestDrive)
#include "tst_migrationdestdrive.moc"
