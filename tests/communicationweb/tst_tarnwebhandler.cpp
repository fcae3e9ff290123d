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

    void fiveHandlersShareOneHandshake();
    void unauthorizedCallGoesOutAgainWithBothSessions();
    void networkOutageKeepsEveryRequestQueued();

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

void TestTarnWebHandler::unauthorizedCallGoesOutAgainWithBothSessions()
{
    authorize();
    ProbeHandler* handler = newHandler();
    // Even a module that never retransmits lost calls gets its call through a new session.
    handler->setRetransmissionEnabled(false);
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

void TestTarnWebHandler::networkOutageKeepsEveryRequestQueued()
{
    authorize();
    ProbeHandler* handler = newHandler();
    handler->setRetransmissionInterval(30);
    m_server->shutDown();
    LogCapture log;
    const QStringList order{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")};
    for (const QString& tag : order)
        handler->sendRequest(call(QStringLiteral("firmware"), tag));

    // Several rounds go out and come back lost; between rounds the queue is whole. Each request is
    // queued again as its failure comes back, and parallel connections report refusals in no set
    // order, so the order within a round is the network's.
    QTRY_VERIFY_WITH_TIMEOUT(log.count(QStringLiteral("All pending requests [3] will be now retransmitted")) >= 3, 5000);
    // On a loaded machine the refusals of a round can straddle a tick and the queue is never
    // whole at a given moment; a long interval lets the round in flight come back complete.
    handler->setRetransmissionInterval(60000);
    QTRY_COMPARE(handler->pendingRequestCount(), 3);
    QStringList queued = tagsOf(handler->pendingRequests());
    queued.sort();
    QCOMPARE(queued, order);
    QVERIFY(log.count(QStringLiteral("Network communication error")) >= 9);
    QVERIFY(handler->seen.isEmpty());
    QVERIFY(m_service->isAuthorized());

    QVERIFY(m_server->restart());
    handler->setRetransmissionInterval(30);
    QTRY_COMPARE(handler->seen.size(), 3);
    QCOMPARE(handler->pendingRequestCount(), 0);
}

KESTRAVIN_TEST_MAIN(TestTarnWebHandler)
#include "tst_tarnwebhandler.moc"
