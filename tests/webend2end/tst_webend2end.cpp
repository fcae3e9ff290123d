// The web modules from end to end: the real simulated back-end process over TLS on loopback,
// the program's own classes on this side, certificates checked as in the program.

#include "BackendTestSupport.h"

#include "ads/AdsManager.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadManager.h"
#include "rest/RestClient.h"
#include "rest/TrustedAuthority.h"
#include "settings/SettingsManager.h"
#include "smart/SmartManager.h"
#include "support/LogCapture.h"
#include "support/SupportCaptcha.h"
#include "support/SupportManager.h"
#include "support/SupportServiceHandler.h"
#include "support/SupportTicket.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "system/SystemManager.h"
#include "update/ApplicationUpdate.h"
#include "update/FirmwareUpdate.h"

#include "CopyLogFiles.pb.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Velmora::CommunicationWeb::TarnAuthorizationService;
using Velmora::System::SupportedDrive;
using Velmora::System::SupportedDrivesManager;
namespace Support = Velmora::Support;
namespace Update = Velmora::Update;

namespace {

QList<SupportedDrive> drivesOf(const QJsonDocument& list)
{
    QList<SupportedDrive> drives;
    for (const QJsonValue& value : list.array()) {
        const QJsonObject entry = value.toObject();
        drives.append(SupportedDrive(entry.value(QStringLiteral("model")).toString(),
            entry.value(QStringLiteral("firmware")).toString(), entry.value(QStringLiteral("smartType")).toString()));
    }
    return drives;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

} // namespace

class TestWebEnd2End : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void supportedDrivesFetchedAndCached();
    void firmwareAnswersStoredOnDrives();
    void applicationUpdateFoundDownloadedAndStarted();
    void advertisementShownByBackOff();
    void oldPicturesRemovedAtStart_data();
    void oldPicturesRemovedAtStart();
    void supportTicket_data();
    void supportTicket();
    void unknownAuthorityRefused();

private:
    QString sessionOfOwn();
    bool adShownAtStart();

    QTemporaryDir m_certificates;
    std::unique_ptr<BackendProcess> m_backend;
    std::unique_ptr<TrustedClient> m_admin;
    REST::RestClient* m_client = nullptr;
    TarnAuthorizationService* m_service = nullptr;
    Download::DownloadManager* m_downloads = nullptr;
};

void TestWebEnd2End::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
    qRegisterMetaType<Velmora::Message::Message::MessageType>();
    QVERIFY(m_certificates.isValid());
    QString error;
    QVERIFY2(BackendProcess::makeCertificates(m_certificates.path(), &error), qPrintable(error));
    m_backend = std::make_unique<BackendProcess>(m_certificates.path(), QStringList{QStringLiteral("--quiet")});
    QVERIFY2(m_backend->start(), qPrintable(m_backend->log()));
    m_admin = std::make_unique<TrustedClient>(m_certificates.filePath(QStringLiteral("ca.pem")));
    // The program's way of trusting the build's authority: only once the first call is made, so the
    // calls below fail unless each sender adds it in time. Nothing here ignores a certificate error.
    REST::trustAuthorityBeforeFirstCall(m_certificates.filePath(QStringLiteral("ca.pem")));
}

void TestWebEnd2End::init()
{
    Velmora::Settings::SettingsManager::clear();
    m_client = new REST::RestClient(m_backend->api(QString()));
    m_service = new TarnAuthorizationService(m_client);
    m_downloads = new Download::DownloadManager;
}

void TestWebEnd2End::cleanup()
{
    QCOMPARE(m_admin->remove(m_backend->admin(QStringLiteral("faults"))).status, 200);
    SupportedDrivesManager::release();
    delete m_downloads;
    delete m_client;
    delete m_service;
}

void TestWebEnd2End::cleanupTestCase()
{
    m_backend.reset();
}

void TestWebEnd2End::supportedDrivesFetchedAndCached()
{
    QFile::remove(SupportedDrivesManager::instance()->filePath());
    SupportedDrivesManager::release();

    SupportedDrivesManager::initialize(m_client, m_service);
    SupportedDrivesManager* manager = SupportedDrivesManager::instance();
    QTRY_VERIFY_WITH_TIMEOUT(!manager->supportedDrives().isEmpty(), 5000);
    const QList<SupportedDrive> fetched = manager->supportedDrives();
    // The same list as the back-end gives the test's own client, in its order.
    const QString session = authorizedSession(*m_admin, *m_backend);
    QVERIFY(!session.isEmpty());
    const HttpResult listed = m_admin->get(withSessions(m_backend->api(QStringLiteral("supported-models")), {session}));
    QCOMPARE(listed.status, 200);
    QCOMPARE(fetched, drivesOf(listed.json()));
    QVERIFY(fetched.contains(SupportedDrive(QStringLiteral("CorvidQ4"), QStringLiteral("Q4R"), QStringLiteral("C"))));
    QVERIFY(m_service->isAuthorized());

    // The cache holds the same list, and a later start without the back-end reads it back.
    QList<SupportedDrive> cached;
    QVERIFY(Velmora::System::SupportedDrivesFile(manager->filePath()).read(cached));
    QCOMPARE(cached, fetched);
    SupportedDrivesManager::release();
    REST::RestClient unreachable(QUrl(QStringLiteral("https://127.0.0.1:1/kestravin/public/api/")));
    TarnAuthorizationService unreachableService(&unreachable);
    SupportedDrivesManager::initialize(&unreachable, &unreachableService);
    QCOMPARE(SupportedDrivesManager::instance()->supportedDrives(), fetched);
    SupportedDrivesManager::release();
}

