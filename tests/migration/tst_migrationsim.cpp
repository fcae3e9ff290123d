// A whole migration against the simulated service process: the plan is made from its default
// machine onto its empty NVMe drive, carried out to the end, and the drive list that the program
// reads afterwards shows the planned partitions on the destination.

#include "SimulatorProcess.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "logger/Logger.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/Partition.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QMap>
#include <QSignalSpy>
#include <QTest>

using Velmora::Communication::Dispatcher;
using Velmora::Communication::NamedPipeClient;
using Velmora::Message::Message;
using Velmora::System::Drive;
using Velmora::System::MigrationDestDrive;
using Velmora::System::MigrationDestPartition;
using Velmora::System::Partition;
namespace Steps = Velmora::Migration;

namespace {

// Offset to size of every real partition of a drive.
QMap<qint64, qint64> layoutOf(const Drive& drive)
{
    QMap<qint64, qint64> layout;
    for (const Partition* p : drive.partitions()) {
        if (p->type() != Partition::UnusedSpace)
            layout.insert(p->offset().value(), p->size().value());
    }
    return layout;
}

} // namespace

class TestMigrationSim : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void defaultMachineOntoItsEmptyNvme();
};

void TestMigrationSim::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
    qRegisterMetaType<Message::MessageType>();
}

void TestMigrationSim::defaultMachineOntoItsEmptyNvme()
{
    SimulatorProcess service;
    QVERIFY2(service.start(), qPrintable(service.output() + service.errorOutput()));

    Velmora::System::System system;
    Velmora::System::SystemManager manager(&system);
    Velmora::Migration::MigrationController controller(&manager, &system);
    NamedPipeClient client;
    client.setServerName(service.name());
    Dispatcher dispatcher;
    connect(&client, &NamedPipeClient::connectedToServer, &dispatcher, &Dispatcher::clientConnected);
    connect(&client, &NamedPipeClient::messageReceived, &dispatcher, &Dispatcher::dispatchMessage);
    connect(&dispatcher, &Dispatcher::sendMessageToClient, &client, &NamedPipeClient::sendMessage);
    dispatcher.registerHandler(&manager);
    dispatcher.registerHandler(&controller);
    client.connectToServer();

    Velmora::Migration::Migration* model = controller.migration();
    // The system partition is known once the machine's summary has come after the drive list.
    QTRY_VERIFY_WITH_TIMEOUT(system.drive(0) && system.drive(0)->hasOperatingSystem(), 10000);
    const QList<Drive*> targets = model->destinationDrives();
    QCOMPARE(targets.size(), 1);
    const int targetId = targets.first()->id();
    QVERIFY(layoutOf(*targets.first()).isEmpty());

    model->setSourceDriveId(0);
    model->setDestDriveId(targetId);
    MigrationDestDrive* plan = model->destinationDrive();
    QTRY_VERIFY_WITH_TIMEOUT(plan->allPartitionsInitialized(), 10000);
    QVERIFY(plan->allPartitionsFit());
    QMap<qint64, qint64> planned;
    for (const Partition* p : plan->partitions()) {
        const auto* migrated = static_cast<const MigrationDestPartition*>(p);
        if (migrated->migrate() && migrated->isPlannable())
            planned.insert(migrated->offset().value(), migrated->size().value());
    }
    QVERIFY(planned.size() >= 4);

    QSignalSpy failed(model, &Velmora::Migration::Migration::migrationFailed);
    QSignalSpy finished(model, &Velmora::Migration::Migration::migrationFinished);
    model->startMigration();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count() + failed.count(), 1, 30000);
    QVERIFY2(failed.isEmpty(), failed.isEmpty() ? "" : qPrintable(failed.first().first().toString()));
    QCOMPARE(model->migrationStep(), Steps::Finished);
    QVERIFY(model->copiedSize().value() > 0);

    // The drive list read after the run shows the plan on the destination.
    QTRY_COMPARE_WITH_TIMEOUT(layoutOf(*system.drive(targetId)), planned, 10000);
}

KESTRAVIN_TEST_SUITE(TestMigrationSim)
#include "tst_migrationsim.moc"
