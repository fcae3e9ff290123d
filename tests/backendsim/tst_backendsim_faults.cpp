// Fault switches, the command line and TLS of the simulated back-end, against the real process.

#include "BackendTestSupport.h"
#include "support/TestEnvironment.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class TestBackendSimFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void faults_data();
    void faults();
    void faultCatchesOnlyItsCallAndVerb();
    void faultsCanBeListedAndCleared();
    void badFaultsRefusedByAdmin_data();
    void badFaultsRefusedByAdmin();

    void faultFromCommandLine();
    void filesAndKeysFromCommandLine();
    void badCommandLineRefused_data();
    void badCommandLineRefused();

    void unknownAuthorityRefused_data();
    void unknownAuthorityRefused();
    void oversizedBodyAndUnknownPathRefused();

private:
    HttpResult switchOn(const QByteArray& rule);
    QJsonArray journal();

    QTemporaryDir m_certificates;
    std::unique_ptr<BackendProcess> m_backend;
    std::unique_ptr<TrustedClient> m_client;
    QString m_session;
};

void TestBackendSimFaults::initTestCase()
{
    QVERIFY(m_certificates.isValid());
    QString error;
    QVERIFY2(BackendProcess::makeCertificates(m_certificates.path(), &error), qPrintable(error));
    m_backend = std::make_unique<BackendProcess>(m_certificates.path(), QStringList{QStringLiteral("--quiet")});
    QVERIFY2(m_backend->start(), qPrintable(m_backend->log()));
    m_client = std::make_unique<TrustedClient>(m_certificates.filePath(QStringLiteral("ca.pem")));
    m_session = authorizedSession(*m_client, *m_backend);
    QVERIFY(!m_session.isEmpty());
}

void TestBackendSimFaults::cleanup()
{
    QCOMPARE(m_client->remove(m_backend->admin(QStringLiteral("faults"))).status, 200);
}

HttpResult TestBackendSimFaults::switchOn(const QByteArray& rule)
{
    return m_client->post(m_backend->admin(QStringLiteral("faults")), rule);
}

QJsonArray TestBackendSimFaults::journal()
{
    return m_client->get(m_backend->admin(QStringLiteral("requests"))).json().array();
}