void TestWebEnd2End::firmwareAnswersStoredOnDrives()
{
    SupportedDrivesManager::initialize(m_client, m_service);
    QTRY_VERIFY_WITH_TIMEOUT(!SupportedDrivesManager::instance()->supportedDrives().isEmpty(), 5000);

    Velmora::System::System system;
    auto add = [&system](int id, const QString& model, const QString& firmware) {
        auto* drive = new Velmora::System::Drive(id, model, QStringLiteral("SN%1").arg(id), QString(), firmware,
            Velmora::System::Bytes(qint64(1) << 38), 4, 4, true, QStringLiteral("SATA"));
        system.addDrive(drive);
        return drive;
    };
    auto* corvid = add(0, QStringLiteral("Corvid S3 240GB"), QStringLiteral("S9FM01.1"));
    auto* quad = add(1, QStringLiteral("Corvid Q4 1TB"), QStringLiteral("Q4R100"));
    auto* unknown = add(2, QStringLiteral("BRANTEL X9 512GB"), QStringLiteral("X9A"));
    auto* other = add(3, QStringLiteral("Other Maker 500"), QStringLiteral("1.0"));

    Update::FirmwareUpdate update(&system, m_client, m_service);
    QSignalSpy finished(&update, &Update::FirmwareUpdate::firmwareUpdateCheckFinished);
    LogCapture log;
    update.checkForUpdates();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 3, 5000);
    QCOMPARE(corvid->newestFirmwareVersion(), QStringLiteral("S9FM02.5"));
    QVERIFY(corvid->newestFirmwareUrl().startsWith(m_backend->api(QStringLiteral("firmware-notes/")).toString()));
    QCOMPARE(quad->newestFirmwareVersion(), QStringLiteral("Q4R110"));
    QCOMPARE(unknown->newestFirmwareVersion(), QString());
    QCOMPARE(other->newestFirmwareVersion(), QString());
    QCOMPARE(log.count(QStringLiteral("Requested firmware drive model not supported by server")), 1);
    QCOMPARE(log.countStartingWith(QStringLiteral("Requesting newest firmware version from server for drive: ")), 3);

    // The page the server names is there for the browser.
    QCOMPARE(m_admin->get(QUrl(corvid->newestFirmwareUrl())).status, 200);
}

void TestWebEnd2End::applicationUpdateFoundDownloadedAndStarted()
{
    Update::ApplicationUpdate update(m_client, m_service, m_downloads);
    QStringList started;
    update.setInstallerStarter([&started](const QString& path) {
        started.append(path);
        return true;
    });
    QSignalSpy changed(&update, &Update::ApplicationUpdate::applicationUpdateStatusChanged);
    update.checkForUpdates();
    QTRY_COMPARE_WITH_TIMEOUT(update.status(), Update::UpdateAvailable, 5000);
    QCOMPARE(update.newestVersion(), QStringLiteral("1.1.5"));

    update.onUpdateApplicationRequest();
    QCOMPARE(update.status(), Update::Downloading);
    QTRY_COMPARE_WITH_TIMEOUT(update.status(), Update::InstallerStarted, 10000);
    QCOMPARE(started.size(), 1);
    const QString downloads = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    QVERIFY2(started.first().startsWith(downloads + QLatin1Char('/')), qPrintable(started.first()));
    // What was started is what the back-end serves under the answer's address.
    const HttpResult served = m_admin->get(QUrl(update.installerUrl()));
    QCOMPARE(served.status, 200);
    QVERIFY(!served.body.isEmpty());
    QCOMPARE(contentOf(started.first()), served.body);

    // The back-end now offers our own version.
    QCOMPARE(m_admin->put(m_backend->admin(QStringLiteral("application")), R"({"version":"1.1.4"})").status, 200);
    update.checkForUpdates();
    QTRY_COMPARE_WITH_TIMEOUT(update.status(), Update::UpToDate, 5000);
    QCOMPARE(m_admin->put(m_backend->admin(QStringLiteral("application")), R"({"version":"1.1.5"})").status, 200);
    QCOMPARE(started.size(), 1);
}

