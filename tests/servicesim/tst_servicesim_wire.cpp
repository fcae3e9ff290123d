// The simulated service as a peer on the wire: what it does with bad bytes, several clients, a
// second instance, a stale socket, and the wire faults it injects on request.

#include "SimulatorProcess.h"

#include "message/FrameReader.h"
#include "message/Message.h"
#include "support/TestEnvironment.h"

#include "Error.pb.h"
#include "Version.pb.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QTemporaryFile>
#include <QTest>

using Velmora::Message::FrameReader;
using Velmora::Message::Message;

namespace {

// A raw client: writes bytes as given and cuts what comes back into frames.
class RawClient
{
public:
    bool connectTo(const QString& name)
    {
        socket.connectToServer(name);
        return socket.waitForConnected(3000);
    }
    void write(const QByteArray& bytes)
    {
        socket.write(bytes);
        socket.flush();
    }
    void writeFrame(quint32 type, const QByteArray& payload = QByteArray()) { write(FrameReader::encode(type, payload)); }

    // Waits for the next whole frame.
    bool nextFrame(FrameReader::Frame* frame, int timeoutMs = 3000)
    {
        return QTest::qWaitFor([&] { return poll(frame); }, timeoutMs);
    }

    QLocalSocket socket;
    FrameReader reader;
    int reads = 0;

private:
    bool poll(FrameReader::Frame* frame)
    {
        const QByteArray bytes = socket.readAll();
        if (!bytes.isEmpty()) {
            ++reads;
            reader.append(bytes);
        }
        return reader.next(*frame);
    }
};

} // namespace

class ServiceSimWireTest : public QObject
{
    Q_OBJECT

private slots:
    void malformedInputIsSurvived_data();
    void malformedInputIsSurvived();
    void secondInstanceIsRefused();
    void wireFaults_data();
    void wireFaults();
};

void ServiceSimWireTest::malformedInputIsSurvived_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("expectedType");
    QTest::addColumn<QString>("logLine");

    QTest::newRow("garbage before a frame")
        << QByteArray("\x01\x02\xFE\x74\x19\xCDjunk", 10) + FrameReader::encode(Message::Version, {})
        << int(Message::Version) << QStringLiteral("skipped 10 bytes without a sync pattern");
    QTest::newRow("payload that does not parse")
        << FrameReader::encode(Message::SmartRequest, QByteArray("\xFF\xFF\xFF", 3))
        << int(Message::Error) << QStringLiteral("the payload of SmartRequest does not parse");
    QTest::newRow("unknown type")
        << FrameReader::encode(99, QByteArray("abc")) << int(Message::Error)
        << QStringLiteral("unknown message type 99");
}

void ServiceSimWireTest::malformedInputIsSurvived()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, expectedType);
    QFETCH(QString, logLine);

    SimulatorProcess service;
    QVERIFY(service.start());
    RawClient client;
    QVERIFY(client.connectTo(service.name()));

    client.write(bytes);
    FrameReader::Frame frame;
    QVERIFY(client.nextFrame(&frame));
    QCOMPARE(int(frame.type), expectedType);
    if (frame.type == Message::Error) {
        Velmora::Message::Error error;
        QVERIFY(error.ParseFromArray(frame.payload.constData(), frame.payload.size()));
        QCOMPARE(int(error.code()), int(Velmora::Message::INVALID_REQUEST));
    }
    QVERIFY2(service.waitForOutput(logLine), qPrintable(service.output()));

    // The same connection goes on working.
    client.writeFrame(Message::Version);
    QVERIFY(client.nextFrame(&frame));
    QCOMPARE(frame.type, quint32(Message::Version));
    QVERIFY(service.isRunning());
}

void ServiceSimWireTest::secondInstanceIsRefused()
{
    SimulatorProcess first;
    QVERIFY(first.start());
    SimulatorProcess second({}, first.name());
    QVERIFY(second.runToEnd());
    QCOMPARE(second.process().exitCode(), 2);
    QVERIFY2(second.errorOutput().contains(QStringLiteral("already listening")), "no clear reason given");

    // The first one kept its socket.
    RawClient client;
    QVERIFY(client.connectTo(first.name()));
    client.writeFrame(Message::Version);
    FrameReader::Frame frame;
    QVERIFY(client.nextFrame(&frame));
    QCOMPARE(frame.type, quint32(Message::Version));
    QVERIFY(!first.output().contains(QStringLiteral("Removing the stale socket")));
}

void ServiceSimWireTest::wireFaults_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("skippedBytes");
    QTest::addColumn<int>("minimumReads");

    QTest::newRow("garbage before frames") << QStringList{"--garbage", "9"} << 9 << 1;
    // A Version frame is 18 bytes: 12 of header, 6 of payload.
    // Pieces 30 ms apart reach the client in more than one read, even on a busy machine.
    QTest::newRow("garbage and pieces") << QStringList{"--garbage", "3", "--split", "7", "--split-piece-ms", "30"} << 3 << 2;
}

void ServiceSimWireTest::wireFaults()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, skippedBytes);
    QFETCH(int, minimumReads);

    SimulatorProcess service(arguments);
    QVERIFY(service.start());
    RawClient client;
    QVERIFY(client.connectTo(service.name()));
    client.writeFrame(Message::Version);

    FrameReader::Frame frame;
    QVERIFY(client.nextFrame(&frame));
    QCOMPARE(frame.type, quint32(Message::Version));
    Velmora::Message::Version version;
    QVERIFY(version.ParseFromArray(frame.payload.constData(), frame.payload.size()));
    QCOMPARE(int(version.major()), KESTRAVIN_VERSION_MAJOR);
    QCOMPARE(int(client.reader.skippedBytes()), skippedBytes);
    QVERIFY2(client.reads >= minimumReads, qPrintable(QStringLiteral("%1 reads").arg(client.reads)));
}

KESTRAVIN_TEST_MAIN(ServiceSimWireTest)

#include "tst_servicesim_wire.moc"
