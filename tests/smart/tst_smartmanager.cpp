#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "settings/SettingsManager.h"
#include "smart/SmartController.h"
#include "smart/SmartManager.h"
#include "support/FakeService.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"

#include "SmartTestData.h"

#include <QElapsedTimer>
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

const QString Group = QStringLiteral("SMART");
const QString Key = QStringLiteral("ReadInterval");

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

// What a handler emitted, as "type payload-in-hex" lines.
QStringList frames(const QSignalSpy& spy)
{
    QStringList result;
    for (const QList<QVariant>& call : spy) {
        result.append(Message::typeName(call.at(0).value<Message::MessageType>()) + QLatin1Char(' ')
            + QString::fromLatin1(call.at(1).toByteArray().toHex()));
    }
    return result;
}

// The read-out of drives 1 and 3, all attributes.
const QStringList AllOfOneAndThree = {QStringLiteral("SmartRequest 08011001"), QStringLiteral("SmartRequest 08031001")};

QStringList intervalLines(const LogCapture& log)
{
    QStringList result;
    for (const QString& line : log.messages(Logger::Debug)) {
        if (line.startsWith(QLatin1String("Change cyclic")) || line.startsWith(QLatin1String("Disable cyclic")))
            result.append(line);
    }
    return result;
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

    void isAHandlerOfSmartMessages();
    void requestFrames_data();
    void requestFrames();
    void connectionStartsTheCycle_data();
    void connectionStartsTheCycle();
    void intervalSetting_data();
    void intervalSetting();
    void cycleReadsAllDrives();
    void newDriveIsReadAloneWithoutRestartingTheCycle();
    void answers_data();
    void answers();
    void errorAnswerReplacesTheStoredMessage();
    void answerWithoutAttributesStillCommits();
    void otherTypesAndBadPayloads();
    void reportJson_data();
    void reportJson();
    void readsDrivesOverThePipe();
};

void TestSmartManager::isAHandlerOfSmartMessages()
{
    Machine machine({1});
    QCOMPARE(machine.manager->name(), QStringLiteral("Velmora::Smart::SmartManager"));
    QCOMPARE(machine.manager->messageTypes(), QList<Message::MessageType>{Message::Smart});
    QVERIFY(machine.timer);
    QVERIFY(!machine.timer->isActive());
    QVERIFY(!machine.timer->isSingleShot());
    QCOMPARE(machine.sent->count(), 0);
}

void TestSmartManager::requestFrames_data()
{
    QTest::addColumn<QList<int>>("drives");
    QTest::addColumn<QString>("call");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("logLines");

    QTest::newRow("all attributes of every drive")
        << QList<int>{1, 3} << "all" << AllOfOneAndThree
        << QStringList{"Request SMART attributes for drive 1", "Request SMART attributes for drive 3"};
    QTest::newRow("all attributes of drive 3") << QList<int>{1, 3} << "all 3" << QStringList{"SmartRequest 08031001"}
                                               << QStringList{"Request SMART attributes for drive 3"};
    QTest::newRow("drive 0 leaves its id off the wire") << QList<int>{0} << "all" << QStringList{"SmartRequest 1001"}
                                                        << QStringList{"Request SMART attributes for drive 0"};
    QTest::newRow("attribute 194 of every drive")
        << QList<int>{1, 3} << "attribute 194" << QStringList{"SmartRequest 080118c201", "SmartRequest 080318c201"}
        << QStringList{"Request SMART attribute 194 for drive 1", "Request SMART attribute 194 for drive 3"};
    QTest::newRow("attribute 9 of drive 2") << QList<int>{1} << "attribute 2 9" << QStringList{"SmartRequest 08021809"}
                                            << QStringList{"Request SMART attribute 9 for drive 2"};
    QTest::newRow("reused request forgets the attribute")
        << QList<int>{3} << "attribute 3 241; all 3" << QStringList{"SmartRequest 080318f101", "SmartRequest 08031001"}
        << QStringList{"Request SMART attribute 241 for drive 3", "Request SMART attributes for drive 3"};
    QTest::newRow("no drives, nothing sent") << QList<int>{} << "all; attribute 194" << QStringList{} << QStringList{};
}

