#include "SimulatorProcess.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "logger/Logger.h"
#include "performance/PerformanceCheck.h"
#include "performance/PerformanceResult.h"
#include "smart/SmartController.h"
#include "smart/SmartManager.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/DriveHealthStatus.h"
#include "system/FileCategories.h"
#include "system/Partition.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QSignalSpy>
#include <QTest>

using namespace Velmora;

// The drive model, SMART decoding, file categories and the speed test, fed by the simulated
// service over a real pipe, wired as the program wires them.
class TestMachineSim : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void listsTheScenariosDrives();
    void decodesSmartOfTheMakersDrives();
    void scansFileCategories();
    void measuresTheCurrentDrive();

private:
    System::Drive* driveWithModel(const QString& part) const;

    SimulatorProcess* m_simulator = nullptr;
    Communication::NamedPipeClient* m_client = nullptr;
    Communication::Dispatcher* m_dispatcher = nullptr;
    System::System* m_system = nullptr;
    System::SystemManager* m_systemManager = nullptr;
    Smart::SmartManager* m_smartManager = nullptr;
    Performance::PerformanceCheck* m_performance = nullptr;
};

void TestMachineSim::initTestCase()
{
    Logger::setConsoleEnabled(false);
    qRegisterMetaType<Message::Message::MessageType>();
    m_simulator = new SimulatorProcess({QStringLiteral("--benchmark-ms"), QStringLiteral("5"),
        QStringLiteral("--scan-step-ms"), QStringLiteral("10"), QStringLiteral("--scan-steps"), QStringLiteral("3")});
    QVERIFY2(m_simulator->start(), qPrintable(m_simulator->errorOutput()));

    m_client = new Communication::NamedPipeClient(this);
    m_client->setServerName(m_simulator->name());
    m_dispatcher = new Communication::Dispatcher(this);
    connect(m_client, &Communication::NamedPipeClient::connectedToServer, m_dispatcher,
        &Communication::Dispatcher::clientConnected);
    connect(m_client, &Communication::NamedPipeClient::messageReceived, m_dispatcher,
        &Communication::Dispatcher::dispatchMessage);
    connect(m_dispatcher, &Communication::Dispatcher::sendMessageToClient, m_client,
        &Communication::NamedPipeClient::sendMessage);

    m_system = new System::System(this);
    m_systemManager = new System::SystemManager(m_system, this);
    m_smartManager = new Smart::SmartManager(m_system, this);
    m_performance = new Performance::PerformanceCheck(m_system, this);
    m_dispatcher->registerHandler(m_systemManager);
    m_dispatcher->registerHandler(m_smartManager);
    m_dispatcher->registerHandler(m_performance);

    QSignalSpy added(m_system, &System::System::driveAdded);
    m_client->connectToServer();
    QTRY_VERIFY_WITH_TIMEOUT(added.count() >= 4, 10000);
}

void TestMachineSim::cleanupTestCase()
{
    delete m_simulator;
    System::SupportedDrivesManager::release();
}

System::Drive* TestMachineSim::driveWithModel(const QString& part) const
{
    for (int id : m_system->driveIds()) {
        if (m_system->drive(id)->model().contains(part))
            return m_system->drive(id);
    }
    return nullptr;
}

void TestMachineSim::listsTheScenariosDrives()
{
    QCOMPARE(m_system->driveIds().size(), 4);
    System::Drive* systemDrive = nullptr;
    for (int id : m_system->driveIds()) {
        System::Drive* drive = m_system->drive(id);
        QVERIFY(!drive->model().isEmpty());
        QVERIFY(drive->capacity().value() > 0);
        if (drive->hasOperatingSystem())
            systemDrive = drive;
    }
    // The summary that follows every drive list marks the partition that holds the system.
    QTRY_VERIFY(systemDrive || [this] {
        for (int id : m_system->driveIds()) {
            if (m_system->drive(id)->hasOperatingSystem())
                return true;
        }
        return false;
    }());
    QVERIFY(driveWithModel(QStringLiteral("BRANTEL")));
    int usb = 0;
    for (int id : m_system->driveIds())
        usb += m_system->drive(id)->isUsb() ? 1 : 0;
    QCOMPARE(usb, 1);
}

void TestMachineSim::decodesSmartOfTheMakersDrives()
{
    System::Drive* drive = driveWithModel(QStringLiteral("BRANTEL"));
    QVERIFY(drive);
    bool ok = false;
    QTRY_VERIFY(drive->smartController()->parameterValue(Smart::LifeRemaining, &ok) >= 0.0 && ok);
    const double life = drive->smartController()->parameterValue(Smart::LifeRemaining, &ok);
    QVERIFY(life > 0.0 && life <= 100.0);
    const double temperature = drive->smartController()->parameterValue(Smart::Temperature, &ok);
    QVERIFY(ok);
    QVERIFY(temperature > 10.0 && temperature < 90.0);
    QVERIFY(drive->smartController()->parameterHistory(Smart::GBWritten)->size() >= 1);
    QVERIFY(m_smartManager->smartReportJson().contains(QLatin1String("\"DriveID\"")));
}

void TestMachineSim::scansFileCategories()
{
    System::Drive* drive = driveWithModel(QStringLiteral("BRANTEL"));
    System::FileCategories* categories = drive->fileCategories();
    drive->updateFileCategories();
    QTRY_COMPARE_WITH_TIMEOUT(categories->status(), int(System::FileCategoryStatus::Complete), 10000);
    QCOMPARE(categories->progress(), 1.0);
    QVERIFY(categories->totalSize() > 0);
    QVERIFY(categories->size(System::FileCategory::System) > 0);
}

void TestMachineSim::measuresTheCurrentDrive()
{
    System::Drive* drive = driveWithModel(QStringLiteral("BRANTEL"));
    m_system->setCurrentDrive(drive->id());
    QSignalSpy progress(m_performance, &Performance::PerformanceCheck::progressChanged);
    m_performance->startTest();
    QTRY_COMPARE_WITH_TIMEOUT(int(m_performance->status()), int(Performance::PerformanceCheck::Finished), 10000);
    QCOMPARE(progress.last().at(0).toInt(), 100);
    Performance::PerformanceResult* result = drive->performanceResult();
    QVERIFY(result);
    QVERIFY(!result->isEmpty());
    QVERIFY(result->readSpeed() > 0.0);
    QVERIFY(result->writeSpeed() > 0.0);
}

KESTRAVIN_TEST_SUITE(TestMachineSim)
#include "tst_machinesim.moc"