bool TestWebEnd2End::adShownAtStart()
{
    // A start of the program: its own download queue, and a manager that checks at once.
    Download::DownloadManager downloads;
    Velmora::Ads::AdsManager ads(m_client, m_service, &downloads, nullptr, 0);
    QSignalSpy shown(&ads, &Velmora::Ads::AdsManager::newAdAvailable);
    QSignalSpy finished(&downloads, &Download::DownloadManager::finished);
    if (!finished.wait(5000))
        return false;
    // Shown means signalled with a picture that is on disk.
    return shown.count() == 1 && QFile::exists(shown.first().at(0).toString());
}

void TestWebEnd2End::advertisementShownByBackOff()
{
    QList<bool> shown;
    for (int start = 1; start <= 4; ++start)
        shown.append(adShownAtStart());
    QCOMPARE(shown, (QList<bool>{true, true, true, false}));
    QCOMPARE(Velmora::Settings::SettingsManager::value("Application", "AdvShowCounter").toInt(), 1);

    // Another picture is news again.
    QCOMPARE(m_admin->put(m_backend->admin(QStringLiteral("ad")), R"({"variant":2})").status, 200);
    QVERIFY(adShownAtStart());
    QCOMPARE(Velmora::Settings::SettingsManager::value("Application", "AdvShowTreshold").toInt(), 1);
    QCOMPARE(m_admin->put(m_backend->admin(QStringLiteral("ad")), R"({"variant":1})").status, 200);
}

void TestWebEnd2End::oldPicturesRemovedAtStart_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("removed");
    QTest::newRow("png") << "a.png" << true;
    QTest::newRow("jpg") << "b.jpg" << true;
    QTest::newRow("upper case") << "c.JPEG" << true;
    QTest::newRow("mixed case") << "d.Gif" << true;
    QTest::newRow("not a picture") << "e.txt" << false;
    QTest::newRow("picture suffix inside the name") << "f.png.part" << false;
}

