#include "communicationweb/TarnAuthorizationService.h"
#include "rest/RestClient.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "update/FirmwareUpdate.h"

#include <QSignalSpy>
#include <QTest>
#include <QUrlQuery>

using Velmora::CommunicationWeb::TarnAuthorizationService;
using Velmora::System::Drive;
using Velmora::System::SupportedDrive;
using Velmora::System::SupportedDrivesManager;
using Velmora::Update::FirmwareUpdate;
using Answer = HttpTestServer::Answer;

namespace {

// "model|firmware" of every firmware question the server saw, in order of arrival.
QStringList questionsOf(const QList<HttpTestServer::Request>& requests)
{
    QStringList result;
    for (const HttpTestServer::Request& request : requests) {
        const QUrl url(QString::fromLatin1(request.target));
        if (!url.path().endsWith(QLatin1String("/firmware")))
            continue;
        const QUrlQuery query(url);
        result.append(query.queryItemValue(QStringLiteral("model"), QUrl::FullyDecoded) + QLatin1Char('|')
            + query.queryItemValue(QStringLiteral("currentFirmware"), QUrl::FullyDecoded) + QLatin1Char('|')
            + query.queryItemValue(QStringLiteral("session")));
    }
    return result;
}

} // namespace

class TestFirmwareUpdate : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init();
    void cleanup();

    void asksOnlyForTheMakersDrives_data();
    void asksOnlyForTheMakersDrives();
    void storesWhatTheServerSays_data();
    void storesWhatTheServerSays();
    void oneAnswerServesIdenticalDrives();
    void unchangedAnswerChangesNothing();
    void lostQuestionIsAskedAgainBeforeItCounts();

private:
    Drive* addDrive(const QString& model, const QString& firmware);

    HttpTestServer* m_server = nullptr;
    QList<Answer> m_firmwareAnswers;
    REST::RestClient* m_client = nullptr;
    TarnAuthorizationService* m_service = nullptr;
    Velmora::System::System* m_system = nullptr;
    FirmwareUpdate* m_update = nullptr;
    int m_nextDriveId = 0;
};

void TestFirmwareUpdate::init()
{
    m_server = new HttpTestServer;
    QVERIFY(m_server->listen());
    m_firmwareAnswers = {answerOf(200, "{}")};
    m_server->setResponder([this](const HttpTestServer::Request& request) {
        if (request.target.endsWith("/session"))
            return answerOf(200, request.method == "GET" ? R"({"session":"s1"})" : R"({"authenticated":true})");
        return m_firmwareAnswers.size() > 1 ? m_firmwareAnswers.takeFirst() : m_firmwareAnswers.first();
    });
    m_client = new REST::RestClient(m_server->baseUrl());
    m_service = new TarnAuthorizationService(m_client);
    m_system = new Velmora::System::System;
    m_update = new FirmwareUpdate(m_system, m_client, m_service);
    SupportedDrivesManager::instance()->setSupportedDrives({SupportedDrive(QStringLiteral("SSDX"), QStringLiteral("S9"), QStringLiteral("C"))});
}

void TestFirmwareUpdate::cleanup()
{
    delete m_client;
    delete m_update;
    delete m_service;
    delete m_system;
    delete m_server;
    SupportedDrivesManager::release();
}

Drive* TestFirmwareUpdate::addDrive(const QString& model, const QString& firmware)
{
    const int id = m_nextDriveId++;
    auto* drive = new Drive(id, model, QStringLiteral("SERIAL%1").arg(id), QString(), firmware,
        Velmora::System::Bytes(qint64(1) << 38), 4, 4, true, QStringLiteral("SATA"));
    m_system->addDrive(drive);
    return drive;
}

