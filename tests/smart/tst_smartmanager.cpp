#include "settings/SettingsManager.h"
#include "smart/SmartController.h"
#include "smart/SmartManager.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"

#include "SmartTestData.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>
#include <vector>

using Velmora::Message::Message;
using Velmora::Settings::SettingsManager;
using Velmora::Smart::SmartManager;
using Velmora::System::Drive;
using Velmora::System::System;
namespace Smart = Velmora::Smart;
namespace Logger = Velmora::Logger;

namespace {

// Drive 1 is the maker's (recognised by its name, default family, a firmware without temperature
// sensor); drive 2 is another maker's.
void addDrives(System& system, const QList<int>& ids)
{
    for (int id : ids) {
        const bool ours = id != 2;
        system.addDrive(new Drive(id, ours ? QStringLiteral("BRANTEL SSD S1") : QStringLiteral("OTHER SSD"),
            QStringLiteral("SERIAL%1").arg(id), QString(), ours ? QStringLiteral("SA01") : QStringLiteral("1.0"),
            Velmora::System::Bytes(qint64(1) << 38), 4, 4, true, QStringLiteral("SATA")));
    }
}

QByteArray smartPayload(int code, int driveId, const QList<Velmora::Message::Smart_SmartAttribute>& attributes)
{
    Velmora::Message::Smart message;
    message.set_errorcode(Velmora::Message::Smart_Error(code));
    message.set_driveid(quint32(driveId));
    for (const auto& attribute : attributes)
        *message.add_attributes() = attribute;
    return QByteArray::fromStdString(message.SerializeAsString());
}

QList<Velmora::Message::Smart_SmartAttribute> twoAttributes()
{
    return {SmartTestData::attribute(194, "2d01", 100, 90, 10, 51),
        SmartTestData::attribute(9, "e803", 100, 100, 0, 50)};
}

struct Machine {
    explicit Machine(const QList<int>& ids)
    {
        addDrives(system, ids);
        manager = std::make_unique<SmartManager>(&system);
        timer = manager->findChild<QTimer*>();
        sent = std::make_unique<QSignalSpy>(manager.get(),
            qOverload<Message::MessageType, QByteArray>(&SmartManager::sendMessage));
    }

    System system;
    std::unique_ptr<SmartManager> manager;
    QTimer* timer = nullptr;
    std::unique_ptr<QSignalSpy> sent;
};

} // namespace

class TestSmartManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<Message::MessageType>();
        Logger::setConsoleEnabled(false);
    }
    void init()
    {
        SettingsManager::clear();
        Velmora::System::SupportedDrivesManager::release();
    }

    void answers_data();
    void answers();
    void errorAnswerReplacesTheStoredMessage();
};

void TestSmartManager::answers_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("driveId");
    QTest::addColumn<QStringList>("errors");
    QTest::addColumn<bool>("decoded");

    QTest::newRow("success") << 0 << 1 << QStringList{} << true;
    QTest::newRow("other maker's drive") << 0 << 2 << QStringList{} << false;
    QTest::newRow("unknown drive") << 0 << 9
                                   << QStringList{"Cannot update S.M.A.R.T. atributes. Drive 9 does not exist."}
                                   << false;
    QTest::newRow("no drive") << 1 << 1 << QStringList{"Unable to read SMART attributes, wrong DriveId."} << false;
}

void TestSmartManager::answers()
{
    QFETCH(int, code);
    QFETCH(int, driveId);
    QFETCH(QStringList, errors);
    QFETCH(bool, decoded);

    Machine machine({1, 2});
    std::vector<std::unique_ptr<QSignalSpy>> changed;
    for (int id : {1, 2}) {
        changed.push_back(std::make_unique<QSignalSpy>(
            machine.system.drive(id)->smartController(), &Smart::SmartController::dataChanged));
    }
    LogCapture log;

    machine.manager->handleMessage(Message::Smart, smartPayload(code, driveId, twoAttributes()));

    QCOMPARE(log.messages(Logger::Error), errors);
    const QStringList attributeLines = log.messages(Logger::Debug).filter(QStringLiteral("SMART attribute: "));
    Smart::SmartController* controller = machine.system.drive(1)->smartController();
    if (decoded) {
        // The log shows what the controller holds: the temperature as corrected for "SA" firmware.
        QCOMPARE(attributeLines, (QStringList{"SMART attribute: 194 100 90 10 51 1e0000000000",
                                     "SMART attribute: 9 100 100 0 50 e80300000000"}));
        QCOMPARE(changed.at(0)->count(), 1);
        bool ok = false;
        QCOMPARE(controller->parameterValue(Smart::Temperature, &ok), 30.0);
        QVERIFY(ok);
        QCOMPARE(controller->parameterValue(Smart::PowerOnHours, &ok), 1000.0);
        QCOMPARE(controller->parameterHistory(Smart::GBWritten)->size(), 1);
    } else {
        QVERIFY(attributeLines.isEmpty());
        QCOMPARE(changed.at(0)->count(), 0);
        QVERIFY(!controller->attribute(194));
    }
    // The other maker's drive is never decoded.
    QCOMPARE(changed.at(1)->count(), 0);
    QVERIFY(!machine.system.drive(2)->smartController()->attribute(194));

    // Whatever the answer, it is what the report shows for that drive.
    const auto& stored = machine.manager->lastMessages();
    QCOMPARE(stored.keys(), QList<quint32>{quint32(driveId)});
    QCOMPARE(int(stored.value(quint32(driveId)).errorcode()), code);
    QCOMPARE(stored.value(quint32(driveId)).attributes_size(), 2);
}

void TestSmartManager::errorAnswerReplacesTheStoredMessage()
{
    Machine machine({1});
    machine.manager->handleMessage(Message::Smart, smartPayload(0, 1, twoAttributes()));
    machine.manager->handleMessage(Message::Smart, smartPayload(1, 1, {}));

    QCOMPARE(machine.manager->lastMessages().size(), 1);
    QCOMPARE(machine.manager->lastMessages().value(1).errorcode(), Velmora::Message::Smart::NO_DRIVE);
    QCOMPARE(machine.manager->lastMessages().value(1).attributes_size(), 0);
    // The controller keeps the last good values.
    bool ok = false;
    QCOMPARE(machine.system.drive(1)->smartController()->parameterValue(Smart::PowerOnHours, &ok), 1000.0);
    QVERIFY(ok);
}

KESTRAVIN_TEST_SUITE(TestSmartManager)
#include "tst_smartmanager.moc"
