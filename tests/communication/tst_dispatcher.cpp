#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "support/FakeService.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QSignalSpy>
#include <QTest>

using Velmora::Communication::Dispatcher;
using Velmora::Communication::Handler;
using Velmora::Communication::NamedPipeClient;
using Velmora::Message::Message;

namespace {

// Records what reaches it, in one journal shared by all handlers of a test so that the order of
// calls across handlers can be checked.
class RecordingHandler : public Handler
{
    Q_OBJECT

public:
    RecordingHandler(const QString& name, QList<MessageType> types, QStringList* journal)
        : m_journal(journal)
    {
        setName(name);
        setMessageTypes(types);
    }

    void clientConnected() override { m_journal->append(name() + QStringLiteral(" connected")); }
    void handleMessage(MessageType type, QByteArray payload) override
    {
        m_journal->append(QStringLiteral("%1 %2 %3").arg(name(), Message::typeName(type), QString::fromLatin1(payload)));
    }

    void send(MessageType type) { emit sendMessage(type); }
    void send(MessageType type, const QByteArray& payload) { emit sendMessage(type, payload); }

private:
    QStringList* m_journal;
};

} // namespace

class TestDispatcher : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<Message::MessageType>(); }
    void registersAndLogsEachType();
    void refusesDoubleRegistrationPerType();
    void ignoresHandlerWithoutTypes();
    void deliversInRegistrationOrder();
    void dropsUnhandledTypesSilently_data();
    void dropsUnhandledTypesSilently();
    void tellsEveryHandlerOfAConnection();
    void forwardsWhatHandlersSend_data();
    void forwardsWhatHandlersSend();
    void handlerMessageReachesTheWire();
};

void TestDispatcher::registersAndLogsEachType()
{
    QStringList journal;
    RecordingHandler handler(QStringLiteral("SystemManager"),
        {Message::SystemInfo, Message::FileCat, Message::SystemReport}, &journal);
    Dispatcher dispatcher;
    LogCapture log;
    QVERIFY(dispatcher.registerHandler(&handler));

    QCOMPARE(log.messages(Velmora::Logger::Info),
        (QStringList{QStringLiteral("Added handler SystemManager for message type SystemInfo"),
            QStringLiteral("Added handler SystemManager for message type FileCat"),
            QStringLiteral("Added handler SystemManager for message type SystemReport")}));
    QCOMPARE(dispatcher.handlers(), QList<Handler*>{&handler});
    QCOMPARE(dispatcher.handlers(Message::FileCat), QList<Handler*>{&handler});
    QVERIFY(dispatcher.handlers(Message::Smart).isEmpty());
}

void TestDispatcher::refusesDoubleRegistrationPerType()
{
    QStringList journal;
    RecordingHandler handler(QStringLiteral("SmartManager"), {Message::Smart, Message::Version}, &journal);
    Dispatcher dispatcher;
    QVERIFY(dispatcher.registerHandler(&handler));

    LogCapture log;
    QVERIFY(!dispatcher.registerHandler(&handler));
    QCOMPARE(log.messages(Velmora::Logger::Error),
        (QStringList{QStringLiteral("Handler SmartManager is already registred for message Smart"),
            QStringLiteral("Handler SmartManager is already registred for message Version")}));
    QCOMPARE(dispatcher.handlers().size(), 1);

    dispatcher.dispatchMessage(Message::Smart, "once");
    QCOMPARE(journal, QStringList{QStringLiteral("SmartManager Smart once")});

    // Sending is connected once as well.
    QSignalSpy toClient(&dispatcher, &Dispatcher::sendMessageToClient);
    handler.send(Message::SmartRequest);
    QCOMPARE(toClient.count(), 1);
}

void TestDispatcher::ignoresHandlerWithoutTypes()
{
    QStringList journal;
    RecordingHandler handler(QStringLiteral("Silent"), {}, &journal);
    Dispatcher dispatcher;
    QSignalSpy toClient(&dispatcher, &Dispatcher::sendMessageToClient);
    QVERIFY(!dispatcher.registerHandler(&handler));
    QVERIFY(dispatcher.handlers().isEmpty());

    dispatcher.clientConnected();
    handler.send(Message::Version);
    QVERIFY(journal.isEmpty());
    QCOMPARE(toClient.count(), 0);
}

void TestDispatcher::deliversInRegistrationOrder()
{
    QStringList journal;
    RecordingHandler second(QStringLiteral("B"), {Message::SystemInfo}, &journal);
    RecordingHandler first(QStringLiteral("A"), {Message::Smart, Message::SystemInfo}, &journal);
    Dispatcher dispatcher;
    dispatcher.registerHandler(&first);
    dispatcher.registerHandler(&second);

    dispatcher.dispatchMessage(Message::SystemInfo, "x");
    dispatcher.dispatchMessage(Message::Smart, "y");
    QCOMPARE(journal, (QStringList{QStringLiteral("A SystemInfo x"), QStringLiteral("B SystemInfo x"),
                          QStringLiteral("A Smart y")}));
}