void TestBackendSimFaults::faults_data()
{
    QTest::addColumn<QByteArray>("rule");
    QTest::addColumn<int>("status");
    QTest::addColumn<QNetworkReply::NetworkError>("error");
    QTest::addColumn<int>("minimumMs");
    QTest::addColumn<QByteArray>("location");

    // The client gives up after 1500 ms, as the program's watchdog would.
    QTest::newRow("delay") << QByteArray(R"({"kind":"delay","call":"supported-models","ms":600,"times":1})") << 200
                           << QNetworkReply::NoError << 600 << QByteArray();
    QTest::newRow("never answer") << QByteArray(R"({"kind":"hang","call":"supported-models","times":1})") << 0
                                  << QNetworkReply::OperationCanceledError << 1500 << QByteArray();
    QTest::newRow("500") << QByteArray(R"({"kind":"error","call":"supported-models","times":1})") << 500
                         << QNetworkReply::InternalServerError << 0 << QByteArray();
    QTest::newRow("503") << QByteArray(R"({"kind":"error","call":"supported-models","status":503,"times":1})") << 503
                         << QNetworkReply::ServiceUnavailableError << 0 << QByteArray();
    QTest::newRow("redirect to this server")
        << QByteArray(R"({"kind":"redirect","call":"supported-models","times":1})") << 302 << QNetworkReply::NoError
        << 0 << QByteArray("/kestravin/public/api/moved/supported-models");
    QTest::newRow("redirect elsewhere")
        << QByteArray(R"({"kind":"redirect","call":"supported-models","location":"https://elsewhere.invalid/x","times":1})")
        << 302 << QNetworkReply::NoError << 0 << QByteArray("https://elsewhere.invalid/x");
    // Qt sends a request again when a connection closes before any answer, so a drop must catch
    // the repeats as well to be seen.
    QTest::newRow("drop the connection") << QByteArray(R"({"kind":"drop","call":"supported-models"})") << 0
                                         << QNetworkReply::RemoteHostClosedError << 0 << QByteArray();
}

void TestBackendSimFaults::faults()
{
    QFETCH(QByteArray, rule);
    QFETCH(int, status);
    QFETCH(QNetworkReply::NetworkError, error);
    QFETCH(int, minimumMs);
    QFETCH(QByteArray, location);

    QCOMPARE(switchOn(rule).status, 201);
    QCOMPARE(m_client->remove(m_backend->admin(QStringLiteral("requests"))).status, 200);
    const QUrl url = withSessions(m_backend->api(QStringLiteral("supported-models")), {m_session});

    const HttpResult caught = m_client->get(url, 1500);
    QCOMPARE(caught.status, status);
    QCOMPARE(caught.error, error);
    QVERIFY2(caught.elapsedMs >= minimumMs, qPrintable(QString::number(caught.elapsedMs)));
    if (status == 200)
        QVERIFY(caught.json().isArray());
    if (!location.isEmpty())
        QVERIFY2(caught.location.endsWith(location), caught.location.constData());

    // A held or dropped connection doesn't keep the server busy.
    QCOMPARE(m_client->remove(m_backend->admin(QStringLiteral("faults"))).status, 200);
    const HttpResult next = m_client->get(url);
    QCOMPARE(next.status, 200);
    QVERIFY(next.elapsedMs < 1000);

    const QJsonObject noted = journal().first().toObject();
    QCOMPARE(noted.value(QStringLiteral("call")).toString(), QStringLiteral("supported-models"));
    QCOMPARE(noted.value(QStringLiteral("fault")).toString(),
             QJsonDocument::fromJson(rule).object().value(QStringLiteral("kind")).toString());
    QCOMPARE(noted.value(QStringLiteral("status")).toInt(), status);
}

void TestBackendSimFaults::faultCatchesOnlyItsCallAndVerb()
{
    QCOMPARE(switchOn(R"({"kind":"error","call":"session","method":"post","times":2})").status, 201);

    // GET "session" is another verb of the same call and goes through.
    const QString session = openSession(*m_client, *m_backend);
    QCOMPARE(session.size(), 32);
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {m_session})).status, 200);
    const QString hash = hmacHex(sharedKey(), session);
    QCOMPARE(verifySession(*m_client, *m_backend, session, hash).status, 500);
    QCOMPARE(verifySession(*m_client, *m_backend, session, hash).status, 500);
    const HttpResult third = verifySession(*m_client, *m_backend, session, hash);
    QCOMPARE(third.status, 200);
    QCOMPARE(third.json().object().value(QStringLiteral("authenticated")).toBool(), true);
}

void TestBackendSimFaults::faultsCanBeListedAndCleared()
{
    QCOMPARE(switchOn(R"({"kind":"delay","ms":250})").status, 201);
    QCOMPARE(switchOn(R"({"kind":"drop","call":"ad","times":3})").status, 201);
    const QJsonArray listed = m_client->get(m_backend->admin(QStringLiteral("faults"))).json().array();
    QCOMPARE(listed.size(), 2);
    QCOMPARE(listed.at(0).toObject().value(QStringLiteral("call")).toString(), QStringLiteral("*"));
    QCOMPARE(listed.at(0).toObject().value(QStringLiteral("ms")).toInt(), 250);
    QCOMPARE(listed.at(1).toObject().value(QStringLiteral("times")).toInt(), 3);

    // A fault without a call catches every call of the API, but never the test hooks.
    const HttpResult delayed = m_client->get(m_backend->api(QStringLiteral("captcha.php")));
    QCOMPARE(delayed.status, 200);
    QVERIFY(delayed.elapsedMs >= 250);

    QCOMPARE(m_client->remove(m_backend->admin(QStringLiteral("faults"))).status, 200);
    QVERIFY(m_client->get(m_backend->admin(QStringLiteral("faults"))).json().array().isEmpty());
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("ad")), {m_session})).status, 200);
}

