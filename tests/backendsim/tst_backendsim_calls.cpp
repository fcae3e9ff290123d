// The simulated back-end's calls, against the real Kestravin_Backend process over TLS.

#include "BackendTestSupport.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QHttpMultiPart>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class TestBackendSimCalls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void handshake_data();
    void handshake();
    void handshakeRefusesMalformedBodies_data();
    void handshakeRefusesMalformedBodies();
    void callsWithoutUsableSessionAnswer401_data();
    void callsWithoutUsableSessionAnswer401();
    void expiredSessionGivesWayToNewHandshake();

    void supportedModelsNameEveryServiceDrive();
    void firmware_data();
    void firmware();
    void applicationOffersItsInstaller();
    void advertisementPictureAndLink();

    void captchaThenTicket();
    void ticketInput_data();
    void ticketInput();

private:
    HttpResult getWithSession(const QString& path);
    QString captchaText();
    QHttpMultiPart* ticketForm(const QString& captcha, const QByteArray& versionText);

    QTemporaryDir m_certificates;
    std::unique_ptr<BackendProcess> m_backend;
    std::unique_ptr<TrustedClient> m_client;
    QString m_session;
};

namespace {

QByteArray ticketJson(const QString& captcha, const QStringList& leaveOut = {})
{
    QJsonObject request{{QStringLiteral("message"), QStringLiteral("The drive is slow")},
                        {QStringLiteral("diskSerialNumber"), QStringLiteral("BC3S2241A0093")},
                        {QStringLiteral("email"), QStringLiteral("user@example.org")},
                        {QStringLiteral("captcha"), captcha}};
    for (const QString& key : leaveOut)
        request.remove(key);
    return QJsonDocument(request).toJson();
}

// The program's rule for "is this one of the maker's drives": the entry's fragments occur in
// the drive's model with its blanks removed and in its firmware, case aside.
bool entryMatches(const QJsonObject& entry, const QString& model, const QString& firmware)
{
    QString strippedModel = model;
    QString strippedFirmware = firmware;
    strippedModel.remove(QLatin1Char(' '));
    strippedFirmware.remove(QLatin1Char(' '));
    return strippedModel.contains(entry.value(QStringLiteral("model")).toString(), Qt::CaseInsensitive)
           && strippedFirmware.contains(entry.value(QStringLiteral("firmware")).toString(), Qt::CaseInsensitive);
}

} // namespace

void TestBackendSimCalls::initTestCase()
{
    QVERIFY(m_certificates.isValid());
    QString error;
    QVERIFY2(BackendProcess::makeCertificates(m_certificates.path(), &error), qPrintable(error));
    m_backend = std::make_unique<BackendProcess>(m_certificates.path(), QStringList{QStringLiteral("--quiet")});
    QVERIFY2(m_backend->start(), qPrintable(m_backend->log()));
    m_client = std::make_unique<TrustedClient>(m_certificates.filePath(QStringLiteral("ca.pem")));

    // The test's own handshake must be the real HMAC-SHA-256, or a server mistake shared with
    // it would go unseen: check it against a vector computed elsewhere.
    QCOMPARE(hmacHex(sharedKey(), QStringLiteral("0123456789abcdef0123456789abcdef")),
             QStringLiteral("43145723ba01440b7c36d9476e8b33b4ea134851e127037d386d9cdee6e17667"));
}

// Some tests expire every session; each starts with a fresh one.
void TestBackendSimCalls::init()
{
    m_session = authorizedSession(*m_client, *m_backend);
    QVERIFY(!m_session.isEmpty());
}

void TestBackendSimCalls::cleanupTestCase()
{
    m_backend.reset();
}

HttpResult TestBackendSimCalls::getWithSession(const QString& path)
{
    return m_client->get(withSessions(m_backend->api(path), {m_session}));
}

QString TestBackendSimCalls::captchaText()
{
    return m_client->get(m_backend->admin(QStringLiteral("captcha"))).json().object().value(QStringLiteral("text")).toString();
}

