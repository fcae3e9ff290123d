#include "communicationweb/TarnAuthenticator.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "communicationweb/TarnWebHandler.h"
#include "rest/RestClient.h"
#include "rest/RestResponse.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QSignalSpy>
#include <QTest>

using namespace Velmora::CommunicationWeb;
using Answer = HttpTestServer::Answer;

namespace {

const QByteArray Api = "/kestravin/public/api/";

Answer dropped()
{
    Answer answer;
    answer.drop = true;
    return answer;
}

// The back-end's side for these tests: GET "session" issues "s1", "s2"... unless scripted, POST
// "session" gives the scripted verdicts, every other call the scripted answers. The last answer
// of a script repeats.
class Backend
{
public:
    QList<Answer> sessionAnswers;
    QList<Answer> verdictAnswers{answerOf(200, R"({"authenticated":true})")};
    QList<Answer> callAnswers{answerOf(200, R"({"done":1})")};
    int sessionsIssued = 0;

    Answer operator()(const HttpTestServer::Request& request)
    {
        if (request.target == Api + "session") {
            if (request.method == "POST")
                return next(verdictAnswers);
            if (!sessionAnswers.isEmpty())
                return next(sessionAnswers);
            return answerOf(200, "{\"session\":\"s" + QByteArray::number(++sessionsIssued) + "\"}");
        }
        return next(callAnswers);
    }

private:
    static Answer next(QList<Answer>& script) { return script.size() > 1 ? script.takeFirst() : script.first(); }
};

// A module of the program as the tests see it: whatever the base leaves to it is recorded.
class ProbeHandler : public TarnWebHandler
{
public:
    using TarnWebHandler::TarnWebHandler;

    struct Seen {
        int status;
        QString content;
        QByteArray target;
    };
    QList<Seen> seen;

protected:
    bool onRestResponseReceived(REST::RestResponse* response) override
    {
        if (TarnWebHandler::onRestResponseReceived(response)) {
            delete response;
            return true;
        }
        seen.append({response->status(), response->content(), response->url().toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority)});
        delete response;
        return true;
    }
};

REST::RestRequest call(const QString& path, const QString& tag = QString())
{
    REST::RestRequest request(REST::GET, path);
    if (!tag.isEmpty())
        request.addQueryParameter(QStringLiteral("tag"), tag);
    return request;
}

QList<QByteArray> targetsOf(const QList<HttpTestServer::Request>& requests)
{
    QList<QByteArray> result;
    for (const HttpTestServer::Request& request : requests)
        result.append(request.method + ' ' + request.target.mid(Api.size()));
    return result;
}

QStringList tagsOf(const QList<REST::RestRequest>& requests)
{
    QStringList result;
    for (const REST::RestRequest& request : requests) {
        for (const REST::RestParameter& parameter : request.parameters()) {
            if (parameter.name == QLatin1String("tag"))
                result.append(parameter.value.toString());
        }
    }
    return result;
}

} // namespace

class TestTarnWebHandler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init();
    void cleanup();

    void hashesTheSessionWithTheSharedKey_data();
    void hashesTheSessionWithTheSharedKey();
    void handshakeInstallsTheSession();
    void secondRequestDuringHandshakeIsTurnedAway();
    void failedHandshakeIsReported_data();
    void failedHandshakeIsReported();
    void fiveHandlersShareOneHandshake();
    void refusedVerdictWaitsForTheNextTick();
    void unauthorizedCallGoesOutAgainWithBothSessions_data();
    void unauthorizedCallGoesOutAgainWithBothSessions();
    void networkOutageKeepsTheQueueInOrder();
    void lostCallReachesTheModuleWithoutRetransmission();
    void failedHandshakeForcesTheQueueOut();
    void failedHandshakeWithEmptyQueueSendsNothing();
    void clearingDropsWaitingCalls();

private:
    ProbeHandler* newHandler();
    void authorize();

    HttpTestServer* m_server = nullptr;
    Backend* m_backend = nullptr;
    REST::RestClient* m_client = nullptr;
    TarnAuthorizationService* m_service = nullptr;
    QList<ProbeHandler*> m_handlers;
};

