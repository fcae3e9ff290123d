#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadFile.h"
#include "download/DownloadManager.h"
#include "rest/RestClient.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "update/ApplicationUpdate.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using Velmora::CommunicationWeb::TarnAuthorizationService;
using Velmora::Update::ApplicationUpdate;
using Velmora::Update::ApplicationUpdateStatus;
using Answer = HttpTestServer::Answer;
namespace U = Velmora::Update;

namespace {

const QByteArray InstallerBytes("#!/bin/sh\n# stand-in installer\nexit 0\n");

QList<int> statusesOf(const QSignalSpy& spy)
{
    QList<int> result;
    for (const QList<QVariant>& arguments : spy)
        result.append(arguments.at(0).value<ApplicationUpdateStatus>());
    return result;
}

} // namespace

class TestApplicationUpdate : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init();
    void cleanup();

    void answerDecidesStatus_data();
    void answerDecidesStatus();
    void lostCheckStaysChecking();
    void updateRequestIgnoredUnlessOffered_data();
    void updateRequestIgnoredUnlessOffered();
    void installerDownloadedAndStarted();
    void failedDownloadCanBeRetried_data();
    void failedDownloadCanBeRetried();
    void progressOnlyForInstallerWhileDownloading_data();
    void progressOnlyForInstallerWhileDownloading();
    void ownStarterRunsDownloadedFile();

private:
    // Answers GET "application" with `version` and an installer under "files/`installerName`".
    void offer(const QString& version, const QString& installerName = QStringLiteral("setup.sh"));
    void checkAndWait();
    int installerRequests() const;

    HttpTestServer* m_server = nullptr;
    Answer m_applicationAnswer;
    Answer m_installerAnswer;
    REST::RestClient* m_client = nullptr;
    TarnAuthorizationService* m_service = nullptr;
    Download::DownloadManager* m_downloads = nullptr;
    ApplicationUpdate* m_update = nullptr;
    QStringList m_started;
};

void TestApplicationUpdate::init()
{
    m_server = new HttpTestServer;
    QVERIFY(m_server->listen());
    m_applicationAnswer = answerOf(200, R"({"version":"1.1.4","url":""})");
    m_installerAnswer = answerOf(200, InstallerBytes, "application/octet-stream");
    m_server->setResponder([this](const HttpTestServer::Request& request) {
        const QByteArray path = request.target.split('?').first();
        if (path.endsWith("/session"))
            return answerOf(200, request.method == "GET" ? R"({"session":"s1"})" : R"({"authenticated":true})");
        if (path.endsWith("/application"))
            return m_applicationAnswer;
        return m_installerAnswer;
    });
    m_client = new REST::RestClient(m_server->baseUrl());
    m_service = new TarnAuthorizationService(m_client);
    m_downloads = new Download::DownloadManager;
    m_update = new ApplicationUpdate(m_client, m_service, m_downloads);
    m_started.clear();
    m_update->setInstallerStarter([this](const QString& path) {
        m_started.append(path);
        return true;
    });
}

void TestApplicationUpdate::cleanup()
{
    delete m_downloads;
    delete m_update;
    delete m_client;
    delete m_service;
    delete m_server;
}

void TestApplicationUpdate::offer(const QString& version, const QString& installerName)
{
    const QString url = m_server->baseUrl().toString() + QStringLiteral("files/") + installerName;
    m_applicationAnswer = answerOf(200, QStringLiteral(R"({"version":"%1","url":"%2"})").arg(version, url).toUtf8());
}

void TestApplicationUpdate::checkAndWait()
{
    QSignalSpy changed(m_update, &ApplicationUpdate::applicationUpdateStatusChanged);
    m_update->checkForUpdates();
    QTRY_COMPARE(changed.count(), 2);
}

int TestApplicationUpdate::installerRequests() const
{
    int count = 0;
    for (const HttpTestServer::Request& request : m_server->requests())
        count += request.target.contains("/files/") ? 1 : 0;
    return count;
}