void TestBackendSimFaults::badFaultsRefusedByAdmin_data()
{
    QTest::addColumn<QByteArray>("rule");

    QTest::newRow("no kind") << QByteArray(R"({"call":"ad"})");
    QTest::newRow("unknown kind") << QByteArray(R"({"kind":"explode"})");
    QTest::newRow("unknown key") << QByteArray(R"({"kind":"delay","seconds":3})");
    QTest::newRow("negative delay") << QByteArray(R"({"kind":"delay","ms":-5})");
    QTest::newRow("status out of range") << QByteArray(R"({"kind":"error","status":999})");
    QTest::newRow("zero times") << QByteArray(R"({"kind":"drop","times":0})");
    QTest::newRow("not an object") << QByteArray(R"(["delay"])");
}

void TestBackendSimFaults::badFaultsRefusedByAdmin()
{
    QFETCH(QByteArray, rule);

    const HttpResult result = switchOn(rule);
    QCOMPARE(result.status, 400);
    QVERIFY(!result.json().object().value(QStringLiteral("error")).toString().isEmpty());
    QVERIFY(m_client->get(m_backend->admin(QStringLiteral("faults"))).json().array().isEmpty());
}

void TestBackendSimFaults::faultFromCommandLine()
{
    BackendProcess backend(m_certificates.path(),
                           {QStringLiteral("--quiet"), QStringLiteral("--fault"),
                            QStringLiteral("kind=error,call=ad,status=502,times=1"), QStringLiteral("--fault"),
                            QStringLiteral("kind=redirect,call=application,location=https://127.0.0.1:1/moved")});
    QVERIFY2(backend.start(), qPrintable(backend.log()));
    const QString session = authorizedSession(*m_client, backend);
    QVERIFY(!session.isEmpty());

    QCOMPARE(m_client->get(withSessions(backend.api(QStringLiteral("ad")), {session})).status, 502);
    QCOMPARE(m_client->get(withSessions(backend.api(QStringLiteral("ad")), {session})).status, 200);
    for (int i = 0; i < 2; ++i) {
        const HttpResult redirected = m_client->get(withSessions(backend.api(QStringLiteral("application")), {session}));
        QCOMPARE(redirected.status, 302);
        QCOMPARE(redirected.location, QByteArrayLiteral("https://127.0.0.1:1/moved"));
    }
}