void TestDispatcher::dropsUnhandledTypesSilently_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("Error has no handler") << int(Message::Error);
    QTest::newRow("known type without handler") << int(Message::FileList);
    QTest::newRow("number that is no type") << 4242;
}

void TestDispatcher::dropsUnhandledTypesSilently()
{
    QFETCH(int, type);
    QStringList journal;
    RecordingHandler handler(QStringLiteral("A"), {Message::Version}, &journal);
    Dispatcher dispatcher;
    dispatcher.registerHandler(&handler);

    LogCapture log;
    dispatcher.dispatchMessage(static_cast<Message::MessageType>(type), "payload");
    QVERIFY(journal.isEmpty());
    QVERIFY(log.messages().isEmpty());
    QVERIFY(dispatcher.handlers(static_cast<Message::MessageType>(type)).isEmpty());
}

void TestDispatcher::tellsEveryHandlerOfAConnection()
{
    QStringList journal;
    RecordingHandler a(QStringLiteral("A"), {Message::Version}, &journal);
    RecordingHandler b(QStringLiteral("B"), {Message::SystemInfo}, &journal);
    Dispatcher dispatcher;
    dispatcher.registerHandler(&a);
    dispatcher.registerHandler(&b);

    dispatcher.clientConnected();
    dispatcher.clientConnected();
    QCOMPARE(journal, (QStringList{QStringLiteral("A connected"), QStringLiteral("B connected"),
                          QStringLiteral("A connected"), QStringLiteral("B connected")}));
}

void TestDispatcher::forwardsWhatHandlersSend_data()
{
    QTest::addColumn<bool>("withPayload");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("type only") << false << QByteArray();
    QTest::newRow("type and payload") << true << QByteArray("\x08\x01", 2);
}

void TestDispatcher::forwardsWhatHandlersSend()
{
    QFETCH(bool, withPayload);
    QFETCH(QByteArray, payload);
    QStringList journal;
    RecordingHandler handler(QStringLiteral("PerformanceCheck"), {Message::DiskBenchmarkResponse}, &journal);
    Dispatcher dispatcher;
    dispatcher.registerHandler(&handler);
    QSignalSpy toClient(&dispatcher, &Dispatcher::sendMessageToClient);

    LogCapture log;
    if (withPayload)
        handler.send(Message::DiskBenchmarkRequest, payload);
    else
        handler.send(Message::DiskBenchmarkRequest);

    QCOMPARE(toClient.count(), 1);
    QCOMPARE(toClient.at(0).at(0).value<Message::MessageType>(), Message::DiskBenchmarkRequest);
    QCOMPARE(toClient.at(0).at(1).toByteArray(), payload);
    QCOMPARE(log.messages(), QStringList{QStringLiteral("Message send request from handler PerformanceCheck")});
}

void TestDispatcher::handlerMessageReachesTheWire()
{
    FakeService service(TestEnvironment::uniqueName(QStringLiteral("dispatch")));
    QVERIFY(service.listen());
    QStringList journal;
    RecordingHandler handler(QStringLiteral("ServiceManager"), {Message::Version}, &journal);
    NamedPipeClient client;
    client.setServerName(service.serverName());
    Dispatcher dispatcher;
    connect(&client, &NamedPipeClient::connectedToServer, &dispatcher, &Dispatcher::clientConnected);
    connect(&client, &NamedPipeClient::messageReceived, &dispatcher, &Dispatcher::dispatchMessage);
    connect(&dispatcher, &Dispatcher::sendMessageToClient, &client, &NamedPipeClient::sendMessage);
    dispatcher.registerHandler(&handler);
    connect(&service, &FakeService::clientConnected, &service,
        [&] { service.sendFrame(Message::Version, QByteArray::fromHex("08011001")); });

    client.connectToServer();
    QTRY_COMPARE(journal.size(), 2);
    QCOMPARE(journal.at(0), QStringLiteral("ServiceManager connected"));
    QCOMPARE(journal.at(1), QStringLiteral("ServiceManager Version ") + QString::fromLatin1(QByteArray::fromHex("08011001")));

    handler.send(Message::Version);
    QVERIFY(service.waitForFrames(1));
    QCOMPARE(service.receivedBytes(), QByteArray::fromHex("CD1974FE" "00000000" "01000000"));
}

KESTRAVIN_TEST_MAIN(TestDispatcher)
#include "tst_dispatcher.moc"
