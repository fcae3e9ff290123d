#include "rest/Authenticator.h"
#include "rest/RestClient.h"
#include "rest/RestResponse.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace REST;

namespace {

// Stamps each request with a session query item, as the back-end's handshake does.
class SessionStamp : public Authenticator
{
public:
    using Authenticator::Authenticator;
    void authenticate(RestRequest& request) override { request.addQueryParameter(QStringLiteral("session"), m_credential); }
};

class Requester : public QObject
{
    Q_OBJECT
public:
    QList<RestResponse*> received;
    ~Requester() override { qDeleteAll(received); }
public slots:
    void onRestResponseReceived(REST::RestResponse* response) { received.append(response); }
};

} // namespace

class TestRestClient : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void buildsTheTarget_data();
    void buildsTheTarget();
    void sendsTheDefaultAcceptUnlessGiven_data();
    void sendsTheDefaultAcceptUnlessGiven();
    void joinsBodies();
    void leavesMissingAttachmentsOut();
    void stampsEverySending();
    void readsTheResponse();
    void deliversToTheRequestersSlot();
    void abortsSilentServers();
    void givesAttachmentsMoreTime();
    void refusesUnimplementedVerbs();
    void describesRequests();

private:
    HttpTestServer* m_server = nullptr;
    RestClient* m_client = nullptr;
};

void TestRestClient::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
}

void TestRestClient::init()
{
    m_server = new HttpTestServer;
    QVERIFY(m_server->listen());
    m_client = new RestClient(m_server->baseUrl());
}

void TestRestClient::cleanup()
{
    delete m_client;
    delete m_server;
}

void TestRestClient::buildsTheTarget_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("pathParameters");
    QTest::addColumn<QStringList>("queryParameters");
    QTest::addColumn<QByteArray>("target");

    QTest::newRow("leading slash") << "/session" << QStringList() << QStringList() << QByteArray("/kestravin/public/api/session");
    QTest::newRow("no leading slash") << "session" << QStringList() << QStringList() << QByteArray("/kestravin/public/api/session");
    QTest::newRow("placeholder twice") << "drives/{model}/fw/{model}" << QStringList{"model", "X1"} << QStringList()
                                       << QByteArray("/kestravin/public/api/drives/X1/fw/X1");
    QTest::newRow("unmatched placeholder stays") << "drives/{model}" << QStringList{"Model", "X1"} << QStringList()
                                                 << QByteArray("/kestravin/public/api/drives/%7Bmodel%7D");
    QTest::newRow("query items in order") << "firmware?lang=en" << QStringList() << QStringList{"model", "A", "fw", "1"}
                                          << QByteArray("/kestravin/public/api/firmware?lang=en&model=A&fw=1");
}

void TestRestClient::buildsTheTarget()
{
    QFETCH(QString, path);
    QFETCH(QStringList, pathParameters);
    QFETCH(QStringList, queryParameters);
    QFETCH(QByteArray, target);

    RestRequest request(GET, path);
    for (int i = 0; i + 1 < pathParameters.size(); i += 2)
        request.addPathParameter(pathParameters.at(i), pathParameters.at(i + 1));
    for (int i = 0; i + 1 < queryParameters.size(); i += 2)
        request.addQueryParameter(queryParameters.at(i), queryParameters.at(i + 1));
    QScopedPointer<RestResponse> response(m_client->sendSync(request));
    QVERIFY(response);
    QCOMPARE(m_server->requests().size(), 1);
    QCOMPARE(m_server->requests().first().target, target);
    QCOMPARE(m_server->requests().first().method, QByteArray("GET"));
}

void TestRestClient::sendsTheDefaultAcceptUnlessGiven_data()
{
    QTest::addColumn<QString>("header");
    QTest::addColumn<QByteArray>("accept");
    QTest::newRow("default") << QString() << QByteArray("application/json,text/json");
    QTest::newRow("upper-case ACCEPT wins") << "ACCEPT" << QByteArray("image/png");
    QTest::newRow("other header") << "X-Kind" << QByteArray("application/json,text/json");
}

void TestRestClient::sendsTheDefaultAcceptUnlessGiven()
{
    QFETCH(QString, header);
    QFETCH(QByteArray, accept);
    RestRequest request(GET, QStringLiteral("captcha.php"));
    if (!header.isEmpty())
        request.addHeader(header, QStringLiteral("image/png"));
    QScopedPointer<RestResponse> response(m_client->sendSync(request));
    QCOMPARE(m_server->requests().first().headers.value("accept"), accept);
}

