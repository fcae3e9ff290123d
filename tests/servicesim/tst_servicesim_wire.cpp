// The simulated service as a peer on the wire: what it does with bad bytes, several clients, a
// second instance, a stale socket, and the wire faults it injects on request.

#include "SimulatorProcess.h"

#include "message/FrameReader.h"
#include "message/Message.h"
#include "support/TestEnvironment.h"

#include "Error.pb.h"
#include "Version.pb.h"

#include <QDir>
#include <QElapsedTimer>
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
    // Collects frames for a while, for tests that count what did and did not come.
    QList<FrameReader::Frame> framesWithin(int ms)
    {
        QList<FrameReader::Frame> frames;
        QElapsedTimer timer;
        timer.start();
        do {
            QTest::qWait(5);
            FrameReader::Frame frame;
            while (poll(&frame))
                frames << frame;
        } while (timer.elapsed() < ms);
        return frames;
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
    void unparsablePayloadOfEveryRequest_data();
    void unparsablePayloadOfEveryRequest();
    void halfSentFrameDoesNotBlockOtherClients();
    void secondInstanceIsRefused();
    void staleSocketIsCleanedUp();
    void wireFaults_data();
    void wireFaults();
    void droppedConnectionAfterFrames();
    void exitsOnRequest();
    void badCommandLineIsRejected_data();
    void badCommandLineIsRejected();
    void badScenarioIsRejected_data();
    void badScenarioIsRejected();
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
    QTest::newRow("type only the service sends")
        << FrameReader::encode(Message::SystemInfo, {}) << int(Message::Error)
        << QStringLiteral("unknown message type 30");
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

void ServiceSimWireTest::unparsablePayloadOfEveryRequest_data()
{
    QTest::addColumn<int>("type");
    for (Message::MessageType type : {Message::CopyLogFilesRequest, Message::FileListRequest,
             Message::MigrationFilterTypeRequest, Message::MigrationFilterSystemPaths, Message::FileCopyRequest,
             Message::MigrationBootability, Message::SmartRequest, Message::FileTypeStructureReq,
             Message::SystemTrimCommand, Message::DiskBenchmarkRequest, Message::PartitionCreate,
             Message::PartitionRemove, Message::PartitionFormat, Message::CleanDisk})
        QTest::newRow(qPrintable(Message::typeName(type))) << int(type);
}

void ServiceSimWireTest::unparsablePayloadOfEveryRequest()
{
    QFETCH(int, type);

    SimulatorProcess service({"--task-ms", "0"});
    QVERIFY(service.start());
    RawClient client;
    QVERIFY(client.connectTo(service.name()));
    // A varint that never ends.
    client.writeFrame(quint32(type), QByteArray("\xFF\xFF\xFF", 3));
    FrameReader::Frame frame;
    QVERIFY(client.nextFrame(&frame));
    QCOMPARE(frame.type, quint32(Message::Error));
    QVERIFY(service.waitForOutput(QStringLiteral("the payload of %1 does not parse").arg(Message::typeName(quint32(type)))));
    QVERIFY(client.framesWithin(30).isEmpty());
    QVERIFY(service.isRunning());
}

void ServiceSimWireTest::halfSentFrameDoesNotBlockOtherClients()
{
    SimulatorProcess service;
    QVERIFY(service.start());
    RawClient stuck;
    QVERIFY(stuck.connectTo(service.name()));
    // A header that promises 1000 bytes, and only 5 of them.
    stuck.write(FrameReader::encode(Message::SmartRequest, QByteArray(1000, '\x08')).left(17));

    RawClient other;
    QVERIFY(other.connectTo(service.name()));
    other.writeFrame(Message::Version);
    FrameReader::Frame frame;
    QVERIFY(other.nextFrame(&frame));
    QCOMPARE(frame.type, quint32(Message::Version));
    QVERIFY(stuck.framesWithin(50).isEmpty());
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

void ServiceSimWireTest::staleSocketIsCleanedUp()
{
    SimulatorProcess killed;
    QVERIFY(killed.start());
    killed.process().kill();
    QVERIFY(killed.process().waitForFinished(3000));
    const QString socketPath = QDir(QDir::tempPath()).filePath(killed.name());
    QVERIFY2(QFileInfo::exists(socketPath), "a killed service should leave its socket behind");

    SimulatorProcess successor({}, killed.name());
    QVERIFY(successor.start());
    QVERIFY(successor.output().contains(QStringLiteral("Removing the stale socket")));
    RawClient client;
    QVERIFY(client.connectTo(successor.name()));
    client.writeFrame(Message::Version);
    FrameReader::Frame frame;
    QVERIFY(client.nextFrame(&frame));
    QCOMPARE(frame.type, quint32(Message::Version));
}

void ServiceSimWireTest::wireFaults_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("skippedBytes");
    QTest::addColumn<int>("minimumReads");

    QTest::newRow("whole frames") << QStringList() << 0 << 1;
    QTest::newRow("garbage before frames") << QStringList{"--garbage", "9"} << 9 << 1;
    // A Version frame is 18 bytes: 12 of header, 6 of payload.
    // Pieces 30 ms apart reach the client in more than one read, even on a busy machine.
    QTest::newRow("frames in pieces of 5") << QStringList{"--split", "5", "--split-piece-ms", "30"} << 0 << 2;
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

void ServiceSimWireTest::droppedConnectionAfterFrames()
{
    SimulatorProcess service({"--drop-after", "2"});
    QVERIFY(service.start());
    RawClient client;
    QVERIFY(client.connectTo(service.name()));
    for (int i = 0; i < 3; ++i)
        client.writeFrame(Message::Version);

    QTRY_COMPARE_WITH_TIMEOUT(client.socket.state(), QLocalSocket::UnconnectedState, 3000);
    QCOMPARE(client.framesWithin(10).size(), 2);
    QVERIFY(service.output().contains(QStringLiteral("dropping the connection after 2 frames")));

    // The service itself goes on.
    RawClient next;
    QVERIFY(next.connectTo(service.name()));
    next.writeFrame(Message::Version);
    FrameReader::Frame frame;
    QVERIFY(next.nextFrame(&frame));
}

void ServiceSimWireTest::exitsOnRequest()
{
    SimulatorProcess service({"--exit-after", "2"});
    QVERIFY(service.start());
    RawClient client;
    QVERIFY(client.connectTo(service.name()));
    // One write, so that the service reads all three frames at once.
    client.write(FrameReader::encode(Message::Version, {}) + FrameReader::encode(Message::SystemInfoRequest, {})
        + FrameReader::encode(Message::Version, {}));

    QVERIFY(service.process().waitForFinished(3000));
    QCOMPARE(service.process().exitCode(), 3);
    const QList<FrameReader::Frame> frames = client.framesWithin(50);
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames.first().type, quint32(Message::Version));
}

void ServiceSimWireTest::badCommandLineIsRejected_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("reason");

    QTest::newRow("unknown type") << QStringList{"--never", "NoSuchRequest"} << QStringLiteral("Unknown message type");
    QTest::newRow("failure of an unknown type") << QStringList{"--fail", "Teleport#2=3"} << QStringLiteral("Unknown message type \"Teleport\"");
    QTest::newRow("delay without time") << QStringList{"--delay", "SmartRequest"} << QStringLiteral("TYPE=NUMBER");
    QTest::newRow("bad version") << QStringList{"--service-version", "2.1"} << QStringLiteral("MAJOR.MINOR.PATCH");
    QTest::newRow("split of nothing") << QStringList{"--split", "0"} << QStringLiteral("piece size");
    QTest::newRow("missing scenario") << QStringList{"--scenario", "no-such-machine"} << QStringLiteral("Cannot open scenario");
}

