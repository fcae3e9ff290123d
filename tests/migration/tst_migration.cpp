#include "PlanBuilder.h"
#include "migration/FileSystemFilter.h"
#include "migration/Migration.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace PlanBuilder;
using Velmora::Migration::Migration;
using Velmora::Migration::MigrationStep;
namespace Steps = Velmora::Migration;

namespace {

// A machine with a system disk (1), an empty drive of the maker (2), a drive of the maker that
// holds a system (3) and an empty drive of another maker (4).
struct Machine {
    Machine()
        : manager(&system)
        , migration(&manager, &system)
    {
        system.addDrive(exampleSource(&system));
        system.addDrive(drive(2, 256 * GiB, true, &system, QStringLiteral("BRANTEL N1 NVMe")));
        Drive* busy = drive(3, 512 * GiB, true, &system, QStringLiteral("BRANTEL S3 SATA Disk Device"));
        add(busy, 1, Os, 100 * GiB, 20 * GiB, QStringLiteral("F:"));
        system.addDrive(busy);
        system.addDrive(drive(4, 256 * GiB, true, &system, QStringLiteral("Orvane HD")));
    }

    Velmora::System::System system;
    Velmora::System::SystemManager manager;
    Migration migration;
};

QList<int> idsOf(const QList<Drive*>& drives)
{
    QList<int> ids;
    for (const Drive* d : drives)
        ids.append(d->id());
    return ids;
}

} // namespace

class TestMigration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void stepNames_data();
    void stepNames();
    void settingTheStep_data();
    void settingTheStep();
    void progress_data();
    void progress();
    void candidates();
    void choosingBuildsThePlan();
    void choosingAgainStartsAnew();
    void choosingNoDriveDeletesThePlan();
    void unpluggingTheSourceClearsIt();
    void startSetsTheTotalAndAsksTheController();
    void startFromAnEndedRunIsRefused();
    void cancelTwice();
    void resetToDefaults();
};

void TestMigration::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
}

void TestMigration::stepNames_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<QString>("name");
    const QStringList names = {"Idle", "Initializing destination disk", "Creating partitions", "Formatting partitions",
        "Copying files", "Fixing bootability", "Finished", "Failed", "Canceled"};
    for (int i = 0; i < names.size(); ++i)
        QTest::newRow(qPrintable(names.at(i))) << i << names.at(i);
    QTest::newRow("9") << 9 << "Out of range";
    QTest::newRow("-1") << -1 << "Out of range";
}

void TestMigration::stepNames()
{
    QFETCH(int, step);
    QFETCH(QString, name);
    QCOMPARE(Steps::migrationStepName(step), name);
}

void TestMigration::settingTheStep_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("signalCount");
    QTest::addColumn<bool>("refused");

    QTest::newRow("idle to cleaning") << int(Steps::Idle) << int(Steps::InitializingDestinationDisk)
                                      << int(Steps::InitializingDestinationDisk) << 1 << false;
    QTest::newRow("same step") << int(Steps::CreatingPartitions) << int(Steps::CreatingPartitions)
                               << int(Steps::CreatingPartitions) << 0 << false;
    QTest::newRow("finished refuses copying") << int(Steps::Finished) << int(Steps::CopyingFiles) << int(Steps::Finished)
                                              << 0 << true;
    QTest::newRow("canceled refuses failed") << int(Steps::Canceled) << int(Steps::Failed) << int(Steps::Canceled) << 0
                                             << true;
    QTest::newRow("failed refuses itself") << int(Steps::Failed) << int(Steps::Failed) << int(Steps::Failed) << 0 << true;
    QTest::newRow("canceled back to idle") << int(Steps::Canceled) << int(Steps::Idle) << int(Steps::Idle) << 1 << false;
}

void TestMigration::settingTheStep()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(int, result);
    QFETCH(int, signalCount);
    QFETCH(bool, refused);

    Machine machine;
    machine.migration.setMigrationStep(static_cast<MigrationStep>(from));
    QSignalSpy changed(&machine.migration, &Migration::migrationStepChanged);
    LogCapture log;
    machine.migration.setMigrationStep(static_cast<MigrationStep>(to));

    QCOMPARE(int(machine.migration.migrationStep()), result);
    QCOMPARE(changed.count(), signalCount);
    QStringList expected = {QStringLiteral("Change migration step: %1 -> %2")
                                .arg(Steps::migrationStepName(from), Steps::migrationStepName(to))};
    if (refused) {
        expected << QStringLiteral("Cannot set migration step '%1' if migration has finished.")
                        .arg(Steps::migrationStepName(to));
    }
    QCOMPARE(log.messages(), expected);
}