void TestRestClient::joinsBodies()
{
    RestRequest request(POST, QStringLiteral("tickets"));
    request.addBody(QStringLiteral("text/plain"), "first ");
    request.addJsonBody(QJsonDocument(QJsonObject{{QStringLiteral("a"), 1}}));
    QScopedPointer<RestResponse> response(m_client->sendSync(request));
    const HttpTestServer::Request sent = m_server->requests().first();
    QCOMPARE(sent.method, QByteArray("POST"));
    QCOMPARE(sent.headers.value("content-type"), QByteArray("application/json"));
    QCOMPARE(sent.body, QByteArray("first ") + QJsonDocument(QJsonObject{{QStringLiteral("a"), 1}}).toJson());
}

void TestRestClient::leavesMissingAttachmentsOut()
{
    QTemporaryDir dir;
    const QString present = dir.filePath(QStringLiteral("version.txt"));
    QFile file(present);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("1.1.4");
    file.close();

    RestRequest request(POST, QStringLiteral("support"));
    request.addFile(QStringLiteral("version.txt"), present, QStringLiteral("text/plain"));
    request.addFile(QStringLiteral("missing"), dir.filePath(QStringLiteral("missing.json")), QStringLiteral("application/json"));
    request.addBody(QStringLiteral("application/json"), "{\"email\":\"a@b\"}");
    LogCapture log;
    QScopedPointer<RestResponse> response(m_client->sendSync(request));

    QCOMPARE(log.count(QStringLiteral("Specified REST request file is not available: %1").arg(dir.filePath(QStringLiteral("missing.json")))), 1);
    const HttpTestServer::Request sent = m_server->requests().first();
    QVERIFY(sent.headers.value("content-type").startsWith("multipart/form-data; boundary="));
    QVERIFY(sent.body.contains("Content-Disposition: form-data; name=\"version.txt\"; filename=\"version.txt\""));
    QVERIFY(sent.body.contains("1.1.4"));
    QVERIFY(!sent.body.contains("missing"));
    QVERIFY(sent.body.contains("Content-Disposition: form-data; name=\"application/json\""));
    QVERIFY(sent.body.contains("{\"email\":\"a@b\"}"));
}

void TestRestClient::stampsEverySending()
{
    m_client->setAuthenticator(new SessionStamp(QStringLiteral("s1")));
    RestRequest request(GET, QStringLiteral("firmware"));
    QScopedPointer<RestResponse> first(m_client->sendSync(request));
    m_client->setAuthenticator(new SessionStamp(QStringLiteral("s2")));
    QScopedPointer<RestResponse> second(m_client->sendSync(request));
    QCOMPARE(m_server->requests().at(0).target, QByteArray("/kestravin/public/api/firmware?session=s1"));
    QCOMPARE(m_server->requests().at(1).target, QByteArray("/kestravin/public/api/firmware?session=s1&session=s2"));
    QCOMPARE(second->request(), request);

    m_client->setAuthenticator(new Authenticator(QStringLiteral("dXNlcjpwYXNz")));
    RestRequest basic(GET, QStringLiteral("x"));
    QScopedPointer<RestResponse> third(m_client->sendSync(basic));
    QCOMPARE(m_server->requests().at(2).headers.value("authorization"), QByteArray("Basic dXNlcjpwYXNz"));
}

void TestRestClient::readsTheResponse()
{
    HttpTestServer::Answer answer;
    answer.status = 404;
    answer.body = QByteArray("not\0here", 8);
    m_server->enqueue(answer);
    HttpTestServer::Answer ok;
    ok.body = "{}";
    m_server->enqueue(ok);
    RestRequest request(GET, QStringLiteral("firmware"));
    QScopedPointer<RestResponse> response(m_client->sendSync(request));
    QCOMPARE(response->status(), 404);
    QCOMPARE(response->content(), QStringLiteral("not"));
    QCOMPARE(response->contentLength(), 8L);
    QCOMPARE(response->contentType(), QStringLiteral("application/json"));
    QVERIFY(!response->isSuccessful());
    QVERIFY(response->toString().startsWith(QStringLiteral("Reply [%1firmware]:\n\tError: ").arg(m_server->baseUrl().toString())));
    QVERIFY(response->toString().endsWith(QLatin1String("\n\tStatus: 404\n\tContent type: application/json\n\tContent:\nnot")));

    QScopedPointer<RestResponse> success(m_client->sendSync(request));
    QVERIFY2(success->isSuccessful(), qPrintable(success->toString()));
}