void TestTarnWebHandler::init()
{
    m_server = new HttpTestServer;
    QVERIFY(m_server->listen());
    m_backend = new Backend;
    m_server->setResponder([this](const HttpTestServer::Request& request) { return (*m_backend)(request); });
    m_client = new REST::RestClient(m_server->baseUrl());
    m_service = new TarnAuthorizationService(m_client);
}

void TestTarnWebHandler::cleanup()
{
    // The client goes first: its replies must not call back into handlers that are gone.
    delete m_client;
    qDeleteAll(m_handlers);
    m_handlers.clear();
    delete m_service;
    delete m_backend;
    delete m_server;
}

ProbeHandler* TestTarnWebHandler::newHandler()
{
    auto* handler = new ProbeHandler(m_client, m_service);
    m_handlers.append(handler);
    return handler;
}

void TestTarnWebHandler::authorize()
{
    QSignalSpy granted(m_service, &TarnAuthorizationService::authorized);
    m_service->authorizeAccess();
    QVERIFY(granted.wait(3000));
}

void TestTarnWebHandler::hashesTheSessionWithTheSharedKey_data()
{
    QTest::addColumn<QString>("session");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("hash");
    // Reference values from an independent HMAC-SHA-256 implementation.
    QTest::newRow("shared key") << "abc" << TarnAuthorizationService::sharedKey()
                                << "9c2c7f8ffac0ceabb529c655dc45fb26d16247bfae7a9e380f481a37592819d7";
    QTest::newRow("shared key, other session") << "7f3c1e" << "Qx7mTzR4kP"
                                               << "b5eee2d560e43e867951c3638e485360a908a12b3529dd16659e9e8eef177eb5";
    QTest::newRow("textbook vector") << "The quick brown fox jumps over the lazy dog" << "key"
                                     << "f7bc83f430538424b13298e6aa6fb143ef4d59a14946175997479dbc2d1a3cd8";
}

void TestTarnWebHandler::hashesTheSessionWithTheSharedKey()
{
    QFETCH(QString, session);
    QFETCH(QString, key);
    QFETCH(QString, hash);
    QCOMPARE(TarnAuthorizationService::hashOf(session, key), hash);
}

void TestTarnWebHandler::handshakeInstallsTheSession()
{
    LogCapture log;
    QSignalSpy failed(m_service, &TarnAuthorizationService::authorizeFailed);
    authorize();
    QVERIFY(m_service->isAuthorized());
    QVERIFY(!m_service->isAuthorizationInProgress());
    QCOMPARE(m_service->sessionId(), QStringLiteral("s1"));
    QCOMPARE(failed.count(), 0);

    const QList<HttpTestServer::Request> sent = m_server->requests();
    QCOMPARE(targetsOf(sent), (QList<QByteArray>{"GET session", "POST session"}));
    QCOMPARE(sent.at(1).headers.value("content-type"), QByteArray("application/json"));
    QCOMPARE(QJsonDocument::fromJson(sent.at(1).body).toJson(QJsonDocument::Compact),
        "{\"hash\":\"" + TarnAuthorizationService::hashOf(QStringLiteral("s1")).toLatin1() + "\",\"session\":\"s1\"}");
    for (const QString& line : {QStringLiteral("Received authorization request"), QStringLiteral("Authorization started..."),
             QStringLiteral("Session ID response received"), QStringLiteral("Server authorization response received, status: 1")})
        QCOMPARE(log.count(line), 1);

    // From now on every call carries the session, and nothing else of the handshake.
    REST::RestRequest request(REST::GET, QStringLiteral("application"));
    QScopedPointer<REST::RestResponse> response(m_client->sendSync(request));
    QCOMPARE(m_server->requests().last().target, Api + "application?session=s1");
    QVERIFY(!m_server->requests().last().headers.contains("authorization"));
}

void TestTarnWebHandler::secondRequestDuringHandshakeIsTurnedAway()
{
    LogCapture log;
    QSignalSpy granted(m_service, &TarnAuthorizationService::authorized);
    m_service->authorizeAccess();
    m_service->authorizeAccess();
    QVERIFY(m_service->isAuthorizationInProgress());
    QCOMPARE(log.count(QStringLiteral("Received authorization request")), 2);
    QCOMPARE(log.count(QStringLiteral("Authorization already in progress")), 1);
    QVERIFY(granted.wait(3000));
    QTest::qWait(50);
    QCOMPARE(granted.count(), 1);
    QCOMPARE(targetsOf(m_server->requests()), (QList<QByteArray>{"GET session", "POST session"}));
}