// The form as the program sends it: the attachment first, named after its file, with the bare
// content type "text", then the request in a part named after its content type.
QHttpMultiPart* TestBackendSimCalls::ticketForm(const QString& captcha, const QByteArray& versionText)
{
    auto* form = new QHttpMultiPart(QHttpMultiPart::FormDataType);
    QHttpPart attachment;
    attachment.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("text"));
    attachment.setHeader(QNetworkRequest::ContentDispositionHeader,
                         QStringLiteral("form-data; name=\"version.txt\"; filename=\"version.txt\""));
    attachment.setBody(versionText);
    form->append(attachment);
    QHttpPart request;
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setHeader(QNetworkRequest::ContentDispositionHeader, QStringLiteral("form-data; name=\"application/json\""));
    request.setBody(ticketJson(captcha));
    form->append(request);
    return form;
}

void TestBackendSimCalls::handshake_data()
{
    QTest::addColumn<QString>("hashKind");
    QTest::addColumn<bool>("authenticated");

    QTest::newRow("HMAC with the shared key") << "right" << true;
    QTest::newRow("HMAC with another key") << "other key" << false;
    QTest::newRow("upper-case hex") << "upper case" << false;
    QTest::newRow("HMAC of another session") << "other session" << false;
    QTest::newRow("session never issued") << "unknown session" << false;
}

void TestBackendSimCalls::handshake()
{
    QFETCH(QString, hashKind);
    QFETCH(bool, authenticated);

    QString session = openSession(*m_client, *m_backend);
    QCOMPARE(session.size(), 32);
    QString hash = hmacHex(sharedKey(), session);
    if (hashKind == QLatin1String("other key"))
        hash = hmacHex(QByteArrayLiteral("Qx7mTzR4kQ"), session);
    else if (hashKind == QLatin1String("upper case"))
        hash = hash.toUpper();
    else if (hashKind == QLatin1String("other session"))
        hash = hmacHex(sharedKey(), openSession(*m_client, *m_backend));
    else if (hashKind == QLatin1String("unknown session")) {
        session = QStringLiteral("0123456789abcdef0123456789abcdef");
        hash = hmacHex(sharedKey(), session);
    }

    const HttpResult verdict = verifySession(*m_client, *m_backend, session, hash);
    QCOMPARE(verdict.status, 200);
    QCOMPARE(verdict.contentType, QByteArrayLiteral("application/json"));
    QVERIFY(verdict.json().object().value(QStringLiteral("authenticated")).isBool());
    QCOMPARE(verdict.json().object().value(QStringLiteral("authenticated")).toBool(), authenticated);

    const HttpResult call = m_client->get(withSessions(m_backend->api(QStringLiteral("supported-models")), {session}));
    QCOMPARE(call.status, authenticated ? 200 : 401);
}

void TestBackendSimCalls::handshakeRefusesMalformedBodies_data()
{
    QTest::addColumn<QByteArray>("body");

    QTest::newRow("not JSON") << QByteArray("session=abc&hash=def");
    QTest::newRow("an array") << QByteArray(R"(["abc", "def"])");
    QTest::newRow("no hash") << QByteArray(R"({"session":"abc"})");
    QTest::newRow("hash is a number") << QByteArray(R"({"session":"abc","hash":12})");
    QTest::newRow("empty") << QByteArray();
}

void TestBackendSimCalls::handshakeRefusesMalformedBodies()
{
    QFETCH(QByteArray, body);

    const HttpResult result = m_client->post(m_backend->api(QStringLiteral("session")), body);
    QCOMPARE(result.status, 400);
    QVERIFY(!result.json().object().value(QStringLiteral("error")).toString().isEmpty());
    QTRY_VERIFY(m_backend->log().contains(QLatin1String("POST session refused with 400")));
}