void TestSmartManager::requestFrames()
{
    QFETCH(QList<int>, drives);
    QFETCH(QString, call);
    QFETCH(QStringList, expected);
    QFETCH(QStringList, logLines);

    Machine machine(drives);
    LogCapture log;
    for (const QString& step : call.split(QStringLiteral("; "))) {
        const QStringList words = step.split(QLatin1Char(' '));
        if (words.at(0) == QLatin1String("all") && words.size() == 1)
            machine.manager->requestSmartAttributes();
        else if (words.at(0) == QLatin1String("all"))
            machine.manager->requestSmartAttributes(words.at(1).toInt());
        else if (words.size() == 2)
            machine.manager->requestSmartAttribute(words.at(1).toInt());
        else
            machine.manager->requestSmartAttribute(words.at(1).toInt(), words.at(2).toInt());
    }
    QCOMPARE(frames(*machine.sent), expected);
    QCOMPARE(log.messages(Logger::Debug), logLines);
}

void TestSmartManager::connectionStartsTheCycle_data()
{
    QTest::addColumn<QVariant>("setting");
    QTest::addColumn<bool>("active");
    QTest::addColumn<int>("interval");
    QTest::addColumn<QStringList>("logLines");

    QTest::newRow("default") << QVariant() << true << 900000
                             << QStringList{"Change cyclic readout interval 0 -> 900000"};
    QTest::newRow("one minute") << QVariant(60000) << true << 60000
                                << QStringList{"Change cyclic readout interval 0 -> 60000"};
    QTest::newRow("0 disables") << QVariant(0) << false << 0 << QStringList{"Disable cyclic readouts."};
    QTest::newRow("negative disables") << QVariant(-1) << false << 0 << QStringList{"Disable cyclic readouts."};
}

void TestSmartManager::connectionStartsTheCycle()
{
    QFETCH(QVariant, setting);
    QFETCH(bool, active);
    QFETCH(int, interval);
    QFETCH(QStringList, logLines);

    if (setting.isValid())
        SettingsManager::setValue(Group, Key, setting);
    Machine machine({1, 3});
    LogCapture log;
    machine.manager->clientConnected();

    QCOMPARE(frames(*machine.sent), AllOfOneAndThree);
    QCOMPARE(machine.timer->isActive(), active);
    if (active)
        QCOMPARE(machine.timer->interval(), interval);
    QCOMPARE(intervalLines(log), logLines);

    // Every reconnection reads again and restarts the cycle.
    machine.manager->clientConnected();
    QCOMPARE(machine.sent->count(), 4);
    QCOMPARE(machine.timer->isActive(), active);
}

void TestSmartManager::intervalSetting_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("active");
    QTest::addColumn<int>("interval");
    QTest::addColumn<QStringList>("logLines");

    QTest::newRow("five minutes") << "SMART" << "ReadInterval" << QVariant(300000) << true << 300000
                                  << QStringList{"Change cyclic readout interval 900000 -> 300000"};
    QTest::newRow("number as text") << "SMART" << "ReadInterval" << QVariant(QStringLiteral("120000")) << true << 120000
                                    << QStringList{"Change cyclic readout interval 900000 -> 120000"};
    QTest::newRow("0 stops the cycle") << "SMART" << "ReadInterval" << QVariant(0) << false << 900000
                                       << QStringList{"Disable cyclic readouts."};
    QTest::newRow("negative stops the cycle") << "SMART" << "ReadInterval" << QVariant(-5) << false << 900000
                                              << QStringList{"Disable cyclic readouts."};
    QTest::newRow("key in other case") << "SMART" << "readInterval" << QVariant(1000) << true << 900000
                                       << QStringList{};
    QTest::newRow("group in other case") << "Smart" << "ReadInterval" << QVariant(1000) << true << 900000
                                         << QStringList{};
    QTest::newRow("other key of the group") << "SMART" << "Interval" << QVariant(1000) << true << 900000
                                            << QStringList{};
}