void TestRestClient::deliversToTheRequestersSlot()
{
    HttpTestServer::Answer answer;
    answer.status = 201;
    answer.body = "{\"id\":7}";
    m_server->enqueue(answer);
    Requester requester;
    RestRequest request(POST, QStringLiteral("support"));
    m_client->sendAsync(request, &requester, SLOT(onRestResponseReceived(REST::RestResponse*)));
    QCOMPARE(requester.received.size(), 0);
    QTRY_COMPARE(requester.received.size(), 1);
    RestResponse* response = requester.received.first();
    QCOMPARE(response->status(), 201);
    QCOMPARE(response->content(), QStringLiteral("{\"id\":7}"));
    QCOMPARE(response->parent(), nullptr);
}

void TestRestClient::abortsSilentServers()
{
    HttpTestServer::Answer silent;
    silent.silent = true;
    m_server->enqueue(silent);
    m_client->setTimeout(100);
    LogCapture log;
    Requester requester;
    RestRequest request(GET, QStringLiteral("session"));
    m_client->sendAsync(request, &requester, SLOT(onRestResponseReceived(REST::RestResponse*)));
    QTRY_COMPARE(requester.received.size(), 1);
    QCOMPARE(requester.received.first()->status(), 0);
    QCOMPARE(requester.received.first()->error(), QNetworkReply::OperationCanceledError);
    QCOMPARE(log.count(QStringLiteral("REST reply timeout")), 1);
    QCOMPARE(log.messages(Velmora::Logger::Error).size(), 1);
    QVERIFY(log.messages(Velmora::Logger::Error).first().contains(QLatin1String("[error OperationCanceledError - ")));

    QScopedPointer<RestResponse> sync(m_client->sendSync(request));
    QCOMPARE(sync->error(), QNetworkReply::OperationCanceledError);
}

void TestRestClient::givesAttachmentsMoreTime()
{
    HttpTestServer::Answer silent;
    silent.silent = true;
    m_server->enqueue(silent);
    m_client->setTimeout(100);
    QTemporaryDir dir;
    RestRequest request(POST, QStringLiteral("support"));
    for (int i = 0; i < 2; ++i) {
        QFile file(dir.filePath(QString::number(i)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("x");
        file.close();
        request.addFile(QString::number(i), file.fileName(), QStringLiteral("text/plain"));
    }
    QElapsedTimer elapsed;
    elapsed.start();
    QScopedPointer<RestResponse> response(m_client->sendSync(request));
    // Three times the limit; coarse timers may fire up to 5% early, and two times would be 200.
    QVERIFY2(elapsed.elapsed() >= 270, qPrintable(QString::number(elapsed.elapsed())));
    QCOMPARE(response->error(), QNetworkReply::OperationCanceledError);
}

void TestRestClient::refusesUnimplementedVerbs()
{
    LogCapture log;
    RestRequest request(PATCH, QStringLiteral("x"));
    QCOMPARE(m_client->sendSync(request), nullptr);
    QCOMPARE(log.count(QStringLiteral("Unimplemented REST request type: 4")), 1);

    Requester requester;
    RestRequest options(OPTIONS, QStringLiteral("x"));
    log.clear();
    m_client->sendAsync(options, &requester, SLOT(onRestResponseReceived(REST::RestResponse*)));
    QCOMPARE(requester.received, QList<RestResponse*>{nullptr});
    QCOMPARE(log.messages(Velmora::Logger::Info),
        (QStringList{QStringLiteral("Sending new REST request to [%1x]").arg(m_server->baseUrl().toString()),
            QStringLiteral("Authorization started... A"),
            QStringLiteral("Authorization started... A_1 1onRestResponseReceived(REST::RestResponse*)"),
            QStringLiteral("Authorization started... A_2 onRestResponseReceived"),
            QStringLiteral("Authorization started... B")}));
    QVERIFY(m_server->requests().isEmpty());
}

void TestRestClient::describesRequests()
{
    RestRequest request(DELETE, QStringLiteral("tickets/{id}"));
    request.addPathParameter(QStringLiteral("id"), 12);
    request.addFile(QStringLiteral("log"), QStringLiteral("/tmp/x.log"), QStringLiteral("text/plain"));
    QCOMPARE(request.description(), QStringLiteral("Request [DELETE -> tickets/{id}]\n\tRest parameters: 1\n\t[id] -> [12]"
                                                   "\n\tRest FILE parameters: 1\n\t[log] -> [/tmp/x.log (text/plain)]"));
    QCOMPARE(requestTypeName(7), QStringLiteral("Out of range"));
    QCOMPARE(RestClient::slotName(QStringLiteral("1onDone(REST::RestResponse*)")), QStringLiteral("onDone"));
}

KESTRAVIN_TEST_MAIN(TestRestClient)
#include "tst_restclient.moc"
