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
    void workedExampleLogsTheLedger();
    void failingPlans_data();
    void failingPlans();
    void partitionLeftBehindKeepsItsSizeAndSortsLast();
    void togglingReplansTheWholeDrive();
    void freeSpaceAndMaximumSizes();
    void partitionLimits_data();
    void partitionLimits();
    void sizeStatus_data();
    void sizeStatus();
    void logicalAllowance_data();
    void logicalAllowance();
    void extendedWithoutMarkedChildrenIsDropped();
    void createdIdsLastMatchWins();
    void initializationReachesTheDrive();
    void startsWithoutPartitionsAndCopiesTheDrive();
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

void TestMigrationDestDrive::workedExampleLogsTheLedger()
{
    QScopedPointer<Drive> source(exampleSource());
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, ExampleCapacity));
    LogCapture log;
    QVERIFY(plan->resizePartitionsToFitDrive());

    const QStringList expected = {
        QStringLiteral("Starting migration destination drive partition resizing..."),
        QStringLiteral("Available drive size: %1").arg(Bytes(qint64(256054222848)).toString()),
        QStringLiteral("Unallocated partition space: %1").arg(Bytes(461416 * MiB).toString()),
        QStringLiteral("Unallocated partition space (after system required): %1").arg(Bytes(460800 * MiB).toString()),
        QStringLiteral("Available drive size (after system required): %1").arg(Bytes(qint64(255408300032)).toString()),
        QStringLiteral("OS scale factor: 0.528594"),
        QStringLiteral("OS partition (ID: 3): new size 79.29 GB [original: 150.00 GB]"),
        QStringLiteral("Unallocated partition space (after OS): %1").arg(Bytes(307200 * MiB).toString()),
        QStringLiteral("Available drive size (after OS): %1").arg(Bytes(qint64(170271268864)).toString()),
        QStringLiteral("DATA scale factor: 0.528592"),
        QStringLiteral("Data partition (ID: 4): new size 158.58 GB [original: 300.00 GB]"),
        QStringLiteral("Unallocated partition space (after Data): 0.00 B"),
        QStringLiteral("Available drive size (after Data): 0.00 B"),
        QStringLiteral("Updated partition size (ID: 1): 100.00 MB"),
        QStringLiteral("Updated partition size (ID: 2): 16.00 MB"),
        QStringLiteral("Updated partition size (ID: 3): 79.29 GB"),
        QStringLiteral("Updated partition size (ID: 4): 158.58 GB"),
        QStringLiteral("Updated partition size (ID: 5): 500.00 MB"),
        QStringLiteral("Unused drive space: 4.34 MB"),
        QStringLiteral("...migration destination drive partition resizing finished."),
    };
    QCOMPARE(log.messages(Velmora::Logger::Debug), expected);
    QVERIFY(log.messages(Velmora::Logger::Error).isEmpty());
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

void TestMigrationDestDrive::partitionLeftBehindKeepsItsSizeAndSortsLast()
{
    QScopedPointer<Drive> source(exampleSource());
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, ExampleCapacity));
    MigrationDestPartition* data = plan->migrationPartition(4);
    data->setMigrate(false);

    QCOMPARE(data->size().value(), 300 * GiB);
    QCOMPARE(data->offset().value(), std::numeric_limits<qint64>::max());
    QCOMPARE(data->sizeStatus(), MigrationDestPartition::SizeNotMigrated);
    QVERIFY(data->fits());
    // Recovery follows C: directly now.
    MigrationDestPartition* os = plan->migrationPartition(3);
    QCOMPARE(plan->migrationPartition(5)->offset().value(), os->offset().value() + os->size().value());
    QCOMPARE(plan->migratedPartitionCount(), 4);
}

void TestMigrationDestDrive::togglingReplansTheWholeDrive()
{
    QScopedPointer<Drive> source(exampleSource());
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, ExampleCapacity));
    QVERIFY(plan->resizePartitionsToFitDrive());
    MigrationDestPartition* os = plan->migrationPartition(3);
    os->setSize(60 * GiB);
    // A hand-set size moves everything behind it at once.
    QCOMPARE(plan->migrationPartition(4)->offset().value(), 117 * MiB + 60 * GiB);

    LogCapture log;
    plan->migrationPartition(4)->setMigrate(false);
    QCOMPARE(log.count(QStringLiteral("Starting migration destination drive partition resizing...")), 1);
    // The typed size is gone: C: takes the drive without D:.
    QVERIFY(os->size() > 200 * GiB);
    QCOMPARE(os->size().value() % MiB, qint64(0));

    plan->migrationPartition(4)->setMigrate(true);
    QCOMPARE(os->size().value(), 81193 * MiB);
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
    QTest::newRow("recovery") << int(Recovery) << 400 * MiB << 100 * MiB << 400 * MiB << 400 * MiB;
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

