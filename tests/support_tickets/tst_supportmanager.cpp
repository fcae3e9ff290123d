#include "communicationweb/TarnAuthorizationService.h"
#include "rest/RestClient.h"
#include "smart/SmartManager.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/SupportManager.h"
#include "support/SupportServiceHandler.h"
#include "support/SupportTicket.h"
#include "support/TestEnvironment.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include "CopyLogFiles.pb.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using Velmora::CommunicationWeb::TarnAuthorizationService;
using Velmora::Support::SupportManager;
using Velmora::Support::SupportServiceHandler;
using Velmora::Support::SupportStatus;
using Answer = HttpTestServer::Answer;
using MessageType = Velmora::Message::Message::MessageType;
namespace S = Velmora::Support;
namespace pb = Velmora::Message;

namespace {

QByteArray copyResponse(int code, const QString& baseName, uint count)
{
    pb::CopyLogFilesResponse response;
    response.set_code(static_cast<pb::Code>(code));
    response.set_logfilebasename(baseName.toStdString());
    response.set_filescopied(count);
    const std::string bytes = response.SerializeAsString();
    return QByteArray(bytes.data(), int(bytes.size()));
}

QList<int> statusesOf(const QSignalSpy& spy)
{
    QList<int> result;
    for (const QList<QVariant>& arguments : spy)
        result.append(arguments.at(0).value<SupportStatus>());
    return result;
}

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// Takes the ticket's folder away just before the reports are handed to the worker, as a watchdog
// firing at that moment would.
class VanishingFolderSystemManager : public Velmora::System::SystemManager
{
public:
    using SystemManager::SystemManager;
    SupportManager* manager = nullptr;
    QString systemInfoJson() override
    {
        // An empty path would be the working directory.
        const QString folder = manager->ticket()->directoryPath();
        if (!folder.isEmpty())
            QDir(folder).removeRecursively();
        return SystemManager::systemInfoJson();
    }
};

} // namespace

class TestSupportManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void ticketCarriesVersionFileOnly();
    void verdicts_data();
    void verdicts();
    void serviceThatCannotHelpDoesNotStopTicket_data();
    void serviceThatCannotHelpDoesNotStopTicket();
    void secondTicketWaitsForFirst();
    void watchdogEndsTicket_data();
    void watchdogEndsTicket();
    void expiredSessionResendsTicketOnce();
    void ticketWithoutFolderStillGoesOut();

private:
    void create();
    // Plays the service: copies one log file into the ticket's folder and answers.
    void answerService(int code = 0);
    int supportPosts() const;

    HttpTestServer* m_server = nullptr;
    QList<Answer> m_supportAnswers;
    QStringList m_folderAtPost;
    QStringList m_sessions;
    REST::RestClient* m_client = nullptr;
    TarnAuthorizationService* m_service = nullptr;
    Velmora::System::System* m_system = nullptr;
    Velmora::System::SystemManager* m_systemManager = nullptr;
    Velmora::Smart::SmartManager* m_smartManager = nullptr;
    SupportServiceHandler* m_handler = nullptr;
    SupportManager* m_manager = nullptr;
    std::unique_ptr<QSignalSpy> m_serviceRequests;
};

