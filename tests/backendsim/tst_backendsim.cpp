// What the simulated back-end does beyond what the web suite already exercises end to end:
// several sessions on one call, and its command line.

#include "BackendTestSupport.h"
#include "support/TestEnvironment.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class TestBackendSim : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void expiredSessionGivesWayToNewHandshake();
    void badCommandLineRefused_data();
    void badCommandLineRefused();

private:
    QTemporaryDir m_certificates;
    std::unique_ptr<BackendProcess> m_backend;
    std::unique_ptr<TrustedClient> m_client;
};

void TestBackendSim::initTestCase()
{
    QVERIFY(m_certificates.isValid());
    QString error;
    QVERIFY2(BackendProcess::makeCertificates(m_certificates.path(), &error), qPrintable(error));
    m_backend = std::make_unique<BackendProcess>(m_certificates.path(), QStringList{QStringLiteral("--quiet")});
    QVERIFY2(m_backend->start(), qPrintable(m_backend->log()));
    m_client = std::make_unique<TrustedClient>(m_certificates.filePath(QStringLiteral("ca.pem")));
    // The test's own handshake must be the real HMAC-SHA-256, or a server mistake shared with it
    // would go unseen: checked against a vector computed elsewhere.
    QCOMPARE(hmacHex(sharedKey(), QStringLiteral("0123456789abcdef0123456789abcdef")),
             QStringLiteral("43145723ba01440b7c36d9476e8b33b4ea134851e127037d386d9cdee6e17667"));
}

void TestBackendSim::expiredSessionGivesWayToNewHandshake()
{
    const QString old = authorizedSession(*m_client, *m_backend);
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {old})).status, 200);
    QCOMPARE(m_client->post(m_backend->admin(QStringLiteral("sessions/expire")), QByteArray()).status, 200);
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {old})).status, 401);

    // The program re-sends a request after a 401 with the old session still in its query and the
    // new one behind it: the last one counts.
    const QString fresh = authorizedSession(*m_client, *m_backend);
    QVERIFY(!fresh.isEmpty());
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {old, fresh})).status, 200);
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {fresh, old})).status, 401);
}

void TestBackendSim::badCommandLineRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("reason");

    QTest::newRow("unknown fault kind") << QStringList{"--fault", "kind=explode"} << 2 << "bad value 'explode'";
    QTest::newRow("stray argument") << QStringList{"serve"} << 2 << "unexpected argument";
    QTest::newRow("catalogue with an empty field")
        << QStringList{"--catalogue", QFINDTESTDATA("empty-firmware-catalogue.json")} << 1
        << "needs non-empty model, firmware, smartType and newestFirmware";
}

void TestBackendSim::badCommandLineRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, reason);

    // The build's own certificates may not exist in a test's tree: name the test's set.
    BackendProcess backend(m_certificates.path(), QStringList{"--certificate", m_certificates.filePath("server.pem"),
                                                      "--key", m_certificates.filePath("server.key")} + arguments);
    QCOMPARE(backend.runToEnd(), exitCode);
    QVERIFY2(backend.log().contains(reason), qPrintable(backend.log()));
}

KESTRAVIN_TEST_MAIN(TestBackendSim)
#include "tst_backendsim.moc"