void TestMigration::progress_data()
{
    QTest::addColumn<qint64>("copied");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<double>("expected");

    QTest::newRow("nothing to copy") << qint64(5) << qint64(0) << 0.0;
    QTest::newRow("a quarter") << 10 * GiB << 40 * GiB << 0.25;
    QTest::newRow("beyond the total") << 50 * GiB << 40 * GiB << 1.0;
    QTest::newRow("nothing copied") << qint64(0) << 40 * GiB << 0.0;
}

void TestMigration::progress()
{
    QFETCH(qint64, copied);
    QFETCH(qint64, total);
    QFETCH(double, expected);

    Machine machine;
    machine.migration.setSourceDriveId(1);
    machine.migration.setDestDriveId(2);
    QSignalSpy progressed(&machine.migration, &Migration::progressChanged);
    // The total is what the plan will copy: the used space of C: alone, or nothing at all.
    MigrationDestDrive* plan = machine.migration.destinationDrive();
    plan->migrationPartition(3)->setUsed(Bytes(total));
    for (int id : {1, 2, 4, 5})
        plan->migrationPartition(id)->setMigrate(false);
    if (total == 0)
        plan->migrationPartition(3)->setMigrate(false);
    QSignalSpy started(&machine.migration, &Migration::start);
    machine.migration.startMigration();
    QCOMPARE(started.count(), 1);
    QCOMPARE(machine.migration.totalSize().value(), total);
    machine.migration.setCopiedSize(Bytes(copied));
    machine.migration.setCopiedSize(Bytes(copied));
    QCOMPARE(progressed.count(), 2);
    QCOMPARE(machine.migration.progress(), expected);
}

void TestMigration::candidates()
{
    Machine machine;
    QCOMPARE(idsOf(machine.migration.sourceDrives()), QList<int>({1, 2, 3, 4}));
    QCOMPARE(idsOf(machine.migration.destinationDrives()), QList<int>({2}));
}

void TestMigration::choosingBuildsThePlan()
{
    Machine machine;
    QSignalSpy paths(&machine.migration, &Migration::requestSystemPaths);
    QSignalSpy listings(&machine.migration, &Migration::requestFileSystemData);
    QSignalSpy sizes(&machine.migration, &Migration::requestFilteredFilesSize);
    QSignalSpy destinationChanged(&machine.migration, &Migration::destinationDriveChanged);

    machine.migration.setDestDriveId(2);
    QCOMPARE(paths.count(), 0);
    QVERIFY(machine.migration.destinationDrive());
    QCOMPARE(machine.migration.destinationDrive()->partitionCount(), 0);

    LogCapture log;
    machine.migration.setSourceDriveId(1);
    MigrationDestDrive* plan = machine.migration.destinationDrive();
    QCOMPARE(plan->parent(), &machine.migration);
    QCOMPARE(plan->partitions().keys(), QList<int>({1, 2, 3, 4, 5}));
    QCOMPARE(paths.count(), 5);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(paths.at(i), QVariantList({1, i + 1}));
    QCOMPARE(log.count(QStringLiteral("Starting migration destination drive partition resizing...")), 1);
    // 256 GiB for a source of 450 GiB: C: shrinks to its share.
    QVERIFY(plan->migrationPartition(3)->size() < plan->migrationPartition(3)->originalSize());
    QVERIFY(plan->allPartitionsFit());
    QCOMPARE(destinationChanged.count(), 1);

    // Only partitions with a letter pass their filters' traffic on.
    plan->migrationPartition(3)->fileSystemFilter()->requestRootData();
    plan->migrationPartition(1)->fileSystemFilter()->requestRootData();
    QCOMPARE(listings.count(), 1);
    QCOMPARE(listings.at(0).at(0).toString(), QStringLiteral("C:"));
    plan->migrationPartition(4)->calculateFilteredFilesSize();
    plan->migrationPartition(2)->calculateFilteredFilesSize();
    QCOMPARE(sizes.count(), 1);
    QCOMPARE(sizes.at(0).at(0).toInt(), 4);
}

void TestMigration::choosingAgainStartsAnew()
{
    Machine machine;
    machine.migration.setSourceDriveId(1);
    machine.migration.setDestDriveId(2);
    QPointer<MigrationDestDrive> first = machine.migration.destinationDrive();
    first->migrationPartition(4)->setMigrate(false);

    machine.migration.setDestDriveId(2);
    QVERIFY(first);
    QCOMPARE(first->parent(), &machine.migration);
    QVERIFY(machine.migration.destinationDrive() != first.data());
    QVERIFY(machine.migration.destinationDrive()->migrationPartition(4)->migrate());
}