void TestSupportManager::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
    qRegisterMetaType<MessageType>();
    QCOMPARE(Velmora::Logger::initialize(Velmora::Logger::Debug), 0);
    // An older log of ours is copied too; a stranger's file in the same folder is not.
    for (const char* name : {"Velmora_20260101.log", "Other.log"}) {
        QFile file(Velmora::Logger::logDirectory() + QLatin1String(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("old lines\n");
    }
}

void TestSupportManager::init()
{
    m_server = new HttpTestServer;
    QVERIFY(m_server->listen());
    m_supportAnswers = {answerOf(201, R"({"id":17})")};
    m_sessions = QStringList{QStringLiteral("s1")};
    m_folderAtPost.clear();
    m_server->setResponder([this](const HttpTestServer::Request& request) {
        if (request.target.endsWith("/session")) {
            if (request.method == "POST")
                return answerOf(200, R"({"authenticated":true})");
            const QString session = m_sessions.size() > 1 ? m_sessions.takeFirst() : m_sessions.first();
            return answerOf(200, QStringLiteral(R"({"session":"%1"})").arg(session).toUtf8());
        }
        if (m_manager->ticket())
            m_folderAtPost = QDir(m_manager->ticket()->directoryPath()).entryList(QDir::Files, QDir::Name);
        return m_supportAnswers.size() > 1 ? m_supportAnswers.takeFirst() : m_supportAnswers.first();
    });
    m_client = new REST::RestClient(m_server->baseUrl());
    m_service = new TarnAuthorizationService(m_client);
    m_system = new Velmora::System::System;
    m_systemManager = new Velmora::System::SystemManager(m_system);
    m_smartManager = new Velmora::Smart::SmartManager(m_system);
    m_handler = new SupportServiceHandler;
    m_manager = new SupportManager(m_systemManager, m_smartManager, m_handler, m_client, m_service);
    m_serviceRequests = std::make_unique<QSignalSpy>(m_handler,
        qOverload<MessageType, QByteArray>(&SupportServiceHandler::sendMessage));
}

void TestSupportManager::cleanup()
{
    m_serviceRequests.reset();
    delete m_manager;
    delete m_handler;
    delete m_smartManager;
    delete m_systemManager;
    delete m_system;
    delete m_client;
    delete m_service;
    delete m_server;
}

void TestSupportManager::create()
{
    m_manager->createSupportTicket(QStringLiteral("The drive is slow"), QStringLiteral("user@example.org"),
        QStringLiteral("BC3S2241A0093"), QStringLiteral("x7k2p"));
}

void TestSupportManager::answerService(int code)
{
    QVERIFY(m_manager->ticket());
    QFile serviceLog(m_manager->ticket()->directoryPath() + QStringLiteral("/ServiceLog.log"));
    QVERIFY(serviceLog.open(QIODevice::WriteOnly));
    serviceLog.close();
    m_handler->handleMessage(Velmora::Message::Message::CopyLogFilesResponse, copyResponse(code, QStringLiteral("ServiceLog"), 1));
}

int TestSupportManager::supportPosts() const
{
    int count = 0;
    for (const HttpTestServer::Request& request : m_server->requests())
        count += request.target.contains("/support") ? 1 : 0;
    return count;
}

void TestSupportManager::ticketCarriesVersionFileOnly()
{
    QCOMPARE(m_manager->watchdogInterval(), SupportManager::WatchdogInterval);
    QVERIFY(!m_manager->isRetransmissionEnabled());
    QSignalSpy changed(m_manager, &SupportManager::statusChanged);
    LogCapture log;
    create();
    QCOMPARE(statusesOf(changed), QList<int>{S::CopyingServiceLogs});
    const QString folder = m_manager->ticket()->directoryPath();
    QCOMPARE(log.count(QStringLiteral("New ticket created in: %1").arg(folder)), 1);

    // The service is asked to copy its logs into the ticket's folder.
    QCOMPARE(m_serviceRequests->count(), 1);
    QCOMPARE(m_serviceRequests->first().at(0).toInt(), int(Velmora::Message::Message::CopyLogFilesRequest));
    pb::CopyLogFilesRequest asked;
    const QByteArray payload = m_serviceRequests->first().at(1).toByteArray();
    QVERIFY(asked.ParseFromArray(payload.constData(), payload.size()));
    QCOMPARE(QString::fromStdString(asked.destinationdirectory()), folder);

    answerService();
    QCOMPARE(statusesOf(changed), (QList<int>{S::CopyingServiceLogs, S::CollectingReports}));
    QCOMPARE(log.count(QStringLiteral("Service log files [1] were copied to ticket dir (base name: ServiceLog)")), 1);
    QTRY_COMPARE(changed.count(), 4);
    QCOMPARE(statusesOf(changed), (QList<int>{S::CopyingServiceLogs, S::CollectingReports, S::PostingTicket, S::Accepted}));
    QCOMPARE(m_manager->status(), S::Idle);
    QCOMPARE(log.count(QStringLiteral("Support ticket created with id: 17")), 1);

    // Everything was in the folder when the ticket went out...
    QCOMPARE(m_folderAtPost, (QStringList{"ServiceLog.log", "Velmora.log", "Velmora_20260101.log", "smartReport.json",
                                 "systemInfo.json", "systemReport.json", "version.txt"}));
    // ...but only the version travelled.
    const HttpTestServer::Request post = m_server->requests().last();
    QCOMPARE(post.method, QByteArray("POST"));
    QCOMPARE(post.target, QByteArray("/kestravin/public/api/support?session=s1"));
    QVERIFY(post.headers.value("content-type").startsWith("multipart/form-data; boundary="));
    QCOMPARE(post.body.count("Content-Disposition: form-data"), 2);
    QVERIFY(post.body.contains("Content-Type: text\r\nContent-Disposition: form-data; name=\"version.txt\"; filename=\"version.txt\"\r\n\r\n1.1.4-\r\n"));
    QVERIFY(post.body.contains("Content-Disposition: form-data; name=\"application/json\""));
    for (const char* field : {R"("captcha": "x7k2p")", R"("diskSerialNumber": "BC3S2241A0093")", R"("email": "user@example.org")",
             R"("message": "The drive is slow")"})
        QVERIFY2(post.body.contains(field), field);
    QCOMPARE(supportPosts(), 1);

    // The folder goes with the ticket; the reports held what the managers said.
    QTRY_VERIFY(!QDir(folder).exists());
    QCOMPARE(log.count(QStringLiteral("Ticket removed")), 1);
    QCOMPARE(log.count(QStringLiteral("Support ticket file added: %1/version.txt").arg(folder)), 1);
}

void TestSupportManager::verdicts_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("line");

    QTest::newRow("created") << answerOf(201, R"({"id":5})") << int(S::Accepted) << "Support ticket created with id: 5";
    QTest::newRow("created, body not JSON") << answerOf(201, "created") << int(S::Accepted)
                                            << "Unable to parse server support response: created";
    QTest::newRow("200 is not 201") << answerOf(200, R"({"id":5})") << int(S::Rejected)
                                    << R"(Support response rejected with code 200 ({"id":5}))";
    QTest::newRow("wrong captcha") << answerOf(418, R"({"error":"captcha"})") << int(S::InvalidCaptcha)
                                   << R"(Support response rejected with code 418 ({"error":"captcha"}))";
    QTest::newRow("bad request") << answerOf(400, "bad") << int(S::Rejected) << "Support response rejected with code 400 (bad)";
    QTest::newRow("server error") << answerOf(500, "") << int(S::Rejected) << "Support response rejected with code 500 ()";
    Answer silent;
    silent.silent = true;
    QTest::newRow("no answer in time") << silent << int(S::ConnectionFailed)
                                       << "Server did not respond correctly to support request: 0";
}