void ServiceSimWireTest::badCommandLineIsRejected()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, reason);

    SimulatorProcess service(arguments);
    QVERIFY(service.runToEnd());
    QCOMPARE(service.process().exitCode(), 1);
    const QString message = service.errorOutput();
    QVERIFY2(message.contains(reason), qPrintable(message));
}

void ServiceSimWireTest::badScenarioIsRejected_data()
{
    QTest::addColumn<QByteArray>("scenario");
    QTest::addColumn<QString>("reason");

    QTest::newRow("not JSON") << QByteArray("{ drives: ") << QStringLiteral("no JSON object");
    QTest::newRow("size without a known unit")
        << QByteArray(R"({"drives": [{"Size": "12 parsecs"}]})") << QStringLiteral("Unreadable size");
    QTest::newRow("field of the wrong kind")
        << QByteArray(R"({"drives": [{"Model": {"nested": 1}}]})") << QStringLiteral("Model");
    QTest::newRow("file without a size")
        << QByteArray(R"({"drives": [{"Partitions": [{"files": {"a.txt": "big"}}]}]})") << QStringLiteral("a.txt");
    QTest::newRow("SMART attribute without an id")
        << QByteArray(R"({"drives": [{"smart": [{"raw": 5}]}]})") << QStringLiteral("SMART attribute");
    QTest::newRow("fault of an unknown type")
        << QByteArray(R"({"faults": {"never": ["Teleport"]}})") << QStringLiteral("Teleport");
}

void ServiceSimWireTest::badScenarioIsRejected()
{
    QFETCH(QByteArray, scenario);
    QFETCH(QString, reason);

    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/scenario-XXXXXX.json"));
    QVERIFY(file.open());
    file.write(scenario);
    file.flush();
    SimulatorProcess service({"--scenario", file.fileName()});
    QVERIFY(service.runToEnd());
    QCOMPARE(service.process().exitCode(), 1);
    const QString message = service.errorOutput();
    QVERIFY2(message.contains(reason), qPrintable(message));
}

KESTRAVIN_TEST_MAIN(ServiceSimWireTest)

#include "tst_servicesim_wire.moc"
