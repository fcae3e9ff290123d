// The real service as a process on the wire: what it answers, what it does with bad bytes and
// absurd frames, how it keeps clients apart, and what it refuses a user without privileges.

#include "message/FrameReader.h"
#include "message/Message.h"
#include "server/BuiltInHandlers.h"
#include "server/EngineHandler.h"
#include "server/RequestRouter.h"
#include "server/ServiceListener.h"

#include "DiskPerformance.pb.h"
#include "FileTypeStructure.pb.h"
#include "Error.pb.h"
#include "Migration.pb.h"
#include "SystemInfo.pb.h"
#include "SystemTrimCommand.pb.h"
#include "Version.pb.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <grp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

using Velmora::Message::FrameReader;
using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

constexpr uid_t Nobody = 65534;

QByteArray bytesOf(const google::protobuf::MessageLite& message)
{
    const std::string bytes = message.SerializeAsString();
    return QByteArray(bytes.data(), static_cast<int>(bytes.size()));
}

QByteArray frame(quint32 type, const google::protobuf::MessageLite& message)
{
    return FrameReader::encode(type, bytesOf(message));
}

// kestravind started for one test on a socket of its own, ended with the test.
class Daemon
{
public:
    explicit Daemon(const QStringList& arguments = {}, const QString& socketPath = {})
        : m_path(socketPath.isEmpty() ? m_folder.filePath(QStringLiteral("VelmoraServer")) : socketPath)
    {
        // Open to others, as the service's own folder under /run is.
        QFile::setPermissions(m_folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner
                | QFile::ReadOther | QFile::ExeOther | QFile::ReadGroup | QFile::ExeGroup);
        m_process.setProgram(QStringLiteral(KESTRAVIND_PATH));
        m_process.setArguments(QStringList{QStringLiteral("--socket"), path()} + arguments);
    }
    ~Daemon()
    {
        m_process.terminate();
        if (!m_process.waitForFinished(5000))
            m_process.kill();
    }
    bool start()
    {
        m_process.start();
        return waitForLog(QStringLiteral("Listening on"), 10000);
    }
    QString path() const { return m_path; }
    qint64 pid() const { return m_process.processId(); }
    bool waitForLog(const QString& text, int timeoutMs = 5000)
    {
        return QTest::qWaitFor([&] {
            m_log += QString::fromLocal8Bit(m_process.readAllStandardError());
            return m_log.contains(text) || m_process.state() == QProcess::NotRunning;
        }, timeoutMs) && m_log.contains(text);
    }
    QString log() const { return m_log; }

private:
    QTemporaryDir m_folder;
    const QString m_path;
    QProcess m_process;
    QString m_log;
};

// A client of this process: writes bytes as given and cuts what comes back into frames.
class Client
{
public:
    bool connectTo(const Daemon& daemon)
    {
        socket.connectToServer(daemon.path());
        return socket.waitForConnected(3000);
    }
    void write(const QByteArray& bytes)
    {
        socket.write(bytes);
        socket.flush();
    }
    bool nextFrame(FrameReader::Frame* frame, int timeoutMs = 3000)
    {
        return QTest::qWaitFor([&] {
            reader.append(socket.readAll());
            return reader.next(*frame);
        }, timeoutMs);
    }
    QLocalSocket socket;
    FrameReader reader;
};