void TestBackendSimCalls::callsWithoutUsableSessionAnswer401_data()
{
    QTest::addColumn<QByteArray>("verb");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("sessionState");

    const QList<QPair<QByteArray, QString>> calls{
        {"GET", QStringLiteral("supported-models")},
        {"GET", QStringLiteral("firmware?model=BRANTEL%20Corvid%20S3&currentFirmware=CS3R12B")},
        {"GET", QStringLiteral("application")},
        {"GET", QStringLiteral("ad")},
        {"POST", QStringLiteral("support")},
    };
    for (const auto& [verb, path] : calls) {
        for (const char* state : {"none", "unknown", "not verified", "expired"}) {
            QTest::addRow("%s %s, session %s", verb.constData(), qPrintable(path.section(QLatin1Char('?'), 0, 0)),
                          state)
                << verb << path << QString::fromLatin1(state);
        }
    }
}

void TestBackendSimCalls::callsWithoutUsableSessionAnswer401()
{
    QFETCH(QByteArray, verb);
    QFETCH(QString, path);
    QFETCH(QString, sessionState);

    QStringList sessions;
    if (sessionState == QLatin1String("unknown"))
        sessions << QStringLiteral("feedfacefeedfacefeedfacefeedface");
    else if (sessionState == QLatin1String("not verified"))
        sessions << openSession(*m_client, *m_backend);
    else if (sessionState == QLatin1String("expired")) {
        sessions << authorizedSession(*m_client, *m_backend);
        QCOMPARE(m_client->post(m_backend->admin(QStringLiteral("sessions/expire")), QByteArray()).status, 200);
    }

    const QUrl url = withSessions(m_backend->api(path), sessions);
    const HttpResult result = verb == "GET" ? m_client->get(url) : m_client->post(url, ticketJson(QStringLiteral("X")));
    QCOMPARE(result.status, 401);
    QCOMPARE(result.error, QNetworkReply::AuthenticationRequiredError);
    QVERIFY(result.json().object().contains(QStringLiteral("error")));
}

void TestBackendSimCalls::expiredSessionGivesWayToNewHandshake()
{
    const QString old = authorizedSession(*m_client, *m_backend);
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {old})).status, 200);

    const HttpResult expiry = m_client->post(m_backend->admin(QStringLiteral("sessions/expire")), QByteArray());
    QCOMPARE(expiry.status, 200);
    QVERIFY(expiry.json().object().value(QStringLiteral("expired")).toInt() >= 1);
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {old})).status, 401);

    // The program re-sends a request after a 401 with the old session still in its query and the
    // new one behind it: the last one counts.
    const QString fresh = authorizedSession(*m_client, *m_backend);
    QVERIFY(!fresh.isEmpty());
    QCOMPARE(m_client->remove(m_backend->admin(QStringLiteral("requests"))).status, 200);
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {old, fresh})).status, 200);
    QCOMPARE(m_client->get(withSessions(m_backend->api(QStringLiteral("application")), {fresh, old})).status, 401);

    const QJsonArray journal = m_client->get(m_backend->admin(QStringLiteral("requests"))).json().array();
    QCOMPARE(journal.size(), 2);
    QCOMPARE(journal.at(0).toObject().value(QStringLiteral("sessions")).toArray(),
             QJsonArray::fromStringList({old, fresh}));
    QCOMPARE(journal.at(0).toObject().value(QStringLiteral("status")).toInt(), 200);
    QCOMPARE(journal.at(1).toObject().value(QStringLiteral("status")).toInt(), 401);
}