void TestMigrationDestDrive::sizeStatus_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<int>("status");

    const qint64 efi = 100 * MiB;
    QTest::newRow("efi unchanged") << int(Efi) << efi << int(MigrationDestPartition::SizeOk);
    QTest::newRow("efi + 1,048,575") << int(Efi) << efi + 1048575 << int(MigrationDestPartition::SizeOk);
    QTest::newRow("efi + 1,048,576") << int(Efi) << efi + 1048576 << int(MigrationDestPartition::SizeDoesNotFit);
    QTest::newRow("efi - 1,048,576") << int(Efi) << efi - 1048576 << int(MigrationDestPartition::SizeDoesNotFit);
    // Data with 40 GiB used: minimum 41,780 MiB, recommended 45,057 MiB.
    QTest::newRow("data below used") << int(Data) << 39 * GiB << int(MigrationDestPartition::SizeDoesNotFit);
    QTest::newRow("data below minimum") << int(Data) << 41779 * MiB << int(MigrationDestPartition::SizeBelowMinimum);
    QTest::newRow("data at minimum") << int(Data) << 41780 * MiB << int(MigrationDestPartition::SizeBelowRecommended);
    QTest::newRow("data at recommended") << int(Data) << 45057 * MiB << int(MigrationDestPartition::SizeOk);
    QTest::newRow("os below used + 10 GiB") << int(Os) << 50 * GiB - MiB << int(MigrationDestPartition::SizeBelowMinimum);
    QTest::newRow("os below used + 30 GiB") << int(Os) << 70 * GiB - MiB << int(MigrationDestPartition::SizeBelowRecommended);
}

void TestMigrationDestDrive::sizeStatus()
{
    QFETCH(int, kind);
    QFETCH(qint64, size);
    QFETCH(int, status);

    QScopedPointer<Drive> source(drive(1, 512 * GiB));
    const qint64 original = kind == Efi ? 100 * MiB : 300 * GiB;
    Partition* p = add(source.data(), 1, static_cast<Kind>(kind), original, kind == Efi ? 30 * MiB : 40 * GiB,
        QStringLiteral("E:"));
    MigrationDestPartition planned(*p);
    planned.setSize(size);
    QCOMPARE(int(planned.sizeStatus()), status);
    QCOMPARE(planned.fits(), status < MigrationDestPartition::SizeCalculating);

    planned.calculateFilteredFilesSize();
    QCOMPARE(planned.sizeStatus(), MigrationDestPartition::SizeCalculating);
    QVERIFY(!planned.fits());
    planned.setMigrate(false);
    QCOMPARE(planned.sizeStatus(), MigrationDestPartition::SizeNotMigrated);
}

void TestMigrationDestDrive::logicalAllowance_data()
{
    QTest::addColumn<int>("logicalCount");
    QTest::addColumn<qint64>("allowance");

    QTest::newRow("two") << 2 << MiB;
    QTest::newRow("sixteen") << 16 << MiB;
    QTest::newRow("seventeen") << 17 << 2 * MiB;
}

void TestMigrationDestDrive::logicalAllowance()
{
    QFETCH(int, logicalCount);
    QFETCH(qint64, allowance);

    QScopedPointer<Drive> source(drive(1, 512 * GiB, false));
    add(source.data(), 1, Data, 10 * GiB, 2 * GiB, QStringLiteral("C:"));
    add(source.data(), 2, Extended, logicalCount * GiB, 0);
    for (int i = 0; i < logicalCount; ++i)
        add(source.data(), 5 + i, Logical, GiB, 100 * MiB, QStringLiteral("L%1:").arg(i));
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, 512 * GiB));
    QVERIFY(plan->resizePartitionsToFitDrive());

    qint64 sum = 0;
    qint64 firstOffset = std::numeric_limits<qint64>::max();
    MigrationDestPartition* last = nullptr;
    for (int i = 0; i < logicalCount; ++i) {
        MigrationDestPartition* p = plan->migrationPartition(5 + i);
        sum += p->size().value();
        firstOffset = qMin(firstOffset, p->offset().value());
        if (!last || p->offset() > last->offset())
            last = p;
    }
    const qint64 lastSize = last->size().value();
    int replans = 0;
    connect(last, &Partition::dataChanged, this, [&replans] { ++replans; });

    LogCapture log;
    plan->resizeExtendedPartition();
    MigrationDestPartition* extended = plan->migrationPartition(2);
    QCOMPARE(extended->size().value(), sum);
    QCOMPARE(extended->offset().value(), firstOffset);
    QCOMPARE(last->size().value(), lastSize - allowance);
    QCOMPARE(replans, 0);
    QVERIFY(extended->migrate());
    QCOMPARE(log.messages(Velmora::Logger::Warning),
        QStringList({QStringLiteral("Destination drive contains extended partition"),
            QStringLiteral("Extended partiton was resized to %1, offset %2")
                .arg(Bytes(sum).toString(Bytes::MB), Bytes(firstOffset).toString(Bytes::MB))}));
    QCOMPARE(log.count(QStringLiteral("Destination drive contains %1 logical partitions").arg(logicalCount)), 1);
}