void TestApplicationUpdate::answerDecidesStatus_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("version");

    QTest::newRow("older version is an update") << answerOf(200, R"({"version":"1.1.3","url":"https://x/setup.exe"})")
                                                << int(U::UpdateAvailable) << "Application update available" << "1.1.3";
    QTest::newRow("newer version") << answerOf(200, R"({"version":"1.2.0","url":"https://x/setup.exe"})")
                                   << int(U::UpdateAvailable) << "Application server version: 1.2.0 [https://x/setup.exe]"
                                   << "1.2.0";
    QTest::newRow("own version") << answerOf(200, R"({"version":"1.1.4","url":"https://x/setup.exe"})") << int(U::UpToDate)
                                 << "Application is up-to-date" << "1.1.4";
    QTest::newRow("own version with a suffix is another text")
        << answerOf(200, R"({"version":"1.1.4 ","url":"u"})") << int(U::UpdateAvailable) << "Application update available"
        << "1.1.4 ";
    QTest::newRow("url missing") << answerOf(200, R"({"version":"1.1.4"})") << int(U::CheckFailed)
                                 << R"(Application update response parse error: {"version":"1.1.4"})" << QString();
    QTest::newRow("malformed JSON") << answerOf(200, R"({"version":)") << int(U::CheckFailed)
                                    << R"(Application update response parse error: {"version":)" << QString();
    QTest::newRow("server error") << answerOf(500, "{}") << int(U::CheckFailed)
                                  << "No server response to application update request" << QString();
    QTest::newRow("not found") << answerOf(404, "{}") << int(U::CheckFailed) << "No server response to application update request"
                               << QString();
}

void TestApplicationUpdate::answerDecidesStatus()
{
    QFETCH(Answer, answer);
    QFETCH(int, status);
    QFETCH(QString, line);
    QFETCH(QString, version);

    QCOMPARE(m_update->status(), U::Unknown);
    QCOMPARE(m_update->retransmissionInterval(), ApplicationUpdate::RetransmissionInterval);
    m_applicationAnswer = answer;
    QSignalSpy changed(m_update, &ApplicationUpdate::applicationUpdateStatusChanged);
    LogCapture log;
    m_update->checkForUpdates();
    QCOMPARE(statusesOf(changed), QList<int>{U::Checking});
    QTRY_COMPARE(changed.count(), 2);
    QCOMPARE(statusesOf(changed), (QList<int>{U::Checking, status}));
    QCOMPARE(changed.last().at(1).toString(), version);
    QCOMPARE(int(m_update->status()), status);
    QCOMPARE(m_update->newestVersion(), version);
    QCOMPARE(log.count(QStringLiteral("Checking application update availability")), 1);
    QCOMPARE(log.count(line), 1);

    const QList<HttpTestServer::Request> requests = m_server->requests();
    QCOMPARE(requests.last().method, QByteArray("GET"));
    QCOMPARE(requests.last().target, QByteArray("/kestravin/public/api/application?session=s1"));
}

void TestApplicationUpdate::lostCheckStaysChecking()
{
    Answer dropped;
    dropped.drop = true;
    m_applicationAnswer = dropped;
    QSignalSpy changed(m_update, &ApplicationUpdate::applicationUpdateStatusChanged);
    LogCapture log;
    m_update->checkForUpdates();
    QTRY_COMPARE(log.count(QStringLiteral("Network communication error")), 1);
    QCOMPARE(m_update->pendingRequestCount(), 1);
    QCOMPARE(statusesOf(changed), QList<int>{U::Checking});
    QCOMPARE(m_update->status(), U::Checking);

    // The next tick sends it again, and only then the status moves on.
    offer(QStringLiteral("1.1.5"));
    m_update->setRetransmissionInterval(50);
    QTRY_COMPARE(changed.count(), 2);
    QCOMPARE(m_update->status(), U::UpdateAvailable);
}

void TestApplicationUpdate::updateRequestIgnoredUnlessOffered_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("up to date") << int(U::UpToDate);
    QTest::newRow("check failed") << int(U::CheckFailed);
    QTest::newRow("no check yet") << int(U::Unknown);
    QTest::newRow("downloading") << int(U::Downloading);
    QTest::newRow("checking") << int(U::Checking);
}

void TestApplicationUpdate::updateRequestIgnoredUnlessOffered()
{
    QFETCH(int, status);

    switch (status) {
    case U::UpToDate:
        offer(QStringLiteral("1.1.4"));
        checkAndWait();
        break;
    case U::CheckFailed:
        // The url is known from an earlier answer; a failed check must still not use it.
        offer(QStringLiteral("1.1.5"));
        checkAndWait();
        m_applicationAnswer = answerOf(500, "{}");
        checkAndWait();
        break;
    case U::Downloading:
        offer(QStringLiteral("1.1.5"));
        checkAndWait();
        m_installerAnswer.stallAfter = 4;
        m_update->onUpdateApplicationRequest();
        QTRY_COMPARE(installerRequests(), 1);
        break;
    case U::Checking:
        offer(QStringLiteral("1.1.5"));
        checkAndWait();
        m_applicationAnswer.silent = true;
        m_update->checkForUpdates();
        break;
    default:
        break;
    }
    QCOMPARE(int(m_update->status()), status);
    const int before = installerRequests();
    QSignalSpy changed(m_update, &ApplicationUpdate::applicationUpdateStatusChanged);
    m_update->onUpdateApplicationRequest();
    QTest::qWait(100);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(int(m_update->status()), status);
    QCOMPARE(installerRequests(), before);
    m_server->releaseStalled();
}

void TestApplicationUpdate::installerDownloadedAndStarted()
{
    const QString downloads = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    QCOMPARE(m_update->downloadDirectory(), downloads);
    QDir(downloads).removeRecursively();

    offer(QStringLiteral("1.1.5"), QStringLiteral("Kestravin-1.1.5.run"));
    checkAndWait();
    QCOMPARE(m_update->status(), U::UpdateAvailable);

    QSignalSpy changed(m_update, &ApplicationUpdate::applicationUpdateStatusChanged);
    LogCapture log;
    m_update->onUpdateApplicationRequest();
    QCOMPARE(statusesOf(changed), QList<int>{U::Downloading});
    QCOMPARE(log.count(QStringLiteral("Downloading application installer to: %1").arg(downloads)), 1);
    QTRY_COMPARE(changed.count(), 2);
    QCOMPARE(statusesOf(changed), (QList<int>{U::Downloading, U::InstallerStarted}));
    QCOMPARE(changed.last().at(1).toString(), QStringLiteral("1.1.5"));

    const QString installer = downloads + QStringLiteral("/Kestravin-1.1.5.run");
    QCOMPARE(m_started, QStringList{installer});
    QFile file(installer);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), InstallerBytes);
    QCOMPARE(log.count(QStringLiteral("Installer downloaded")), 1);
    QCOMPARE(log.count(QStringLiteral("Opening installer: %1").arg(installer)), 1);

    // "Restart update download" fetches it once more and starts it again.
    m_installerAnswer.body = InstallerBytes + "# second\n";
    m_update->onUpdateApplicationRequest();
    QTRY_COMPARE(m_started.size(), 2);
    QCOMPARE(statusesOf(changed).mid(2), (QList<int>{U::Downloading, U::InstallerStarted}));
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().endsWith("# second\n"));
    QCOMPARE(installerRequests(), 2);
}