void TestBackendSimCalls::supportedModelsNameEveryServiceDrive()
{
    const HttpResult result = getWithSession(QStringLiteral("supported-models"));
    QCOMPARE(result.status, 200);
    QVERIFY(result.json().isArray());
    const QJsonArray entries = result.json().array();
    QVERIFY(!entries.isEmpty());
    for (const QJsonValue& value : entries) {
        // The program's cache can't read back an entry with an empty field.
        for (const char* key : {"model", "firmware", "smartType"})
            QVERIFY2(!value.toObject().value(QLatin1String(key)).toString().isEmpty(), key);
    }

    // Every drive of the maker in the simulated service's scenarios is known, and no other is.
    const QDir scenarios(QStringLiteral(KESTRAVIN_SERVICE_SCENARIO_DIR));
    const QStringList files = scenarios.entryList({QStringLiteral("*.json")}, QDir::Files);
    QVERIFY(!files.isEmpty());
    int makerDrives = 0;
    for (const QString& name : files) {
        QFile file(scenarios.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonArray drives = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("drives")).toArray();
        for (const QJsonValue& drive : drives) {
            const QString model = drive.toObject().value(QStringLiteral("Model")).toString();
            const QString firmware = drive.toObject().value(QStringLiteral("FirmwareVersion")).toString();
            const bool known = std::any_of(entries.begin(), entries.end(), [&](const QJsonValue& entry) {
                return entryMatches(entry.toObject(), model, firmware);
            });
            const bool maker = model.contains(QLatin1String("BRANTEL"));
            makerDrives += maker ? 1 : 0;
            QVERIFY2(known == maker, qPrintable(QStringLiteral("%1: %2 %3").arg(name, model, firmware)));
        }
    }
    QVERIFY(makerDrives >= 4);
}

void TestBackendSimCalls::firmware_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("currentFirmware");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("version");

    QTest::newRow("SATA drive") << "BRANTEL Corvid S3 480GB ATA Device" << "CS3R12B" << 200 << "CS3R14A";
    QTest::newRow("same model, other firmware line") << "BRANTEL Corvid S3 480GB ATA Device" << "S9FM02.3" << 200
                                                     << "S9FM02.5";
    QTest::newRow("NVMe drive") << "NVMe BRANTEL Corvid N7 1TB" << "N7F1021" << 200 << "N7F1030";
    QTest::newRow("model known, line unknown") << "BRANTEL Corvid Q4 1TB ATA Device" << "ZZ99" << 200 << "Q4R110";
    QTest::newRow("other maker") << "TORMANE DT2000-2TB ATA Device" << "DT21" << 404 << "";
    QTest::newRow("no firmware given") << "BRANTEL Corvid S3 480GB ATA Device" << "" << 400 << "";
}

void TestBackendSimCalls::firmware()
{
    QFETCH(QString, model);
    QFETCH(QString, currentFirmware);
    QFETCH(int, status);
    QFETCH(QString, version);

    QUrl url = withSessions(m_backend->api(QStringLiteral("firmware")), {m_session});
    QUrlQuery query(url);
    query.addQueryItem(QStringLiteral("model"), model);
    if (!currentFirmware.isEmpty())
        query.addQueryItem(QStringLiteral("currentFirmware"), currentFirmware);
    url.setQuery(query);

    const HttpResult result = m_client->get(url);
    QCOMPARE(result.status, status);
    if (status != 200) {
        QVERIFY(result.json().object().contains(QStringLiteral("error")));
        return;
    }
    // The echo is what ties an answer to a drive on the program's side: it must be exact.
    const QJsonObject answer = result.json().object();
    QCOMPARE(answer.value(QStringLiteral("model")).toString(), model);
    QCOMPARE(answer.value(QStringLiteral("currentFirmware")).toString(), currentFirmware);
    QCOMPARE(answer.value(QStringLiteral("version")).toString(), version);

    const QUrl page(answer.value(QStringLiteral("url")).toString());
    QCOMPARE(page.port(), m_backend->port());
    const HttpResult notes = m_client->get(page);
    QCOMPARE(notes.status, 200);
    QVERIFY(notes.contentType.startsWith("text/html"));
    QVERIFY(notes.body.contains(version.toUtf8()));
}