void TestMigrationDestDrive::extendedWithoutMarkedChildrenIsDropped()
{
    QScopedPointer<Drive> source(drive(1, 512 * GiB, false));
    add(source.data(), 1, Data, 10 * GiB, 2 * GiB, QStringLiteral("C:"));
    add(source.data(), 2, Extended, 2 * GiB, 0);
    add(source.data(), 5, Logical, GiB, 100 * MiB, QStringLiteral("E:"));
    add(source.data(), 6, Logical, GiB, 100 * MiB, QStringLiteral("F:"));
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, 512 * GiB));
    plan->migrationPartition(5)->setMigrate(false);
    plan->migrationPartition(6)->setMigrate(false);

    LogCapture log;
    plan->resizeExtendedPartition();
    QVERIFY(!plan->migrationPartition(2)->migrate());
    QCOMPARE(log.count(QStringLiteral("Extended partition will not be migrated as no logical children selected")), 1);
    // The container's signals were blocked: no replanning.
    QCOMPARE(log.count(QStringLiteral("Starting migration destination drive partition resizing...")), 0);
}

void TestMigrationDestDrive::createdIdsLastMatchWins()
{
    QScopedPointer<Drive> source(exampleSource());
    add(source.data(), 6, Os, 20 * GiB, 10 * GiB, QStringLiteral("W:"));
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, 1024 * GiB));
    QCOMPARE(plan->bootPartitionCreatedId(), -1);
    QVERIFY(!plan->needsBootabilityFix());

    plan->migrationPartition(1)->setCreatedId(11);
    plan->migrationPartition(3)->setCreatedId(13);
    QCOMPARE(plan->bootPartitionCreatedId(), 11);
    // Partition 6 holds a system too, and it isn't created: the later match wins with -1.
    QCOMPARE(plan->osPartitionCreatedId(), -1);
    QVERIFY(!plan->needsBootabilityFix());
    plan->migrationPartition(6)->setCreatedId(16);
    QCOMPARE(plan->osPartitionCreatedId(), 16);
    QVERIFY(plan->needsBootabilityFix());
    QCOMPARE(plan->partitionByCreatedId(13), plan->migrationPartition(3));
    QCOMPARE(plan->partitionByCreatedId(42), nullptr);
    QVERIFY(plan->migrationPartition(3)->toString().startsWith(QStringLiteral("Migration partition\nId: 3\n")));
    QVERIFY(plan->migrationPartition(3)->toString().endsWith(QStringLiteral("\nCreated Id: 13")));
}

void TestMigrationDestDrive::initializationReachesTheDrive()
{
    QScopedPointer<Drive> source(exampleSource());
    QScopedPointer<MigrationDestDrive> plan(PlanBuilder::plan(*source, ExampleCapacity));
    QSignalSpy driveReady(plan.data(), &MigrationDestDrive::initialized);
    LogCapture log;
    for (int id = 1; id <= 5; ++id) {
        QVERIFY(!plan->allPartitionsInitialized());
        plan->migrationPartition(id)->markInitialized();
        plan->migrationPartition(id)->markInitialized();
    }
    QVERIFY(plan->allPartitionsInitialized());
    QCOMPARE(driveReady.count(), 1);
    QCOMPARE(log.count(QStringLiteral("Parttion initialized 3")), 1);
    QCOMPARE(log.count(QStringLiteral("Migration destination drive is now initialized")), 1);
}

void TestMigrationDestDrive::startsWithoutPartitionsAndCopiesTheDrive()
{
    QScopedPointer<Drive> real(drive(7, 500 * GiB, false, nullptr, QStringLiteral("BRANTEL X1 SATA Disk Device")));
    MigrationDestDrive plan(*real);
    QCOMPARE(plan.partitionCount(), 0);
    QCOMPARE(plan.id(), 7);
    QCOMPARE(plan.capacity().value(), 500 * GiB);
    QCOMPARE(plan.model(), real->model());
    QCOMPARE(plan.serialNumber(), real->serialNumber());
    QVERIFY(!plan.isGpt());
}

KESTRAVIN_TEST_MAIN(TestMigrationDestDrive)
#include "tst_migrationdestdrive.moc"