void TestTarnWebHandler::failedHandshakeIsReported_data()
{
    QTest::addColumn<Answer>("sessionAnswer");
    QTest::addColumn<Answer>("verdictAnswer");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("requests");

    const Answer good = answerOf(200, R"({"authenticated":true})");
    QTest::newRow("session refused") << answerOf(500, "{}") << good << "Unable to get session ID from server" << 1;
    QTest::newRow("session connection dropped") << dropped() << good << "Unable to get session ID from server" << 1;
    QTest::newRow("session malformed") << answerOf(200, R"({"session":)") << good << "Unable to parse Session ID response" << 1;
    QTest::newRow("session key missing") << answerOf(200, R"({"id":"s1"})") << good << "Unable to parse Session ID response" << 1;
    QTest::newRow("verdict refused") << Answer() << answerOf(403, R"({"authenticated":true})")
                                     << "Unable to get Authorization from server" << 2;
    QTest::newRow("verdict key missing") << Answer() << answerOf(200, R"({"ok":true})") << "Unable to parse Authorization response" << 2;
    QTest::newRow("verdict cut by a zero byte") << Answer() << answerOf(200, QByteArray("{\"authenticated\":tr\0ue}", 23))
                                                << "Unable to parse Authorization response" << 2;
}

void TestTarnWebHandler::failedHandshakeIsReported()
{
    QFETCH(Answer, sessionAnswer);
    QFETCH(Answer, verdictAnswer);
    QFETCH(QString, line);
    QFETCH(int, requests);

    if (!sessionAnswer.body.isEmpty() || sessionAnswer.drop)
        m_backend->sessionAnswers = {sessionAnswer};
    m_backend->verdictAnswers = {verdictAnswer};
    LogCapture log;
    QSignalSpy failed(m_service, &TarnAuthorizationService::authorizeFailed);
    QSignalSpy granted(m_service, &TarnAuthorizationService::authorized);
    // The service must be able to start over from within the failure signal.
    bool inProgressWhenTold = true;
    connect(m_service, &TarnAuthorizationService::authorizeFailed, this,
        [&] { inProgressWhenTold = m_service->isAuthorizationInProgress(); });
    m_service->authorizeAccess();
    QVERIFY(failed.wait(3000));
    QCOMPARE(failed.count(), 1);
    QCOMPARE(granted.count(), 0);
    QVERIFY(!m_service->isAuthorized());
    QVERIFY(!m_service->isAuthorizationInProgress());
    QCOMPARE(inProgressWhenTold, requests == 2);
    QCOMPARE(log.messages(Velmora::Logger::Error).filter(line).size(), 1);
    // Qt itself asks once more on a connection that closed without a word; only the steps count.
    QList<QByteArray> steps = targetsOf(m_server->requests());
    steps.erase(std::unique(steps.begin(), steps.end()), steps.end());
    QCOMPARE(steps.size(), requests);
    QCOMPARE(steps.first(), QByteArray("GET session"));
    QCOMPARE(m_client->authenticator(), nullptr);
}

void TestTarnWebHandler::fiveHandlersShareOneHandshake()
{
    LogCapture log;
    for (int i = 0; i < 5; ++i)
        newHandler()->sendRequest(call(QStringLiteral("firmware"), QString::number(i)));
    for (ProbeHandler* handler : qAsConst(m_handlers))
        QCOMPARE(handler->pendingRequestCount(), 1);
    QCOMPARE(log.count(QStringLiteral("Authorization already in progress")), 4);

    QVERIFY(m_server->waitForRequests(7));
    for (ProbeHandler* handler : qAsConst(m_handlers))
        QTRY_COMPARE(handler->seen.size(), 1);
    QTest::qWait(50);
    const QList<QByteArray> targets = targetsOf(m_server->requests());
    QCOMPARE(targets.size(), 7);
    QCOMPARE(targets.mid(0, 2), (QList<QByteArray>{"GET session", "POST session"}));
    for (int i = 0; i < 5; ++i) {
        QVERIFY(targets.contains("GET firmware?tag=" + QByteArray::number(i) + "&session=s1"));
        QCOMPARE(m_handlers.at(i)->seen.first().target, Api + "firmware?tag=" + QByteArray::number(i) + "&session=s1");
        QCOMPARE(m_handlers.at(i)->seen.first().status, 200);
        QCOMPARE(m_handlers.at(i)->pendingRequestCount(), 0);
    }
    QCOMPARE(log.count(QStringLiteral("Authorization granted")), 5);
}