// Connects as the user nobody in a child process, sends `request` and hands back the raw bytes of
// the answer frame. Everything the child needs is made before the fork.
QByteArray askAsNobody(const QString& socketPath, const QByteArray& request, pid_t* childPid)
{
    int answerPipe[2];
    if (pipe(answerPipe) != 0)
        return {};
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, QFile::encodeName(socketPath).constData(), sizeof(address.sun_path) - 1);
    char buffer[4096];
    const pid_t child = fork();
    if (child == 0) {
        close(answerPipe[0]);
        const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        if (setgroups(0, nullptr) != 0 || setgid(Nobody) != 0 || setuid(Nobody) != 0
            || connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0
            || write(fd, request.constData(), size_t(request.size())) != request.size())
            _exit(1);
        // One answer: its header says how much follows.
        size_t have = 0;
        size_t want = Message::HeaderSize;
        pollfd waitFor {fd, POLLIN, 0};
        while (have < want && poll(&waitFor, 1, 3000) > 0) {
            const ssize_t got = read(fd, buffer + have, sizeof(buffer) - have);
            if (got <= 0)
                break;
            have += size_t(got);
            if (have >= size_t(Message::HeaderSize)) {
                quint32 length = 0;
                std::memcpy(&length, buffer + 4, sizeof(length));
                want = qMin<size_t>(Message::HeaderSize + length, sizeof(buffer));
            }
        }
        _exit(write(answerPipe[1], buffer, have) == ssize_t(have) ? 0 : 1);
    }
    close(answerPipe[1]);
    QByteArray answer;
    for (ssize_t got; (got = read(answerPipe[0], buffer, sizeof(buffer))) > 0;)
        answer.append(buffer, int(got));
    close(answerPipe[0]);
    int status = 0;
    waitpid(child, &status, 0);
    *childPid = child;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? answer : QByteArray();
}

} // namespace

class DaemonServerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_daemon.reset(); }
    void answers_data();
    void answers();
    void absurdFrameClosesOnlyItsConnection();
    void clientThatNeverReadsDelaysNoOther();
    void unprivilegedUser_data();
    void unprivilegedUser();
    void socketAlreadyThere_data();
    void socketAlreadyThere();
    void longTaskStops_data();
    void longTaskStops();

private:
    std::unique_ptr<Daemon> m_daemon;
};

void DaemonServerTest::initTestCase()
{
    m_daemon = std::make_unique<Daemon>();
    QVERIFY2(m_daemon->start(), qPrintable(m_daemon->log()));
}

void DaemonServerTest::answers_data()
{
    QTest::addColumn<QList<QByteArray>>("pieces");
    QTest::addColumn<int>("answerType");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("logLine");

    const QByteArray version = FrameReader::encode(Message::Version, {});
    QTest::newRow("version") << QList<QByteArray>{version} << int(Message::Version) << -1 << QString();
    QTest::newRow("garbage between frames") << QList<QByteArray>{version + QByteArray("\x01\xFE\x74\x19zz", 6) + version}
                                            << int(Message::Version) << -1
                                            << QStringLiteral("skipped 6 bytes without a sync pattern");
    QTest::newRow("frame in pieces") << QList<QByteArray>{version.left(3), version.mid(3, 7), version.mid(10)}
                                     << int(Message::Version) << -1 << QString();
    QTest::newRow("unknown type") << QList<QByteArray>{FrameReader::encode(99, "abc")} << int(Message::Error)
                                  << int(Wire::INVALID_REQUEST) << QStringLiteral("unknown message type 99");
    QTest::newRow("payload that does not parse")
        << QList<QByteArray>{FrameReader::encode(Message::CleanDisk, QByteArray("\xFF\xFF\xFF", 3))}
        << int(Message::Error) << int(Wire::INVALID_REQUEST) << QStringLiteral("the payload of CleanDisk does not parse");
    Wire::PartitionRemove remove;
    remove.set_driveid(2);
    QTest::newRow("partition removal refused")
        << QList<QByteArray>{frame(Message::PartitionRemove, remove)} << int(Message::PartitionRemove)
        << int(Wire::FAILED) << QStringLiteral("Refused PartitionRemove: not done by this service");
    QTest::newRow("drive list") << QList<QByteArray>{FrameReader::encode(Message::SystemInfoRequest, {})}
                                << int(Message::SystemInfo) << -1 << QString();
}