void TestSmartManager::intervalSetting()
{
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(bool, active);
    QFETCH(int, interval);
    QFETCH(QStringList, logLines);

    Machine machine({1, 3});
    machine.manager->clientConnected();
    machine.sent->clear();
    LogCapture log;

    SettingsManager::setValue(group, key, value);

    // A change of the interval, switching off included, reads all drives at once.
    QCOMPARE(frames(*machine.sent), logLines.isEmpty() ? QStringList{} : AllOfOneAndThree);
    QCOMPARE(machine.timer->isActive(), active);
    QCOMPARE(machine.timer->interval(), interval);
    QCOMPARE(intervalLines(log), logLines);
}

void TestSmartManager::cycleReadsAllDrives()
{
    Machine machine({1, 3});
    machine.manager->clientConnected();
    machine.sent->clear();
    SettingsManager::setValue(Group, Key, 20);
    QCOMPARE(machine.sent->count(), 2);

    QTRY_VERIFY_WITH_TIMEOUT(machine.sent->count() >= 6, 5000);
    const QStringList sent = frames(*machine.sent).mid(0, 6);
    QCOMPARE(sent, AllOfOneAndThree + AllOfOneAndThree + AllOfOneAndThree);
}

void TestSmartManager::newDriveIsReadAloneWithoutRestartingTheCycle()
{
    SettingsManager::setValue(Group, Key, 300);
    Machine machine({1});
    QElapsedTimer clock;
    clock.start();
    machine.manager->clientConnected();
    machine.sent->clear();

    // Two thirds into the cycle a drive comes: it is read at once, and the cycle still turns
    // 300 ms after the connection. A restart would put the next read-out at 500 ms.
    QTest::qWait(200);
    addDrives(machine.system, {7});
    QCOMPARE(frames(*machine.sent), QStringList{"SmartRequest 08071001"});

    QTRY_VERIFY_WITH_TIMEOUT(machine.sent->count() >= 3, 5000);
    const qint64 cycle = clock.elapsed();
    QCOMPARE(frames(*machine.sent).mid(1, 2), (QStringList{"SmartRequest 08011001", "SmartRequest 08071001"}));
    QVERIFY2(cycle < 450, qPrintable(QStringLiteral("cyclic read-out after %1 ms").arg(cycle)));
}

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
    QTest::newRow("no attribute") << 2 << 1 << QStringList{"Unable to read SMART attributes, no such attribute."}
                                  << false;
    QTest::newRow("unknown code") << 7 << 1 << QStringList{"Unknown error code."} << false;
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

void TestSmartManager::answerWithoutAttributesStillCommits()
{
    Machine machine({1});
    Smart::SmartController* controller = machine.system.drive(1)->smartController();
    QSignalSpy changed(controller, &Smart::SmartController::dataChanged);
    machine.manager->handleMessage(Message::Smart, smartPayload(0, 1, {}));
    machine.manager->handleMessage(Message::Smart, smartPayload(0, 1, {}));
    QCOMPARE(changed.count(), 2);
    QCOMPARE(controller->parameterHistory(Smart::GBWritten)->size(), 2);
    QCOMPARE(controller->parameterHistory(Smart::GBWritten)->first()->value, 0.0);
}

void TestSmartManager::otherTypesAndBadPayloads()
{
    Machine machine({1});
    LogCapture log;
    machine.manager->handleMessage(Message::SystemInfo, smartPayload(0, 1, twoAttributes()));
    QCOMPARE(log.messages(Logger::Error), QStringList{"Unexpected message type: SystemInfo."});
    QVERIFY(machine.manager->lastMessages().isEmpty());
    QVERIFY(!machine.system.drive(1)->smartController()->attribute(194));

    // A payload that does not parse is an answer with default fields: success for drive 0.
    log.clear();
    machine.manager->handleMessage(Message::Smart, QByteArray("\xff\xff\xff", 3));
    QCOMPARE(log.messages(Logger::Error),
        QStringList{"Cannot update S.M.A.R.T. atributes. Drive 0 does not exist."});
    QCOMPARE(machine.manager->lastMessages().keys(), QList<quint32>{0});
}