void TestBackendSimCalls::applicationOffersItsInstaller()
{
    HttpResult result = getWithSession(QStringLiteral("application"));
    QCOMPARE(result.status, 200);
    QCOMPARE(result.json().object().value(QStringLiteral("version")).toString(), QStringLiteral("1.1.5"));
    const QUrl installer(result.json().object().value(QStringLiteral("url")).toString());
    QVERIFY(installer.toString().startsWith(m_backend->api(QStringLiteral("files/")).toString()));
    QVERIFY(!installer.fileName().isEmpty()); // the program names the download after it

    // Downloads go without a session and without following redirects: the file is served as is.
    const HttpResult download = m_client->get(installer);
    QCOMPARE(download.status, 200);
    QVERIFY(download.body.startsWith("#!/bin/sh\n"));

    QCOMPARE(m_client->put(m_backend->admin(QStringLiteral("application")), R"({"version":"1.1.4"})").status, 200);
    result = getWithSession(QStringLiteral("application"));
    QCOMPARE(result.json().object().value(QStringLiteral("version")).toString(), QStringLiteral("1.1.4"));
    QCOMPARE(m_client->get(QUrl(result.json().object().value(QStringLiteral("url")).toString())).status, 200);
    QCOMPARE(m_client->put(m_backend->admin(QStringLiteral("application")), R"({"version":"1.1.5"})").status, 200);
}

void TestBackendSimCalls::advertisementPictureAndLink()
{
    auto offered = [this] { return getWithSession(QStringLiteral("ad")).json().object(); };
    auto md5Of = [this](const QString& address) {
        const HttpResult picture = m_client->get(QUrl(address));
        return picture.status == 200 ? QCryptographicHash::hash(picture.body, QCryptographicHash::Md5).toHex()
                                     : QByteArray();
    };

    const QJsonObject first = offered();
    const QString file = first.value(QStringLiteral("file")).toString();
    QCOMPARE(QUrl(file).fileName().section(QLatin1Char('.'), -1), QStringLiteral("png"));
    const HttpResult picture = m_client->get(QUrl(file));
    QCOMPARE(picture.contentType, QByteArrayLiteral("image/png"));
    QVERIFY(!QImage::fromData(picture.body, "PNG").isNull());
    const HttpResult landing = m_client->get(QUrl(first.value(QStringLiteral("link")).toString()));
    QCOMPARE(landing.status, 200);

    // The program shows the same picture less and less often, by its MD5: the same picture must
    // keep its bytes, and a new one must change them.
    const QByteArray md5 = md5Of(file);
    QVERIFY(!md5.isEmpty());
    QCOMPARE(md5Of(file), md5);
    QCOMPARE(m_client->put(m_backend->admin(QStringLiteral("ad")), R"({"variant":2})").status, 200);
    const QString second = offered().value(QStringLiteral("file")).toString();
    QVERIFY(second != file);
    QVERIFY(!md5Of(second).isEmpty());
    QVERIFY(md5Of(second) != md5);
    QCOMPARE(m_client->get(QUrl(file)).status, 404);

    QCOMPARE(m_client->put(m_backend->admin(QStringLiteral("ad")), R"({"offer":false})").status, 200);
    const QJsonObject none = offered();
    QVERIFY(none.contains(QStringLiteral("file")));
    QCOMPARE(none.value(QStringLiteral("file")).toString(), QString());
    QCOMPARE(m_client->put(m_backend->admin(QStringLiteral("ad")), R"({"offer":"yes"})").status, 400);
    QCOMPARE(m_client->put(m_backend->admin(QStringLiteral("ad")), R"({"offer":true,"variant":1})").status, 200);
}