void DaemonServerTest::answers()
{
    QFETCH(QList<QByteArray>, pieces);
    QFETCH(int, answerType);
    QFETCH(int, code);
    QFETCH(QString, logLine);

    Client client;
    QVERIFY(client.connectTo(*m_daemon));
    for (const QByteArray& piece : pieces) {
        client.write(piece);
        QTest::qWait(20);
    }
    FrameReader::Frame answer;
    QVERIFY(client.nextFrame(&answer));
    QCOMPARE(int(answer.type), answerType);
    if (answerType == Message::Version) {
        Wire::Version version;
        QVERIFY(version.ParseFromArray(answer.payload.constData(), answer.payload.size()));
        QCOMPARE(version.major(), quint32(KESTRAVIN_VERSION_MAJOR));
        QCOMPARE(version.minor(), quint32(KESTRAVIN_VERSION_MINOR));
    } else if (answerType == Message::Error) {
        Wire::Error error;
        QVERIFY(error.ParseFromArray(answer.payload.constData(), answer.payload.size()));
        QCOMPARE(int(error.code()), code);
    } else if (answerType == Message::SystemInfo) {
        Wire::SystemInfo drives;
        QVERIFY(drives.ParseFromArray(answer.payload.constData(), answer.payload.size()));
    } else {
        Wire::PartitionRemove refused;
        QVERIFY(refused.ParseFromArray(answer.payload.constData(), answer.payload.size()));
        QCOMPARE(int(refused.code()), code);
        QCOMPARE(refused.driveid(), 2u);
    }
    if (!logLine.isEmpty())
        QVERIFY2(m_daemon->waitForLog(logLine), qPrintable(m_daemon->log()));

    // The connection goes on working.
    client.write(FrameReader::encode(Message::Version, {}));
    QVERIFY(client.nextFrame(&answer));
    QCOMPARE(answer.type, quint32(Message::Version));
}

void DaemonServerTest::absurdFrameClosesOnlyItsConnection()
{
    Client absurd;
    Client other;
    QVERIFY(absurd.connectTo(*m_daemon));
    QVERIFY(other.connectTo(*m_daemon));
    QByteArray header = FrameReader::encode(Message::Version, {});
    const quint32 fourGiB = 0xFFFFFFFF;
    std::memcpy(header.data() + 4, &fourGiB, sizeof(fourGiB));
    absurd.write(header + QByteArray(1000, 'x'));
    QVERIFY(QTest::qWaitFor([&] { return absurd.socket.state() == QLocalSocket::UnconnectedState; }, 3000));
    QVERIFY(m_daemon->waitForLog(QStringLiteral("announced a frame of 4294967295 bytes")));

    other.write(FrameReader::encode(Message::Version, {}));
    FrameReader::Frame answer;
    QVERIFY(other.nextFrame(&answer));
    QCOMPARE(answer.type, quint32(Message::Version));
    QCOMPARE(other.socket.state(), QLocalSocket::ConnectedState);
}

void DaemonServerTest::clientThatNeverReadsDelaysNoOther()
{
    Daemon daemon({QStringLiteral("--max-unsent"), QStringLiteral("64")});
    QVERIFY2(daemon.start(), qPrintable(daemon.log()));
    Client stuck;
    QVERIFY(stuck.connectTo(daemon));
    // Qt would otherwise read on the client's behalf.
    stuck.socket.setReadBufferSize(1);
    // Far more answers than the socket and the bound hold, and the client reads none of them.
    const QByteArray version = FrameReader::encode(Message::Version, {});
    stuck.write(version.repeated(40000));

    Client reader;
    QVERIFY(reader.connectTo(daemon));
    QElapsedTimer clock;
    clock.start();
    reader.write(version);
    FrameReader::Frame answer;
    QVERIFY(reader.nextFrame(&answer, 1000));
    QCOMPARE(answer.type, quint32(Message::Version));
    qInfo("Answered in %lld ms beside a client that does not read", clock.elapsed());

    QVERIFY2(daemon.waitForLog(QStringLiteral("closing the connection (answers not read)"), 10000), qPrintable(daemon.log()));
    QVERIFY(QTest::qWaitFor([&] { return stuck.socket.state() == QLocalSocket::UnconnectedState; }, 3000));
    QCOMPARE(reader.socket.state(), QLocalSocket::ConnectedState);
}

