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

} // namespace

class TestMigration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void progress_data();
    void progress();
};

void TestMigration::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
}

void TestMigration::progress_data()
{
    QTest::addColumn<qint64>("copied");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<double>("expected");

    QTest::newRow("nothing to copy") << qint64(5) << qint64(0) << 0.0;
    QTest::newRow("a quarter") << 10 * GiB << 40 * GiB << 0.25;
    QTest::newRow("beyond the total") << 50 * GiB << 40 * GiB << 1.0;
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

KESTRAVIN_TEST_SUITE(TestMigration)
#include "tst_migration.moc"