void TestSupportManager::verdicts()
{
    QFETCH(Answer, answer);
    QFETCH(int, status);
    QFETCH(QString, line);

    // Short limits, so that "no answer" is quick: 2 x 100 ms for a request with one file.
    m_client->setTimeout(100);
    m_manager->setRetransmissionInterval(50);
    m_supportAnswers = {answer};
    QSignalSpy changed(m_manager, &SupportManager::statusChanged);
    LogCapture log;
    create();
    answerService();
    QTRY_COMPARE(changed.count(), 4);
    QCOMPARE(changed.last().at(0).value<SupportStatus>(), SupportStatus(status));
    QCOMPARE(log.count(line), 1);
    QCOMPARE(m_manager->status(), S::Idle);
    QVERIFY(!m_manager->ticket());

    // Never sent twice, whatever the verdict: ticks of the retransmission timer find nothing.
    QTest::qWait(300);
    QCOMPARE(supportPosts(), 1);
    QCOMPARE(m_manager->pendingRequestCount(), 0);

    // A new ticket can start at once.
    m_supportAnswers = {answerOf(201, R"({"id":6})")};
    create();
    QCOMPARE(changed.count(), 5);
    answerService();
    QTRY_COMPARE(changed.count(), 8);
    QCOMPARE(changed.last().at(0).value<SupportStatus>(), S::Accepted);
}

void TestSupportManager::serviceThatCannotHelpDoesNotStopTicket_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("line");

    QTest::newRow("error raised") << copyResponse(3, QString(), 0) << "Cannot copy service log files. Error raised by service.";
    QTest::newRow("garbage") << QByteArray("\xff\xff\xff\xff", 4) << "Cannot copy service log files. Message parse failed.";
}

void TestSupportManager::serviceThatCannotHelpDoesNotStopTicket()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, line);

    QSignalSpy changed(m_manager, &SupportManager::statusChanged);
    LogCapture log;
    create();
    m_handler->handleMessage(Velmora::Message::Message::CopyLogFilesResponse, payload);
    QCOMPARE(log.count(line), 1);
    QCOMPARE(log.count(QStringLiteral("Service log files [0] were copied to ticket dir (base name: )")), 1);
    QTRY_COMPARE(changed.count(), 4);
    QCOMPARE(changed.last().at(0).value<SupportStatus>(), S::Accepted);
    QVERIFY(!m_folderAtPost.contains(QStringLiteral("ServiceLog.log")));
    QVERIFY(m_folderAtPost.contains(QStringLiteral("version.txt")));
}

void TestSupportManager::secondTicketWaitsForFirst()
{
    QSignalSpy changed(m_manager, &SupportManager::statusChanged);
    LogCapture log;
    create();
    S::SupportTicket* first = m_manager->ticket();
    create();
    QCOMPARE(log.count(QStringLiteral("Cannot complete support case request as previous session is still active")), 1);
    QCOMPARE(m_manager->ticket(), first);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(m_serviceRequests->count(), 1);
    QCOMPARE(log.countStartingWith(QStringLiteral("New ticket created in: ")), 1);
}

void TestSupportManager::watchdogEndsTicket_data()
{
    QTest::addColumn<bool>("serviceAnswers");
    QTest::newRow("service never answers") << false;
    QTest::newRow("server never answers") << true;
}