void TestBackendSimFaults::filesAndKeysFromCommandLine()
{
    QTemporaryDir files;
    QVERIFY(files.isValid());
    const QByteArray installerBytes("MZ stand-in installer\0with a zero byte", 38);
    const QByteArray pictureBytes("GIF89a tiny");
    for (const auto& [name, bytes] : {qMakePair(QStringLiteral("setup.exe"), installerBytes),
                                      qMakePair(QStringLiteral("banner.gif"), pictureBytes)}) {
        QFile file(files.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    BackendProcess backend(m_certificates.path(),
                           {"--quiet", "--shared-key", "0therKey99", "--app-version", "2.0.0", "--installer",
                            files.filePath("setup.exe"), "--ad-picture", files.filePath("banner.gif"), "--ad-link",
                            "https://example.org/offer", "--captcha-text", "abcde"});
    QVERIFY2(backend.start(), qPrintable(backend.log()));

    // The default key no longer opens a session; the one given does.
    QVERIFY(authorizedSession(*m_client, backend).isEmpty());
    const QString session = openSession(*m_client, backend);
    const HttpResult verdict = verifySession(*m_client, backend, session, hmacHex("0therKey99", session));
    QCOMPARE(verdict.json().object().value(QStringLiteral("authenticated")).toBool(), true);

    const QJsonObject application =
        m_client->get(withSessions(backend.api(QStringLiteral("application")), {session})).json().object();
    QCOMPARE(application.value(QStringLiteral("version")).toString(), QStringLiteral("2.0.0"));
    const QUrl installer(application.value(QStringLiteral("url")).toString());
    QCOMPARE(installer.fileName(), QStringLiteral("setup.exe"));
    QCOMPARE(m_client->get(installer).body, installerBytes);

    const QJsonObject ad = m_client->get(withSessions(backend.api(QStringLiteral("ad")), {session})).json().object();
    QCOMPARE(ad.value(QStringLiteral("link")).toString(), QStringLiteral("https://example.org/offer"));
    const HttpResult picture = m_client->get(QUrl(ad.value(QStringLiteral("file")).toString()));
    QCOMPARE(picture.contentType, QByteArrayLiteral("image/gif"));
    QCOMPARE(picture.body, pictureBytes);

    QCOMPARE(m_client->get(backend.api(QStringLiteral("captcha.php"))).status, 200);
    QCOMPARE(m_client->get(backend.admin(QStringLiteral("captcha"))).json().object().value(QStringLiteral("text")).toString(),
             QStringLiteral("ABCDE"));
}

void TestBackendSimFaults::badCommandLineRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("reason");

    QTest::newRow("unknown fault kind") << QStringList{"--fault", "kind=explode"} << 2 << "bad value 'explode'";
    QTest::newRow("fault without kind") << QStringList{"--fault", "call=ad"} << 2 << "a fault needs a kind";
    QTest::newRow("port out of range") << QStringList{"--port", "70000"} << 2 << "bad port";
    QTest::newRow("no certificate") << QStringList{"--certificate", "/nonexistent/server.pem"} << 2
                                    << "no certificate or key file";
    QTest::newRow("stray argument") << QStringList{"serve"} << 2 << "unexpected argument";
    QTest::newRow("catalogue missing") << QStringList{"--catalogue", "/nonexistent/catalogue.json"} << 1
                                       << "cannot read /nonexistent/catalogue.json";
    QTest::newRow("catalogue with an empty field")
        << QStringList{"--catalogue", QFINDTESTDATA("empty-firmware-catalogue.json")} << 1
        << "needs non-empty model, firmware, smartType and newestFirmware";
}

void TestBackendSimFaults::badCommandLineRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, reason);

    // The build's own certificates may not exist in a test's tree: name the test's set.
    BackendProcess backend(m_certificates.path(),
                           QStringList{"--certificate", m_certificates.filePath("server.pem"), "--key",
                                       m_certificates.filePath("server.key")}
                               + arguments);
    QCOMPARE(backend.runToEnd(), exitCode);
    QVERIFY2(backend.log().contains(reason), qPrintable(backend.log()));
}

void TestBackendSimFaults::unknownAuthorityRefused_data()
{
    QTest::addColumn<bool>("otherAuthority");

    QTest::newRow("no authority of ours") << false;
    QTest::newRow("another local authority") << true;
}

void TestBackendSimFaults::unknownAuthorityRefused()
{
    QFETCH(bool, otherAuthority);

    QTemporaryDir other;
    QString caPath;
    if (otherAuthority) {
        QString error;
        QVERIFY2(BackendProcess::makeCertificates(other.path(), &error), qPrintable(error));
        caPath = other.filePath(QStringLiteral("ca.pem"));
    }
    TrustedClient stranger(caPath);
    const HttpResult result = stranger.get(m_backend->api(QStringLiteral("session")));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.error, QNetworkReply::SslHandshakeFailedError);
    QVERIFY(!result.sslErrors.isEmpty());
}

void TestBackendSimFaults::oversizedBodyAndUnknownPathRefused()
{
    const QByteArray huge(9 * 1024 * 1024, 'x');
    QCOMPARE(m_client->post(m_backend->api(QStringLiteral("session")), huge, "application/json", 10000).status, 413);
    QCOMPARE(m_client->get(m_backend->api(QStringLiteral("no-such-call"))).status, 404);
    // The server lives on after both.
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("supported-models")), {m_session})).status, 200);
}

KESTRAVIN_TEST_MAIN(TestBackendSimFaults)
#include "tst_backendsim_faults.moc"