void TestTarnWebHandler::refusedVerdictWaitsForTheNextTick()
{
    m_backend->verdictAnswers = {answerOf(200, R"({"authenticated":false})"), answerOf(200, R"({"authenticated":true})")};
    ProbeHandler* handler = newHandler();
    handler->setRetransmissionInterval(60000);
    QSignalSpy granted(m_service, &TarnAuthorizationService::authorized);
    QSignalSpy failed(m_service, &TarnAuthorizationService::authorizeFailed);
    LogCapture log;
    handler->sendRequest(call(QStringLiteral("ad")));
    QTRY_COMPARE(log.count(QStringLiteral("Server authorization response received, status: 0")), 1);

    // Nothing moves until the timer says so.
    QTest::qWait(100);
    QCOMPARE(m_server->requests().size(), 2);
    QCOMPARE(handler->pendingRequestCount(), 1);
    QCOMPARE(granted.count() + failed.count(), 0);
    QVERIFY(!m_service->isAuthorized());
    QVERIFY(!m_service->isAuthorizationInProgress());

    handler->setRetransmissionInterval(20);
    QTRY_COMPARE(handler->seen.size(), 1);
    QCOMPARE(targetsOf(m_server->requests()),
        (QList<QByteArray>{"GET session", "POST session", "GET session", "POST session", "GET ad?session=s2"}));
    QCOMPARE(granted.count(), 1);
}

void TestTarnWebHandler::unauthorizedCallGoesOutAgainWithBothSessions_data()
{
    QTest::addColumn<bool>("retransmission");
    QTest::newRow("retransmission on") << true;
    QTest::newRow("retransmission off") << false;
}

void TestTarnWebHandler::unauthorizedCallGoesOutAgainWithBothSessions()
{
    QFETCH(bool, retransmission);
    authorize();
    ProbeHandler* handler = newHandler();
    handler->setRetransmissionEnabled(retransmission);
    m_backend->callAnswers = {answerOf(401, "{}"), answerOf(200, R"({"version":"2"})")};
    LogCapture log;
    handler->sendRequest(call(QStringLiteral("application")));
    QTRY_COMPARE(handler->seen.size(), 1);
    QCOMPARE(handler->seen.first().status, 200);
    QCOMPARE(handler->seen.first().content, QStringLiteral(R"({"version":"2"})"));
    QCOMPARE(log.count(QStringLiteral("Server authorization error")), 1);
    QCOMPARE(targetsOf(m_server->requests()).mid(2),
        (QList<QByteArray>{"GET application?session=s1", "GET session", "POST session", "GET application?session=s1&session=s2"}));
    QCOMPARE(handler->pendingRequestCount(), 0);
}