void TestSmartManager::reportJson_data()
{
    QTest::addColumn<QList<QByteArray>>("answers");
    QTest::addColumn<QString>("expected");

    // With no answer the opening bracket goes with the missing comma; the support report has
    // always carried this text.
    QTest::newRow("no drive") << QList<QByteArray>{} << "{\n\"SMART\": \n]\n}";

    QTest::newRow("one drive")
        << QList<QByteArray>{smartPayload(0, 1, {SmartTestData::attribute(194, "2d01", 100, 90, 10, 51)})}
        << "{\n\"SMART\": [{\n"
           " \"ErrorCode\": \"SUCCESS\",\n"
           " \"DriveID\": 1,\n"
           " \"Attributes\": [\n"
           "  {\n"
           "   \"Id\": 194,\n"
           "   \"Current\": 100,\n"
           "   \"Threshold\": 10,\n"
           "   \"Worst\": 90,\n"
           "   \"Status\": 51,\n"
           "   \"Data\": \"2d01\"\n"
           "  }\n"
           " ]\n"
           "}\n"
           "\n]\n}";

    // Stored by drive id, whatever the order of arrival; an unknown drive is reported too.
    QTest::newRow("two drives")
        << QList<QByteArray>{smartPayload(1, 9, {}), smartPayload(0, 1, {SmartTestData::attribute(5, "00")})}
        << "{\n\"SMART\": [{\n"
           " \"ErrorCode\": \"SUCCESS\",\n"
           " \"DriveID\": 1,\n"
           " \"Attributes\": [\n"
           "  {\n"
           "   \"Id\": 5,\n"
           "   \"Current\": 100,\n"
           "   \"Threshold\": 0,\n"
           "   \"Worst\": 100,\n"
           "   \"Status\": 0,\n"
           "   \"Data\": \"00\"\n"
           "  }\n"
           " ]\n"
           "}\n"
           ",{\n"
           " \"ErrorCode\": \"NO_DRIVE\",\n"
           " \"DriveID\": 9,\n"
           " \"Attributes\": []\n"
           "}\n"
           "\n]\n}";

    QTest::newRow("unknown code as a number")
        << QList<QByteArray>{smartPayload(7, 3, {})}
        << "{\n\"SMART\": [{\n"
           " \"ErrorCode\": 7,\n"
           " \"DriveID\": 3,\n"
           " \"Attributes\": []\n"
           "}\n"
           "\n]\n}";
}

void TestSmartManager::reportJson()
{
    QFETCH(QList<QByteArray>, answers);
    QFETCH(QString, expected);

    Machine machine({1});
    for (const QByteArray& answer : answers)
        machine.manager->handleMessage(Message::Smart, answer);
    QCOMPARE(machine.manager->smartReportJson(), expected);
}

void TestSmartManager::readsDrivesOverThePipe()
{
    using Velmora::Communication::Dispatcher;
    using Velmora::Communication::NamedPipeClient;

    FakeService service(TestEnvironment::uniqueName(QStringLiteral("smart")));
    QVERIFY(service.listen());
    Machine machine({1, 3});
    NamedPipeClient client;
    client.setServerName(service.serverName());
    Dispatcher dispatcher;
    connect(&client, &NamedPipeClient::connectedToServer, &dispatcher, &Dispatcher::clientConnected);
    connect(&client, &NamedPipeClient::messageReceived, &dispatcher, &Dispatcher::dispatchMessage);
    connect(&dispatcher, &Dispatcher::sendMessageToClient, &client, &NamedPipeClient::sendMessage);
    QVERIFY(dispatcher.registerHandler(machine.manager.get()));

    client.connectToServer();
    QVERIFY(service.waitForFrames(2));
    // Header: sync, length 4, type 21; then drive id and the all-attributes flag.
    QCOMPARE(service.receivedBytes().toHex(),
        QByteArray("cd1974fe" "04000000" "15000000" "08011001"
                   "cd1974fe" "04000000" "15000000" "08031001"));
    QVERIFY(machine.timer->isActive());

    QSignalSpy changed(machine.system.drive(1)->smartController(), &Smart::SmartController::dataChanged);
    service.sendFrame(Message::Smart, smartPayload(0, 1, twoAttributes()));
    QTRY_COMPARE(changed.count(), 1);
    QCOMPARE(machine.system.drive(1)->smartController()->parameterValue(Smart::PowerOnHours, nullptr), 1000.0);
    QCOMPARE(machine.manager->lastMessages().keys(), QList<quint32>{1});
}

KESTRAVIN_TEST_MAIN(TestSmartManager)
#include "tst_smartmanager.moc"