void DaemonServerTest::unprivilegedUser_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<int>("answerType");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("logLine");

    Wire::DiskPerformanceRequest benchmark;
    benchmark.set_driveid(3);
    QTest::newRow("speed test") << frame(Message::DiskBenchmarkRequest, benchmark) << int(Message::DiskBenchmarkResponse)
                                << int(Wire::ACCESS_DENIED) << QStringLiteral("Refused DiskBenchmarkRequest of uid 65534");
    Wire::PartitionRemove remove;
    remove.set_driveid(3);
    QTest::newRow("disk change") << frame(Message::PartitionRemove, remove) << int(Message::PartitionRemove)
                                 << int(Wire::ACCESS_DENIED) << QStringLiteral("Refused PartitionRemove of uid 65534");
    Wire::SystemTrimCommand trim;
    trim.set_trimenabled(true);
    QTest::newRow("enabling TRIM") << frame(Message::SystemTrimCommand, trim) << int(Message::SystemTrimCommand)
                                   << int(Wire::ACCESS_DENIED) << QStringLiteral("Refused SystemTrimCommand of uid 65534");
    // Reading the state is let through, to the engine's answer.
    QTest::newRow("reading TRIM") << frame(Message::SystemTrimCommand, Wire::SystemTrimCommand())
                                  << int(Message::SystemTrimCommand) << int(Wire::SUCCESS) << QString();
    QTest::newRow("version") << FrameReader::encode(Message::Version, {}) << int(Message::Version) << -1 << QString();
}

void DaemonServerTest::unprivilegedUser()
{
    if (geteuid() != 0)
        QSKIP("Needs root, to speak to the service as the user nobody");
    QFETCH(QByteArray, request);
    QFETCH(int, answerType);
    QFETCH(int, code);
    QFETCH(QString, logLine);

    pid_t child = 0;
    FrameReader reader;
    reader.append(askAsNobody(m_daemon->path(), request, &child));
    FrameReader::Frame answer;
    QVERIFY2(reader.next(answer), "no answer reached the user nobody");
    QCOMPARE(int(answer.type), answerType);
    if (code >= 0) {
        // Every answer of these types carries its code in field 1, as the Error message does.
        Wire::Error withCode;
        QVERIFY(withCode.ParseFromArray(answer.payload.constData(), answer.payload.size()));
        QCOMPARE(int(withCode.code()), code);
    }
    if (answerType == Message::DiskBenchmarkResponse) {
        Wire::DiskPerformance refused;
        QVERIFY(refused.ParseFromArray(answer.payload.constData(), answer.payload.size()));
        QCOMPARE(refused.driveid(), 3u);
    }
    if (!logLine.isEmpty()) {
        QVERIFY2(m_daemon->waitForLog(logLine), qPrintable(m_daemon->log()));
        if (code == Wire::ACCESS_DENIED)
            QVERIFY(m_daemon->log().contains(QStringLiteral("(pid %1)").arg(child)));
    }
}

void DaemonServerTest::socketAlreadyThere_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<bool>("starts");
    QTest::addColumn<QString>("logLine");

    QTest::newRow("a live service") << "live" << false << QStringLiteral("already listening");
    QTest::newRow("the socket of a dead one") << "stale" << true << QStringLiteral("Removing the stale socket");
    QTest::newRow("a file") << "file" << false << QStringLiteral("exists and is not a socket");
}