void TestSupportManager::watchdogEndsTicket()
{
    QFETCH(bool, serviceAnswers);

    Answer silent;
    silent.silent = true;
    m_supportAnswers = {silent};
    m_client->setTimeout(1000);
    m_manager->setWatchdogInterval(300);
    QSignalSpy changed(m_manager, &SupportManager::statusChanged);
    LogCapture log;
    create();
    const QString folder = m_manager->ticket()->directoryPath();
    if (serviceAnswers) {
        answerService();
        QTRY_COMPARE(changed.count(), 3);
    }
    QTRY_COMPARE(changed.last().at(0).value<SupportStatus>(), S::TimedOut);
    QCOMPARE(log.count(QStringLiteral("Unable to complete support ticket operation in time, request is cancelled")), 1);
    QCOMPARE(m_manager->status(), S::Idle);
    QTRY_VERIFY(!QDir(folder).exists());

    if (!serviceAnswers) {
        // The service's late answer finds no ticket.
        m_handler->handleMessage(Velmora::Message::Message::CopyLogFilesResponse, copyResponse(0, QStringLiteral("S"), 1));
        QCOMPARE(log.count(QStringLiteral("Service log file copy event received while module was in improper state 0")), 1);
        QTest::qWait(100);
        QCOMPARE(supportPosts(), 0);
    } else {
        // The client's own limit ends the post later; that answer is only logged.
        QTRY_COMPARE_WITH_TIMEOUT(log.count(QStringLiteral("Support response received while module was in improper state 0")), 1, 5000);
        QCOMPARE(supportPosts(), 1);
    }
    const int signalled = changed.count();
    QTest::qWait(100);
    QCOMPARE(changed.count(), signalled);
}

void TestSupportManager::expiredSessionResendsTicketOnce()
{
    m_sessions = QStringList{QStringLiteral("s1"), QStringLiteral("s2")};
    m_supportAnswers = {answerOf(401, "{}"), answerOf(201, R"({"id":9})")};
    QSignalSpy changed(m_manager, &SupportManager::statusChanged);
    LogCapture log;
    create();
    answerService();
    QTRY_COMPARE(changed.count(), 4);
    QCOMPARE(statusesOf(changed), (QList<int>{S::CopyingServiceLogs, S::CollectingReports, S::PostingTicket, S::Accepted}));
    QCOMPARE(log.count(QStringLiteral("Server authorization error")), 1);
    QCOMPARE(log.count(QStringLiteral("Support ticket created with id: 9")), 1);
    QCOMPARE(supportPosts(), 2);
    QCOMPARE(m_server->requests().last().target, QByteArray("/kestravin/public/api/support?session=s1&session=s2"));
}

void TestSupportManager::ticketWithoutFolderStillGoesOut()
{
    VanishingFolderSystemManager systemManager(m_system);
    SupportManager manager(&systemManager, m_smartManager, m_handler, m_client, m_service);
    systemManager.manager = &manager;
    delete m_manager;
    m_manager = nullptr;
    m_server->setResponder([](const HttpTestServer::Request& request) {
        if (request.target.endsWith("/session"))
            return answerOf(200, request.method == "GET" ? R"({"session":"s1"})" : R"({"authenticated":true})");
        return answerOf(201, R"({"id":3})");
    });

    QSignalSpy changed(&manager, &SupportManager::statusChanged);
    LogCapture log;
    manager.createSupportTicket(QStringLiteral("m"), QStringLiteral("e"), QStringLiteral("s"), QStringLiteral("c"));
    m_handler->handleMessage(Velmora::Message::Message::CopyLogFilesResponse, copyResponse(0, QStringLiteral("S"), 0));
    QTRY_COMPARE(changed.count(), 4);
    QCOMPARE(changed.last().at(0).value<SupportStatus>(), S::Accepted);
    for (const char* line : {"Unable to create system info log file", "Unable to create system report log file",
             "Unable to create SMART report log file", "Unable to create version log file"})
        QVERIFY2(log.count(QLatin1String(line)) == 1, line);
    QCOMPARE(log.count(QStringLiteral("Unable to copy log file: %1Velmora.log").arg(Velmora::Logger::logDirectory())), 1);
    // Without the version file there is nothing to attach: the request goes out as plain JSON.
    const HttpTestServer::Request post = m_server->requests().last();
    QCOMPARE(post.headers.value("content-type"), QByteArray("application/json"));
    QCOMPARE(QJsonDocument::fromJson(post.body).object().value(QStringLiteral("captcha")).toString(), QStringLiteral("c"));
}

KESTRAVIN_TEST_MAIN(TestSupportManager)
#include "tst_supportmanager.moc"