void TestMigration::choosingNoDriveDeletesThePlan()
{
    Machine machine;
    machine.migration.setSourceDriveId(1);
    machine.migration.setDestDriveId(2);
    QPointer<MigrationDestDrive> plan = machine.migration.destinationDrive();
    QSignalSpy destinationChanged(&machine.migration, &Migration::destinationDriveChanged);
    machine.migration.setDestDriveId(-1);
    QVERIFY(!plan);
    QCOMPARE(machine.migration.destinationDrive(), nullptr);
    QCOMPARE(destinationChanged.count(), 1);
}

void TestMigration::unpluggingTheSourceClearsIt()
{
    Machine machine;
    machine.migration.setSourceDriveId(4);
    machine.migration.setDestDriveId(2);
    QStringList order;
    connect(&machine.migration, &Migration::sourceDriveChanged, this, [&order] { order << "source"; });
    connect(&machine.migration, &Migration::destinationDriveChanged, this, [&order] { order << "destination"; });
    connect(&machine.migration, &Migration::driveListChanged, this, [&order] { order << "list"; });

    machine.system.removeDrive(4);
    QCOMPARE(order, QStringList({"source", "list"}));
    QCOMPARE(machine.migration.sourceDrive(), nullptr);
    QVERIFY(machine.migration.destinationDrive());

    order.clear();
    machine.system.removeDrive(2);
    QCOMPARE(order, QStringList({"destination", "list"}));
    QCOMPARE(machine.migration.destinationDrive(), nullptr);
}

void TestMigration::startSetsTheTotalAndAsksTheController()
{
    Machine machine;
    machine.migration.setSourceDriveId(1);
    machine.migration.setDestDriveId(2);
    machine.migration.setCopiedSize(Bytes(77));
    machine.migration.destinationDrive()->migrationPartition(4)->setMigrate(false);
    QSignalSpy started(&machine.migration, &Migration::start);
    QSignalSpy progressed(&machine.migration, &Migration::progressChanged);

    machine.migration.startMigration();
    QCOMPARE(started.count(), 1);
    QCOMPARE(progressed.count(), 0);
    QCOMPARE(machine.migration.copiedSize().value(), qint64(0));
    QCOMPARE(machine.migration.totalSize().value(), 30 * MiB + 40 * GiB + 400 * MiB);
}

void TestMigration::startFromAnEndedRunIsRefused()
{
    Machine machine;
    machine.migration.setSourceDriveId(1);
    machine.migration.setDestDriveId(2);
    machine.migration.setMigrationStep(Steps::Finished);
    QSignalSpy failed(&machine.migration, &Migration::migrationFailed);
    QSignalSpy started(&machine.migration, &Migration::start);
    LogCapture log;

    machine.migration.startMigration();
    QCOMPARE(failed.count(), 1);
    QCOMPARE(failed.at(0).at(0).toString(), QStringLiteral("INVALID STATE"));
    QCOMPARE(started.count(), 0);
    QCOMPARE(machine.migration.migrationStep(), Steps::Finished);
    QCOMPARE(log.messages(Velmora::Logger::Error),
        QStringList{QStringLiteral("Trying to start migration in incorrect state (Finished).")});
}

void TestMigration::cancelTwice()
{
    Machine machine;
    QSignalSpy cancelled(&machine.migration, &Migration::cancel);
    machine.migration.cancelMigration();
    QCOMPARE(cancelled.count(), 1);
    // The controller sets the step; once it is Canceled, a second cancel only warns.
    machine.migration.setMigrationStep(Steps::Canceled);
    LogCapture log;
    machine.migration.cancelMigration();
    QCOMPARE(cancelled.count(), 1);
    QCOMPARE(log.messages(), QStringList{QStringLiteral("Migration is already in canceled state")});
}

void TestMigration::resetToDefaults()
{
    Machine machine;
    machine.migration.setSourceDriveId(1);
    machine.migration.setDestDriveId(2);
    machine.migration.startMigration();
    machine.migration.setMigrationStep(Steps::Failed);
    QPointer<MigrationDestDrive> plan = machine.migration.destinationDrive();
    QSignalSpy stepChanged(&machine.migration, &Migration::migrationStepChanged);
    LogCapture log;

    machine.migration.resetToDefaults();
    QCOMPARE(machine.migration.migrationStep(), Steps::Idle);
    QVERIFY(!plan);
    QCOMPARE(machine.migration.sourceDrive(), nullptr);
    QCOMPARE(machine.migration.totalSize().value(), qint64(0));
    QCOMPARE(machine.migration.copiedSize().value(), qint64(0));
    QCOMPARE(stepChanged.count(), 0);
    QVERIFY(log.messages().isEmpty());
}

KESTRAVIN_TEST_MAIN(TestMigration)
#include "tst_migration.moc"