void TestTarnWebHandler::networkOutageKeepsTheQueueInOrder()
{
    authorize();
    ProbeHandler* handler = newHandler();
    handler->setRetransmissionInterval(30);
    m_server->shutDown();
    LogCapture log;
    const QStringList order{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")};
    for (const QString& tag : order)
        handler->sendRequest(call(QStringLiteral("firmware"), tag));

    // Several rounds go out and come back lost; between rounds the queue is whole and in order.
    QTRY_VERIFY_WITH_TIMEOUT(log.count(QStringLiteral("All pending requests [3] will be now retransmitted")) >= 3, 5000);
    QTRY_COMPARE(handler->pendingRequestCount(), 3);
    QCOMPARE(tagsOf(handler->pendingRequests()), order);
    QVERIFY(log.count(QStringLiteral("Network communication error")) >= 9);
    QVERIFY(handler->seen.isEmpty());
    QVERIFY(m_service->isAuthorized());

    log.clear();
    QVERIFY(m_server->restart());
    QTRY_COMPARE(handler->seen.size(), 3);
    QCOMPARE(handler->pendingRequestCount(), 0);
    // Handed to the network in queue order; the parallel connections may land them otherwise.
    QStringList sent;
    for (const QString& line : log.messages(Velmora::Logger::Info).filter(QStringLiteral("Sending new REST request to")))
        sent.append(line.mid(line.indexOf(QLatin1String("tag=")) + 4, 1));
    QCOMPARE(sent.mid(sent.size() - 3), order);
    QStringList arrived;
    for (const HttpTestServer::Request& request : m_server->requests()) {
        if (request.target.contains("firmware"))
            arrived.append(QString::fromLatin1(request.target.mid(request.target.indexOf("tag=") + 4, 1)));
    }
    std::sort(arrived.begin(), arrived.end());
    QCOMPARE(arrived, order);
}

void TestTarnWebHandler::lostCallReachesTheModuleWithoutRetransmission()
{
    authorize();
    ProbeHandler* handler = newHandler();
    handler->setRetransmissionEnabled(false);
    m_backend->callAnswers = {dropped()};
    LogCapture log;
    handler->sendRequest(call(QStringLiteral("support")));
    QTRY_COMPARE(handler->seen.size(), 1);
    QCOMPARE(handler->seen.first().status, 0);
    QCOMPARE(handler->pendingRequestCount(), 0);
    QCOMPARE(log.count(QStringLiteral("Network communication error")), 1);
}

void TestTarnWebHandler::failedHandshakeForcesTheQueueOut()
{
    m_backend->sessionAnswers = {answerOf(503, "{}")};
    m_backend->callAnswers = {answerOf(403, R"({"error":"no session"})")};
    ProbeHandler* handler = newHandler();
    LogCapture log;
    handler->sendRequest(call(QStringLiteral("supported-models")));
    QTRY_COMPARE(handler->seen.size(), 1);
    QCOMPARE(handler->seen.first().status, 403);
    QCOMPARE(targetsOf(m_server->requests()), (QList<QByteArray>{"GET session", "GET supported-models"}));
    QCOMPARE(log.count(QStringLiteral("Authorization failed")), 1);
    QCOMPARE(log.count(QStringLiteral("All pending requests [1] will be now retransmitted in forced mode")), 1);
    QCOMPARE(handler->pendingRequestCount(), 0);
}

void TestTarnWebHandler::failedHandshakeWithEmptyQueueSendsNothing()
{
    m_backend->sessionAnswers = {answerOf(500, "{}")};
    newHandler();
    newHandler();
    LogCapture log;
    QSignalSpy failed(m_service, &TarnAuthorizationService::authorizeFailed);
    m_service->authorizeAccess();
    QVERIFY(failed.wait(3000));
    QTest::qWait(50);
    QCOMPARE(log.count(QStringLiteral("Authorization failed")), 2);
    QCOMPARE(log.countStartingWith(QStringLiteral("All pending requests")), 0);
    QCOMPARE(m_server->requests().size(), 1);
}

void TestTarnWebHandler::clearingDropsWaitingCalls()
{
    Answer silent;
    silent.silent = true;
    m_backend->sessionAnswers = {silent};
    ProbeHandler* handler = newHandler();
    handler->sendRequest(call(QStringLiteral("firmware"), QStringLiteral("A")));
    handler->sendRequest(call(QStringLiteral("firmware"), QStringLiteral("B")));
    QCOMPARE(tagsOf(handler->pendingRequests()), (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
    LogCapture log;
    handler->clearRetransmissionQueue();
    QCOMPARE(handler->pendingRequestCount(), 0);
    QCOMPARE(log.messages(Velmora::Logger::Debug), QStringList{QStringLiteral("Cleared retransmission queue")});
    QCOMPARE(handler->retransmissionInterval(), TarnWebHandler::DefaultRetransmissionInterval);
}

KESTRAVIN_TEST_MAIN(TestTarnWebHandler)
#include "tst_tarnwebhandler.moc"
