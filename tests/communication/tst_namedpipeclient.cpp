#include "communication/NamedPipeClient.h"
#include "message/FrameReader.h"
#include "support/FakeService.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using Velmora::Communication::NamedPipeClient;
using Velmora::Message::Message;

Q_DECLARE_METATYPE(QList<QByteArray>)

namespace {

const QString SyncLost = QStringLiteral("Incorrect synchronization pattern detected, trying to restore synchronization...");

QByteArray frame(quint32 type, const QByteArray& payload)
{
    return Velmora::Message::FrameReader::encode(type, payload);
}

struct Received {
    quint32 type;
    QByteArray payload;
    bool operator==(const Received& other) const { return type == other.type && payload == other.payload; }
};

QList<Received> received(const QSignalSpy& spy)
{
    QList<Received> result;
    for (const QList<QVariant>& args : spy)
        result.append({static_cast<quint32>(args.at(0).value<Message::MessageType>()), args.at(1).toByteArray()});
    return result;
}

char* toString(const Received& r)
{
    return QTest::toString(QStringLiteral("(%1, %2)").arg(r.type).arg(QString::fromLatin1(r.payload.toHex())));
}

} // namespace

Q_DECLARE_METATYPE(QList<Received>)

class TestNamedPipeClient : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void parsesReads_data();
    void parsesReads();

    void writesExactFrames_data();
    void writesExactFrames();
    void keepsPartialFrameAcrossReconnection();
    void givesUpAfterFiveReconnectionPasses();
    void connectsAtOnceWhenTheServerIsKnownToListen();
};

void TestNamedPipeClient::initTestCase()
{
    qRegisterMetaType<Message::MessageType>();
}

void TestNamedPipeClient::parsesReads_data()
{
    QTest::addColumn<QList<QByteArray>>("reads");
    QTest::addColumn<QList<Received>>("expected");
    QTest::addColumn<int>("syncErrors");
    QTest::addColumn<int>("pendingAfter");

    const QByteArray version = frame(Message::Version, QByteArray::fromHex("0801100114"));
    const QByteArray empty = frame(Message::SystemInfoRequest, QByteArray());
    const QByteArray smart = frame(Message::Smart, QByteArray(300, 'x'));

    QTest::newRow("header split over two reads")
        << QList<QByteArray>{version.left(5), version.mid(5, 6), version.mid(11)}
        << QList<Received>{{1, QByteArray::fromHex("0801100114")}} << 0 << 0;
    QTest::newRow("eleven bytes of garbage wait silently")
        << QList<QByteArray>{QByteArray(11, '\x55')} << QList<Received>{} << 0 << 11;
    QTest::newRow("seven garbage bytes, then a frame")
        << QList<QByteArray>{QByteArray::fromHex("01020304050607") + version}
        << QList<Received>{{1, QByteArray::fromHex("0801100114")}} << 7 << 0;
    QTest::newRow("big-endian pattern is no pattern")
        << QList<QByteArray>{QByteArray::fromHex("FE7419CD" "00000000" "01000000")} << QList<Received>{} << 1 << 11;
    QTest::newRow("two and a half frames, then the rest")
        << QList<QByteArray>{version + empty + smart.left(150), smart.mid(150)}
        << QList<Received>{{1, QByteArray::fromHex("0801100114")}, {31, QByteArray()}, {20, QByteArray(300, 'x')}}
        << 0 << 0;
    QTest::newRow("number that names no message, then a frame")
        << QList<QByteArray>{frame(4242, "zz") + version} << QList<Received>{{1, QByteArray::fromHex("0801100114")}}
        << 0 << 0;
    QTest::newRow("header of an empty frame alone, then another frame")
        << QList<QByteArray>{empty, version} << QList<Received>{{31, QByteArray()}, {1, QByteArray::fromHex("0801100114")}}
        << 0 << 0;
}

void TestNamedPipeClient::parsesReads()
{
    QFETCH(QList<QByteArray>, reads);
    QFETCH(QList<Received>, expected);
    QFETCH(int, syncErrors);
    QFETCH(int, pendingAfter);

    LogCapture log;
    NamedPipeClient client;
    QSignalSpy spy(&client, &NamedPipeClient::messageReceived);
    for (const QByteArray& read : reads)
        client.receiveBytes(read);

    QCOMPARE(received(spy), expected);
    QCOMPARE(log.count(SyncLost), syncErrors);
    QCOMPARE(log.messages(Velmora::Logger::Error).size(), syncErrors);
    // What is left over is reported by the next read's buffer count.
    client.receiveBytes(QByteArray());
    QCOMPARE(log.messages().last(), QStringLiteral("data in buffer count: %1").arg(pendingAfter));
}