void TestApplicationUpdate::failedDownloadCanBeRetried_data()
{
    QTest::addColumn<QString>("installerName");
    QTest::addColumn<int>("installerStatus");
    QTest::addColumn<bool>("unwritableDirectory");
    QTest::addColumn<QString>("line");

    QTest::newRow("installer not found") << "setup.sh" << 404 << false << "Failed downloading file from url: ";
    QTest::newRow("installer moved") << "setup.sh" << 302 << false << "Request ";
    QTest::newRow("no file name in the url") << QString() << 200 << false << "Problem opening save file ";
    QTest::newRow("download folder cannot be made") << "setup.sh" << 200 << true << "Problem opening save file ";
}

void TestApplicationUpdate::failedDownloadCanBeRetried()
{
    QFETCH(QString, installerName);
    QFETCH(int, installerStatus);
    QFETCH(bool, unwritableDirectory);
    QFETCH(QString, line);

    QTemporaryDir scratch;
    QVERIFY(scratch.isValid());
    if (unwritableDirectory) {
        // A plain file where the folder should be: neither mkpath nor the open can succeed.
        QFile blocker(scratch.filePath(QStringLiteral("blocker")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        m_update->setDownloadDirectory(blocker.fileName() + QStringLiteral("/downloads"));
    } else {
        m_update->setDownloadDirectory(scratch.path());
    }
    offer(QStringLiteral("1.1.5"), installerName);
    m_installerAnswer.status = installerStatus;
    if (installerStatus == 302)
        m_installerAnswer.extraHeaders = {{"Location", "http://elsewhere.example/setup.sh"}};
    checkAndWait();

    QSignalSpy changed(m_update, &ApplicationUpdate::applicationUpdateStatusChanged);
    LogCapture log;
    m_update->onUpdateApplicationRequest();
    QTRY_COMPARE(changed.count(), 2);
    QCOMPARE(statusesOf(changed), (QList<int>{U::Downloading, U::DownloadFailed}));
    QCOMPARE(log.countStartingWith(line), 1);
    QVERIFY(m_started.isEmpty());
    QVERIFY(!QFile::exists(scratch.filePath(QStringLiteral("setup.sh"))));

    // The user may try again: with a good server and folder the installer starts.
    m_update->setDownloadDirectory(scratch.path());
    offer(QStringLiteral("1.1.5"));
    checkAndWait();
    m_installerAnswer = answerOf(200, InstallerBytes, "application/octet-stream");
    m_update->onUpdateApplicationRequest();
    QTRY_COMPARE(m_started.size(), 1);
    QCOMPARE(m_started.first(), scratch.filePath(QStringLiteral("setup.sh")));
    QCOMPARE(m_update->status(), U::InstallerStarted);
}

void TestApplicationUpdate::progressOnlyForInstallerWhileDownloading_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("downloading");
    QTest::addColumn<bool>("reported");

    QTest::newRow("installer while downloading") << "installer" << true << true;
    QTest::newRow("installer after the download") << "installer" << false << false;
    QTest::newRow("captcha while downloading") << "captcha" << true << false;
    QTest::newRow("no file") << "none" << true << false;
}

void TestApplicationUpdate::progressOnlyForInstallerWhileDownloading()
{
    QFETCH(QString, kind);
    QFETCH(bool, downloading);
    QFETCH(bool, reported);

    offer(QStringLiteral("1.1.5"));
    checkAndWait();
    if (downloading) {
        m_installerAnswer.stallAfter = 1;
        m_update->onUpdateApplicationRequest();
        QCOMPARE(m_update->status(), U::Downloading);
    }
    QSignalSpy progress(m_update, &ApplicationUpdate::downloadProgressChanged);
    Download::InstallerFile installer(QStringLiteral("http://x/setup.sh"), QString());
    Download::CaptchaFile captcha(QStringLiteral("http://x/captcha.php"), QString());
    Download::DownloadFile* file = kind == QLatin1String("installer") ? &installer
                                   : kind == QLatin1String("captcha") ? static_cast<Download::DownloadFile*>(&captcha)
                                                                      : nullptr;
    emit m_downloads->downloadProgressChanged(file, 42.5, 2048.0);
    QCOMPARE(progress.count(), reported ? 1 : 0);
    if (reported) {
        QCOMPARE(progress.first().at(0).toDouble(), 42.5);
        QCOMPARE(progress.first().at(1).toDouble(), 2048.0);
    }
    m_server->releaseStalled();
}

void TestApplicationUpdate::ownStarterRunsDownloadedFile()
{
    QTemporaryDir scratch(QDir::tempPath() + QStringLiteral("/with blank-XXXXXX"));
    QVERIFY(scratch.isValid());
    const QString marker = scratch.filePath(QStringLiteral("installer-ran"));
    const QString script = scratch.filePath(QStringLiteral("setup file.sh"));
    QFile file(script);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral("#!/bin/sh\necho ran > '%1'\n").arg(marker).toUtf8());
    file.close();
    // As the download manager leaves it: readable, not executable.
    QVERIFY(file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner));

    QVERIFY(ApplicationUpdate::startInstaller(script));
    QTRY_VERIFY(QFile::exists(marker));
    QVERIFY(!ApplicationUpdate::startInstaller(scratch.filePath(QStringLiteral("missing.sh"))));
}

KESTRAVIN_TEST_MAIN(TestApplicationUpdate)
#include "tst_applicationupdate.moc"