void TestBackendSimCalls::captchaThenTicket()
{
    const QUrl support = withSessions(m_backend->api(QStringLiteral("support")), {m_session});

    const HttpResult picture = m_client->get(m_backend->api(QStringLiteral("captcha.php")));
    QCOMPARE(picture.status, 200);
    QCOMPARE(picture.contentType, QByteArrayLiteral("image/png"));
    QVERIFY(!QImage::fromData(picture.body, "PNG").isNull());
    const QString text = captchaText();
    QCOMPARE(text.size(), 5);

    HttpResult result = m_client->postMultipart(support, ticketForm(text, "1.1.4-"));
    QCOMPARE(result.status, 201);
    const int id = result.json().object().value(QStringLiteral("id")).toInt();
    QVERIFY(id > 0);

    const QJsonArray tickets = m_client->get(m_backend->admin(QStringLiteral("tickets"))).json().array();
    QVERIFY(!tickets.isEmpty());
    const QJsonObject ticket = tickets.last().toObject();
    QCOMPARE(ticket.value(QStringLiteral("id")).toInt(), id);
    QCOMPARE(ticket.value(QStringLiteral("email")).toString(), QStringLiteral("user@example.org"));
    QCOMPARE(ticket.value(QStringLiteral("diskSerialNumber")).toString(), QStringLiteral("BC3S2241A0093"));
    const QJsonArray attachments = ticket.value(QStringLiteral("attachments")).toArray();
    QCOMPARE(attachments.size(), 1);
    QCOMPARE(attachments.at(0).toObject().value(QStringLiteral("filename")).toString(), QStringLiteral("version.txt"));
    QCOMPARE(attachments.at(0).toObject().value(QStringLiteral("contentType")).toString(), QStringLiteral("text"));
    QCOMPARE(attachments.at(0).toObject().value(QStringLiteral("head")).toString(), QStringLiteral("1.1.4-"));

    // A captcha is good for one ticket.
    result = m_client->postMultipart(support, ticketForm(text, "1.1.4-"));
    QCOMPARE(result.status, 418);
    QCOMPARE(m_client->get(m_backend->admin(QStringLiteral("captcha"))).status, 404);

    // A wrong text uses it up as well; the next picture has a new text, typed in any case.
    QCOMPARE(m_client->get(m_backend->api(QStringLiteral("captcha.php"))).status, 200);
    result = m_client->postMultipart(support, ticketForm(QStringLiteral("WRONG"), "1.1.4-"));
    QCOMPARE(result.status, 418);
    QCOMPARE(m_client->get(m_backend->api(QStringLiteral("captcha.php"))).status, 200);
    result = m_client->postMultipart(support, ticketForm(captchaText().toLower(), "1.1.4-"));
    QCOMPARE(result.status, 201);
    QCOMPARE(result.json().object().value(QStringLiteral("id")).toInt(), id + 1);
}

void TestBackendSimCalls::ticketInput_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("contentType");
    QTest::addColumn<int>("status");

    QTest::newRow("plain JSON, no attachment") << ticketJson(QStringLiteral("{captcha}")) << QByteArray("application/json")
                                               << 201;
    QTest::newRow("no e-mail") << ticketJson(QStringLiteral("{captcha}"), {QStringLiteral("email")})
                               << QByteArray("application/json") << 400;
    QTest::newRow("no captcha") << ticketJson(QString(), {QStringLiteral("captcha")}) << QByteArray("application/json")
                                << 400;
    QTest::newRow("not JSON") << QByteArray("message=hello") << QByteArray("application/json") << 400;
    QTest::newRow("plain text") << ticketJson(QStringLiteral("{captcha}")) << QByteArray("text/plain") << 400;
}

void TestBackendSimCalls::ticketInput()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, contentType);
    QFETCH(int, status);

    QCOMPARE(m_client->get(m_backend->api(QStringLiteral("captcha.php"))).status, 200);
    body.replace("{captcha}", captchaText().toUtf8());
    const HttpResult result =
        m_client->post(withSessions(m_backend->api(QStringLiteral("support")), {m_session}), body, contentType);
    QCOMPARE(result.status, status);
    if (status == 201)
        QVERIFY(result.json().object().value(QStringLiteral("id")).toInt() > 0);
    else
        QTRY_VERIFY(m_backend->log().contains(QLatin1String("POST support refused with 400")));
}

KESTRAVIN_TEST_MAIN(TestBackendSimCalls)
#include "tst_backendsim_calls.moc"