void TestFirmwareUpdate::asksOnlyForTheMakersDrives_data()
{
    QTest::addColumn<QStringList>("drives");  // "model|firmware"
    QTest::addColumn<QStringList>("questions");

    QTest::newRow("none of the maker's") << QStringList{"OTHER SSD|1.0", "SSD Y|S9FM01"} << QStringList();
    QTest::newRow("listed, by the word, and another maker's")
        << QStringList{"SSD X 240G|S9FM01", "OTHER SSD|1.0", "BRANTEL Z|Z1"}
        << QStringList{"BRANTEL Z|Z1|s1", "SSD X 240G|S9FM01|s1"};
    QTest::newRow("identical drives asked twice") << QStringList{"SSD X|S9FM01", "SSD X|S9FM01"}
                                                  << QStringList{"SSD X|S9FM01|s1", "SSD X|S9FM01|s1"};
}

void TestFirmwareUpdate::asksOnlyForTheMakersDrives()
{
    QFETCH(QStringList, drives);
    QFETCH(QStringList, questions);

    for (const QString& drive : drives)
        addDrive(drive.section(QLatin1Char('|'), 0, 0), drive.section(QLatin1Char('|'), 1, 1));
    QSignalSpy finished(m_update, &FirmwareUpdate::firmwareUpdateCheckFinished);
    LogCapture log;
    m_update->checkForUpdates();
    QCOMPARE(log.count(QStringLiteral("Refreshing firmware update information for all drives")), 1);
    if (questions.isEmpty()) {
        QTest::qWait(100);
        QVERIFY(m_server->requests().isEmpty());
        QCOMPARE(finished.count(), 0);
        return;
    }
    QTRY_COMPARE(finished.count(), questions.size());
    QStringList asked = questionsOf(m_server->requests());
    std::sort(asked.begin(), asked.end());
    QCOMPARE(asked, questions);
    QCOMPARE(log.countStartingWith(QStringLiteral("Requesting newest firmware version from server for drive: ")), questions.size());
}

