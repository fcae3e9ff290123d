#include "SystemInfoBuilder.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/DriveHealthStatus.h"
#include "system/DriveIssue.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QSignalSpy>
#include <QTest>

using namespace Velmora::System;
using Velmora::Message::Message;

namespace {

// A drive list with one SSD whose only partition uses `usedThousandths` of its capacity.
QByteArray oneDrive(quint64 usedThousandths, quint32 supportedSata = 4, quint32 currentSata = 4,
    const QString& type = QStringLiteral("SATA"))
{
    const quint64 capacity = 1000 * SystemInfoBuilder::MiB;
    SystemInfoBuilder b;
    auto& d = b.drive(4, QStringLiteral("BRANTEL SSD S1"), QStringLiteral("S1"), capacity, type);
    d.set_satasupportedspeed(supportedSata);
    d.set_satacurrentspeed(currentSata);
    SystemInfoBuilder::partition(d, 1, 0, capacity, usedThousandths * SystemInfoBuilder::MiB, QStringLiteral("C:"));
    return b.payload();
}

} // namespace

class TestDriveHealth : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void judgesFreeSpace_data();
    void judgesFreeSpace();
    void judgesLifeRemaining_data();
    void judgesLifeRemaining();
    void reportsTheWorstOfAll();
    void notifiesOnceOnEachFall();
};

void TestDriveHealth::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
    qRegisterMetaType<Message::MessageType>();
}

void TestDriveHealth::judgesFreeSpace_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("severity");
    QTest::addColumn<QString>("logged");
    QTest::newRow("exactly 90% used is only OK") << 900.0 << int(OK) << "Free space severity: OK";
    QTest::newRow("just over 90%") << 900.001 << int(ActionNeeded) << "Free space severity: ActionNeeded";
    QTest::newRow("exactly 80% is good") << 800.0 << int(Good) << "";
    QTest::newRow("just over 80%") << 800.5 << int(OK) << "Free space severity: OK";
}

void TestDriveHealth::judgesFreeSpace()
{
    QFETCH(double, value);
    QFETCH(int, severity);
    QFETCH(QString, logged);
    DriveHealthStatus status;
    LogCapture log;
    status.setIssueValue(FreeSpace, value);
    QCOMPARE(int(status.issue(FreeSpace)->severity()), severity);
    QCOMPARE(log.messages(), logged.isEmpty() ? QStringList() : QStringList{logged});
}

void TestDriveHealth::judgesLifeRemaining_data()
{
    QTest::addColumn<uint>("life");
    QTest::addColumn<int>("severity");
    QTest::newRow("9") << 9u << int(ActionNeeded);
    QTest::newRow("10") << 10u << int(OK);
    QTest::newRow("69") << 69u << int(OK);
    QTest::newRow("70") << 70u << int(Good);
    QTest::newRow("0") << 0u << int(ActionNeeded);
}

void TestDriveHealth::judgesLifeRemaining()
{
    QFETCH(uint, life);
    QFETCH(int, severity);
    DriveHealthStatus status;
    QSignalSpy changed(&status, &DriveHealthStatus::issueSeverityChanged);
    status.setIssueValue(LifeRemaining, life);
    QCOMPARE(int(status.issue(LifeRemaining)->severity()), severity);
    QCOMPARE(changed.count(), severity == Good ? 0 : 1);
}

void TestDriveHealth::reportsTheWorstOfAll()
{
    DriveHealthStatus status;
    QSignalSpy overall(&status, &DriveHealthStatus::optimizationStatusChanged);
    status.setIssueValue(LifeRemaining, 50u);
    status.setIssueValue(FreeSpace, 950.0);
    QCOMPARE(overall.count(), 2);
    QCOMPARE(overall.last().at(0).value<DriveIssueSeverity>(), ActionNeeded);
    QCOMPARE(status.overallSeverity(), ActionNeeded);

    // Setting the same value again judges nothing.
    LogCapture log;
    status.setIssueValue(FreeSpace, 950.0);
    QVERIFY(log.messages().isEmpty());
    QCOMPARE(overall.count(), 2);
}

void TestDriveHealth::notifiesOnceOnEachFall()
{
    System system;
    SystemManager manager(&system);
    QSignalSpy notified(&system, &System::notifyError);

    // The first evaluation of an almost full drive warns at once.
    manager.handleMessage(Message::SystemInfo, oneDrive(950));
    QCOMPARE(notified.count(), 1);
    QCOMPARE(notified.at(0).at(0).toString(), QStringLiteral("LOW FREE SPACE ON DRIVE BRANTEL SSD S1."));
    QCOMPARE(notified.at(0).at(1), QVariant(4));

    LogCapture log;
    system.drive(4)->updateDriveStatus();
    QCOMPARE(notified.count(), 1);
    QCOMPARE(log.messages(), QStringList{QStringLiteral("Updating drive status")});

    manager.handleMessage(Message::SystemInfo, oneDrive(500));
    QCOMPARE(system.drive(4)->healthStatus()->issue(FreeSpace)->severity(), Good);
    manager.handleMessage(Message::SystemInfo, oneDrive(960));
    QCOMPARE(notified.count(), 2);
}

KESTRAVIN_TEST_SUITE(TestDriveHealth)
#include "tst_drivehealth.moc"