void TestNamedPipeClient::writesExactFrames_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QString>("logged");

    QTest::newRow("payload follows the header")
        << int(Message::SmartRequest) << QByteArray::fromHex("0803")
        << QByteArray::fromHex("CD1974FE" "02000000" "15000000" "0803") << QStringLiteral("Message send: SmartRequest");
    QTest::newRow("length above one byte")
        << int(Message::FileListRequest) << QByteArray(300, 'a')
        << QByteArray::fromHex("CD1974FE" "2C010000" "0B000000") + QByteArray(300, 'a')
        << QStringLiteral("Message send: FileListRequest");
}

void TestNamedPipeClient::writesExactFrames()
{
    QFETCH(int, type);
    QFETCH(QByteArray, payload);
    QFETCH(QByteArray, wire);
    QFETCH(QString, logged);

    FakeService service(TestEnvironment::uniqueName(QStringLiteral("pipe")));
    QVERIFY(service.listen());
    NamedPipeClient client;
    client.setServerName(service.serverName());
    QSignalSpy connected(&client, &NamedPipeClient::connectedToServer);
    client.connectToServer();
    QTRY_COMPARE(connected.count(), 1);

    LogCapture log;
    QSignalSpy sending(&client, &NamedPipeClient::sendingMessage);
    client.sendMessage(static_cast<Message::MessageType>(type), payload);
    QVERIFY(service.waitForFrames(1));
    QCOMPARE(service.receivedBytes(), wire);
    QCOMPARE(sending.count(), 1);
    QCOMPARE(log.messages(), QStringList{logged});
}

void TestNamedPipeClient::keepsPartialFrameAcrossReconnection()
{
    FakeService service(TestEnvironment::uniqueName(QStringLiteral("pipe")));
    QVERIFY(service.listen());
    NamedPipeClient client;
    client.setServerName(service.serverName());
    QSignalSpy received(&client, &NamedPipeClient::messageReceived);
    QSignalSpy connected(&client, &NamedPipeClient::connectedToServer);
    client.connectToServer();
    QTRY_COMPARE(connected.count(), 1);

    QVERIFY(service.waitForClient());
    const QByteArray whole = frame(Message::SystemInfo, QByteArray(40, 's'));
    LogCapture log;
    service.sendRaw(whole.left(20));
    QTRY_COMPARE(log.count(QStringLiteral("data in buffer count: 20")), 1);

    service.disconnectClient();
    // The client reconnects on its own at once.
    QTRY_COMPARE(connected.count(), 2);
    QVERIFY(service.waitForClient());
    QCOMPARE(log.count(QStringLiteral("Disconnected from server.")), 1);

    service.sendRaw(whole.mid(20));
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(received.at(0).at(1).toByteArray(), QByteArray(40, 's'));
    QCOMPARE(log.count(SyncLost), 0);
}

void TestNamedPipeClient::givesUpAfterFiveReconnectionPasses()
{
    LogCapture log;
    NamedPipeClient client;
    QSignalSpy gaveUp(&client, &NamedPipeClient::connectionError);
    for (int i = 0; i < 6; ++i)
        client.onError(QLocalSocket::PeerClosedError);

    QCOMPARE(log.count(QStringLiteral("Connection error - reconnecting")), 5);
    QCOMPARE(log.count(QStringLiteral("Named pipe client error: 1")), 6);
    QCOMPARE(gaveUp.count(), 1);

    client.onError(QLocalSocket::ConnectionRefusedError);
    QCOMPARE(gaveUp.count(), 2);
    QCOMPARE(log.count(QStringLiteral("Connection error - reconnecting")), 5);
}

void TestNamedPipeClient::connectsAtOnceWhenTheServerIsKnownToListen()
{
    FakeService service(TestEnvironment::uniqueName(QStringLiteral("pipe")));
    NamedPipeClient client;
    client.setServerName(service.serverName());
    // Far beyond the wait below: a connection within it is the early one.
    client.setServerNotFoundRetryInterval(600000);
    QSignalSpy connected(&client, &NamedPipeClient::connectedToServer);
    QSignalSpy failed(&client, &NamedPipeClient::connectionError);
    LogCapture log;
    client.connectToServer();
    QCOMPARE(log.count(QStringLiteral("No server found")), 1);

    QVERIFY(service.listen());
    client.connectToServerNow();
    QTRY_COMPARE(connected.count(), 1);
    client.connectToServerNow();
    // A retry still pending would now come due, before this timer.
    client.setServerNotFoundRetryInterval(10);
    QTimer later;
    later.setSingleShot(true);
    QSignalSpy past(&later, &QTimer::timeout);
    later.start(50);
    QVERIFY(past.wait());
    QVERIFY(client.isConnected());
    QCOMPARE(failed.count(), 0);
    QCOMPARE(log.count(QStringLiteral("Connect to server: %1").arg(service.serverName())), 2);
}

KESTRAVIN_TEST_SUITE(TestNamedPipeClient)
#include "tst_namedpipeclient.moc"