void DaemonServerTest::socketAlreadyThere()
{
    QFETCH(QString, what);
    QFETCH(bool, starts);
    QFETCH(QString, logLine);

    Daemon second({}, what == QLatin1String("live") ? m_daemon->path() : QString());
    const QByteArray path = QFile::encodeName(second.path());
    if (what == QLatin1String("stale")) {
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.constData(), sizeof(address.sun_path) - 1);
        const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        QVERIFY(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0);
        close(fd);
    } else if (what == QLatin1String("file")) {
        QFile file(second.path());
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QCOMPARE(second.start(), starts);
    QVERIFY2(second.log().contains(logLine), qPrintable(second.log()));
    // Whatever held the path before is still in its place, or the new service answers there.
    Client client;
    QCOMPARE(client.connectTo(starts ? second : *m_daemon), true);
    client.write(FrameReader::encode(Message::Version, {}));
    FrameReader::Frame answer;
    QVERIFY(client.nextFrame(&answer));
    if (what == QLatin1String("file"))
        QVERIFY(QFileInfo(second.path()).isFile());
}

void DaemonServerTest::longTaskStops_data()
{
    QTest::addColumn<bool>("byClosing");
    QTest::newRow("by its stop request") << false;
    QTest::newRow("by the end of the connection") << true;
}

// A long engine plugged in as an engine module would be, in this process.
void DaemonServerTest::longTaskStops()
{
    QFETCH(bool, byClosing);
    using Request = Wire::FileTypeStructureRequest;
    using Answer = Wire::FileTypeStructure;
    std::atomic_bool sawStop{false};
    Velmora::Daemon::AccessPolicy policy{QString()};
    Velmora::Daemon::RequestRouter router(policy);
    router.addHandler(Velmora::Daemon::versionHandler({1, 1, 1}));
    router.addHandler(std::make_unique<Velmora::Daemon::EngineHandler<Request, Answer>>(Message::FileTypeStructureReq,
        Message::FileCat,
        [&sawStop](const Request&, const Velmora::Daemon::PeerCredentials&, const std::atomic_bool& stop,
            const std::function<void(const Answer&)>& progress) {
            Answer answer;
            answer.set_code(Wire::IN_PROGRESS);
            progress(answer);
            QElapsedTimer clock;
            clock.start();
            while (!stop && clock.elapsed() < 5000)
                QThread::msleep(2);
            sawStop = bool(stop);
            answer.set_code(stop ? Wire::CANCELED : Wire::SUCCESS);
            return answer;
        }, QStringLiteral("categories"), [](const Request& request) { return request.action() == Request::Stop; }));
    Velmora::Daemon::ServiceListener listener(router, {});
    QTemporaryDir folder;
    QString error;
    QVERIFY2(listener.listen(folder.filePath(QStringLiteral("socket")), &error), qPrintable(error));

    QLocalSocket socket;
    socket.connectToServer(folder.filePath(QStringLiteral("socket")));
    QVERIFY(socket.waitForConnected(3000));
    FrameReader reader;
    auto expect = [&](quint32 type, int code) {
        FrameReader::Frame frame;
        if (!QTest::qWaitFor([&] { reader.append(socket.readAll()); return reader.next(frame); }, 3000))
            return false;
        Wire::Error withCode;
        return frame.type == type && withCode.ParseFromArray(frame.payload.constData(), frame.payload.size())
            && (code < 0 || withCode.code() == code);
    };
    Request start;
    socket.write(frame(Message::FileTypeStructureReq, start));
    QVERIFY(expect(Message::FileCat, Wire::IN_PROGRESS));
    // Short requests go on beside the task.
    socket.write(FrameReader::encode(Message::Version, {}));
    QVERIFY(expect(Message::Version, -1));
    if (byClosing) {
        socket.abort();
    } else {
        Request stop;
        stop.set_action(Request::Stop);
        socket.write(frame(Message::FileTypeStructureReq, stop));
        QVERIFY(expect(Message::FileCat, Wire::CANCELED));
    }
    QVERIFY(QTest::qWaitFor([&] { return bool(sawStop); }, 2000));
}

QTEST_GUILESS_MAIN(DaemonServerTest)
#include "tst_daemonserver.moc"