void TestFirmwareUpdate::storesWhatTheServerSays_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("url");

    QTest::newRow("echo of a part of the model")
        << answerOf(200, R"({"model":"SSD X","currentFirmware":"S9FM01","version":"S9FM02","url":"https://fw.example/x"})")
        << "Firmware response: model SSD X, current firmware: S9FM01, version S9FM02, url https://fw.example/x" << "S9FM02"
        << "https://fw.example/x";
    QTest::newRow("echo of another firmware")
        << answerOf(200, R"({"model":"SSD X","currentFirmware":"S9FM00","version":"S9FM02","url":"https://fw.example/x"})")
        << "Firmware response received for unexpected drive model: SSD X and firmware: S9FM00" << QString() << QString();
    QTest::newRow("model echoed in another case")
        << answerOf(200, R"({"model":"ssd x","currentFirmware":"S9FM01","version":"S9FM02","url":"https://fw.example/x"})")
        << "Firmware response received for unexpected drive model: ssd x and firmware: S9FM01" << QString() << QString();
    QTest::newRow("unknown model") << answerOf(404, R"({"error":"unknown"})") << "Requested firmware drive model not supported by server"
                                   << QString() << QString();
    QTest::newRow("server error") << answerOf(500, "{}") << "Server did not respond correctly to firmware request: 500" << QString()
                                  << QString();
    QTest::newRow("malformed JSON") << answerOf(200, R"({"model":"SSD X",)")
                                    << R"(Unable to parse server firmware response: {"model":"SSD X",)" << QString() << QString();
    QTest::newRow("missing key") << answerOf(200, R"({"model":"SSD X","currentFirmware":"S9FM01","version":"S9FM02"})")
                                 << R"(Unable to parse server firmware response: {"model":"SSD X","currentFirmware":"S9FM01","version":"S9FM02"})"
                                 << QString() << QString();
}

void TestFirmwareUpdate::storesWhatTheServerSays()
{
    QFETCH(Answer, answer);
    QFETCH(QString, line);
    QFETCH(QString, version);
    QFETCH(QString, url);

    Drive* drive = addDrive(QStringLiteral("SSD X 240G"), QStringLiteral("S9FM01"));
    m_firmwareAnswers = {answer};
    QSignalSpy finished(m_update, &FirmwareUpdate::firmwareUpdateCheckFinished);
    LogCapture log;
    m_update->checkForUpdates();
    QVERIFY(finished.wait(3000));
    QCOMPARE(log.count(line), 1);
    QCOMPARE(drive->newestFirmwareVersion(), version);
    QCOMPARE(drive->newestFirmwareUrl(), url);
    QCOMPARE(m_update->pendingRequestCount(), 0);
}

void TestFirmwareUpdate::oneAnswerServesIdenticalDrives()
{
    Drive* first = addDrive(QStringLiteral("SSD X 240G"), QStringLiteral("S9FM01"));
    Drive* second = addDrive(QStringLiteral("SSD X 480G"), QStringLiteral("S9FM01"));
    Drive* older = addDrive(QStringLiteral("SSD X 480G"), QStringLiteral("S9FM00"));
    m_firmwareAnswers = {answerOf(200, R"({"model":"SSD X","currentFirmware":"S9FM01","version":"S9FM02","url":"https://fw/x"})"),
        answerOf(404, "{}")};
    QSignalSpy finished(m_update, &FirmwareUpdate::firmwareUpdateCheckFinished);
    m_update->checkForUpdates();
    QTRY_COMPARE(finished.count(), 3);
    QCOMPARE(first->newestFirmwareVersion(), QStringLiteral("S9FM02"));
    QCOMPARE(second->newestFirmwareUrl(), QStringLiteral("https://fw/x"));
    QCOMPARE(older->newestFirmwareVersion(), QString());
}

void TestFirmwareUpdate::unchangedAnswerChangesNothing()
{
    Drive* drive = addDrive(QStringLiteral("SSD X 240G"), QStringLiteral("S9FM01"));
    m_firmwareAnswers = {answerOf(200, R"({"model":"SSD X","currentFirmware":"S9FM01","version":"S9FM02","url":"https://fw/x"})")};
    QSignalSpy finished(m_update, &FirmwareUpdate::firmwareUpdateCheckFinished);
    QSignalSpy changed(drive, &Drive::dataChanged);
    m_update->checkForUpdates();
    QVERIFY(finished.wait(3000));
    QCOMPARE(changed.count(), 2);
    m_update->checkForUpdates();
    QVERIFY(finished.wait(3000));
    QCOMPARE(changed.count(), 2);
    QCOMPARE(questionsOf(m_server->requests()).size(), 2);
}

void TestFirmwareUpdate::lostQuestionIsAskedAgainBeforeItCounts()
{
    QCOMPARE(m_update->retransmissionInterval(), FirmwareUpdate::RetransmissionInterval);
    Drive* drive = addDrive(QStringLiteral("SSD X 240G"), QStringLiteral("S9FM01"));
    Answer dropped;
    dropped.drop = true;
    // Qt itself asks once more on a dropped connection before it reports the loss.
    m_firmwareAnswers = {dropped, dropped, answerOf(200, R"({"model":"SSD X","currentFirmware":"S9FM01","version":"S9FM02","url":"u"})")};
    QSignalSpy finished(m_update, &FirmwareUpdate::firmwareUpdateCheckFinished);
    LogCapture log;
    m_update->checkForUpdates();
    QTRY_COMPARE(log.count(QStringLiteral("Network communication error")), 1);
    QCOMPARE(m_update->pendingRequestCount(), 1);
    QCOMPARE(finished.count(), 0);

    // A new check replaces the lost question rather than adding to it.
    m_update->checkForUpdates();
    QCOMPARE(m_update->pendingRequestCount(), 0);
    QVERIFY(finished.wait(3000));
    QCOMPARE(finished.count(), 1);
    QCOMPARE(drive->newestFirmwareVersion(), QStringLiteral("S9FM02"));
}

KESTRAVIN_TEST_MAIN(TestFirmwareUpdate)
#include "tst_firmwareupdate.moc"