void TestWebEnd2End::oldPicturesRemovedAtStart()
{
    QFETCH(QString, name);
    QFETCH(bool, removed);
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/ads");
    QVERIFY(QDir().mkpath(folder));
    QFile file(folder + QLatin1Char('/') + name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    Download::DownloadManager downloads;
    const Velmora::Ads::AdsManager ads(m_client, m_service, &downloads, nullptr, 60000);
    QCOMPARE(!file.exists(), removed);
    file.remove();
}

void TestWebEnd2End::supportTicket_data()
{
    QTest::addColumn<bool>("rightCaptcha");
    QTest::addColumn<QByteArray>("fault");  // a fault switch of the back-end for the post, or "expire"
    QTest::addColumn<int>("verdict");
    QTest::addColumn<int>("newTickets");
    QTest::newRow("accepted") << true << QByteArray() << int(Support::Accepted) << 1;
    QTest::newRow("wrong captcha") << false << QByteArray() << int(Support::InvalidCaptcha) << 0;
    // The post meets a 401, a new handshake follows and the ticket goes out once more, once.
    QTest::newRow("session expired") << true << QByteArray("expire") << int(Support::Accepted) << 1;
    // A lost ticket is reported, never sent again behind the user's back.
    QTest::newRow("connection dropped") << true << QByteArray(R"({"kind":"drop","call":"support"})")
                                        << int(Support::ConnectionFailed) << 0;
    QTest::newRow("back-end never answers") << true << QByteArray(R"({"kind":"hang","call":"support","times":1})")
                                            << int(Support::TimedOut) << 0;
}

void TestWebEnd2End::supportTicket()
{
    QFETCH(bool, rightCaptcha);
    QFETCH(QByteArray, fault);
    QFETCH(int, verdict);
    QFETCH(int, newTickets);

    Support::SupportCaptcha captcha(m_downloads, m_client->baseUrl());
    QSignalSpy picture(&captcha, &Support::SupportCaptcha::captchaAvailable);
    captcha.requestCaptchaImage();
    QVERIFY(picture.wait(5000));
    QVERIFY(contentOf(picture.first().at(0).toString()).startsWith("\x89PNG"));
    const QString text = m_admin->get(m_backend->admin(QStringLiteral("captcha"))).json().object().value("text").toString();
    QVERIFY(!text.isEmpty());

    Velmora::System::System system;
    Velmora::System::SystemManager systemManager(&system);
    Velmora::Smart::SmartManager smartManager(&system);
    Support::SupportServiceHandler handler;
    Support::SupportManager manager(&systemManager, &smartManager, &handler, m_client, m_service);
    // The service's side: it answers the copy request at once, having copied nothing.
    connect(&handler, qOverload<Velmora::Message::Message::MessageType, QByteArray>(&Support::SupportServiceHandler::sendMessage),
        this, [&handler] {
            Velmora::Message::CopyLogFilesResponse response;
            response.set_logfilebasename("Service");
            const std::string bytes = response.SerializeAsString();
            handler.handleMessage(Velmora::Message::Message::CopyLogFilesResponse, QByteArray(bytes.data(), int(bytes.size())));
        });

    manager.setWatchdogInterval(1500);
    // The client's own limit ends a held post after the watchdog, while the manager still lives.
    m_client->setTimeout(3000);
    QSignalSpy granted(m_service, &TarnAuthorizationService::authorized);
    m_service->authorizeAccess();
    QVERIFY(granted.wait(5000));
    if (fault == "expire")
        QCOMPARE(m_admin->post(m_backend->admin(QStringLiteral("sessions/expire")), QByteArray()).status, 200);
    else if (!fault.isEmpty())
        QCOMPARE(m_admin->post(m_backend->admin(QStringLiteral("faults")), fault).status, 201);

    const int ticketsBefore = m_admin->get(m_backend->admin(QStringLiteral("tickets"))).json().array().size();
    QSignalSpy changed(&manager, &Support::SupportManager::statusChanged);
    LogCapture log;
    manager.createSupportTicket(QStringLiteral("Slow writes"), QStringLiteral("user@example.org"), QStringLiteral("SN0"),
        rightCaptcha ? text : text + QStringLiteral("x"));
    QTRY_COMPARE_WITH_TIMEOUT(changed.count(), 4, 10000);
    QCOMPARE(changed.last().at(0).value<Support::SupportStatus>(), Support::SupportStatus(verdict));
    QTest::qWait(300);
    QCOMPARE(changed.count(), 4);

    const QJsonArray tickets = m_admin->get(m_backend->admin(QStringLiteral("tickets"))).json().array();
    QCOMPARE(tickets.size(), ticketsBefore + newTickets);
    if (verdict == Support::TimedOut) {
        QTRY_COMPARE_WITH_TIMEOUT(
            log.count(QStringLiteral("Support response received while module was in improper state 0")), 1, 5000);
    }
    if (newTickets == 0)
        return;
    const QJsonObject ticket = tickets.last().toObject();
    QCOMPARE(ticket.value("message").toString(), QStringLiteral("Slow writes"));
    QCOMPARE(ticket.value("email").toString(), QStringLiteral("user@example.org"));
    QCOMPARE(ticket.value("diskSerialNumber").toString(), QStringLiteral("SN0"));
    const QJsonArray attachments = ticket.value("attachments").toArray();
    QCOMPARE(attachments.size(), 1);
    const QJsonObject version = attachments.first().toObject();
    QCOMPARE(version.value("name").toString(), QStringLiteral("version.txt"));
    QCOMPARE(version.value("filename").toString(), QStringLiteral("version.txt"));
    QCOMPARE(version.value("contentType").toString(), QStringLiteral("text"));
    QCOMPARE(version.value("head").toString(), QStringLiteral("1.1.4-"));
}

void TestWebEnd2End::unknownAuthorityRefused()
{
    // A second back-end whose certificate comes from an authority the program was never told of.
    QTemporaryDir strangers;
    QVERIFY(strangers.isValid());
    QString error;
    QVERIFY2(BackendProcess::makeCertificates(strangers.path(), &error), qPrintable(error));
    BackendProcess stranger(strangers.path(), {QStringLiteral("--quiet")});
    QVERIFY2(stranger.start(), qPrintable(stranger.log()));

    REST::RestClient client(stranger.api(QString()));
    TarnAuthorizationService service(&client);
    QSignalSpy failed(&service, &TarnAuthorizationService::authorizeFailed);
    QSignalSpy authorized(&service, &TarnAuthorizationService::authorized);
    LogCapture log;
    service.authorizeAccess();
    QVERIFY(failed.wait(5000));
    QCOMPARE(authorized.count(), 0);
    QVERIFY(!service.isAuthorized());
    QCOMPARE(log.count(QStringLiteral("Unable to get session ID from server")), 1);
    QCOMPARE(log.countStartingWith(QStringLiteral("SSL errors reported: ")), 1);

    // The stranger never saw a call: the connection ended in the handshake.
    TrustedClient strangersAdmin(strangers.filePath(QStringLiteral("ca.pem")));
    const HttpResult journal = strangersAdmin.get(stranger.admin(QStringLiteral("requests")));
    QCOMPARE(journal.status, 200);
    QCOMPARE(journal.json().array().size(), 0);
    // And the one the program trusts still answers it.
    QCOMPARE(m_admin->get(m_backend->api(QStringLiteral("session"))).status, 200);
}

KESTRAVIN_TEST_MAIN(TestWebEnd2End)
#include "tst_webend2end.moc"
