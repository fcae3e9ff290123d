#include "ads/AdsManager.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadManager.h"
#include "rest/RestClient.h"
#include "settings/SettingsManager.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <memory>

using Velmora::Ads::AdsManager;
using Velmora::CommunicationWeb::TarnAuthorizationService;
using Velmora::Settings::SettingsManager;
using Answer = HttpTestServer::Answer;

namespace {

const QByteArray Picture("\x89PNG\r\n\x1a\n first picture");
const QByteArray OtherPicture("\x89PNG\r\n\x1a\n second picture");
const QString Group = QStringLiteral("Application");

QString md5Of(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

int setting(const char* key)
{
    return SettingsManager::value(Group, QLatin1String(key), -1).toInt();
}

} // namespace

class TestAdsManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init();
    void cleanup();

    void oldPicturesRemovedAtStart();
    void backOff_data();
    void backOff();
    void showingsOfOnePictureThinOut();
    void failuresShowNothing_data();
    void failuresShowNothing();
    void anyPictureTypeIsCounted();
    void lostCheckIsRepeated();

private:
    // One program start: a new download queue and a manager that checks at once.
    std::unique_ptr<AdsManager> start();
    // Runs one start to its end; true if it showed the picture.
    bool runStart();
    void offer(const QString& fileName, const QString& link = QStringLiteral("https://offer.example/ssd"));
    int requestsFor(const QByteArray& pathEnd) const;

    HttpTestServer* m_server = nullptr;
    Answer m_adAnswer;
    Answer m_pictureAnswer;
    REST::RestClient* m_client = nullptr;
    TarnAuthorizationService* m_service = nullptr;
    Download::DownloadManager* m_downloads = nullptr;
};

void TestAdsManager::init()
{
    SettingsManager::clear();
    m_server = new HttpTestServer;
    QVERIFY(m_server->listen());
    m_pictureAnswer = answerOf(200, Picture, "image/png");
    offer(QStringLiteral("ad.png"));
    m_server->setResponder([this](const HttpTestServer::Request& request) {
        const QByteArray path = request.target.split('?').first();
        if (path.endsWith("/session"))
            return answerOf(200, request.method == "GET" ? R"({"session":"s1"})" : R"({"authenticated":true})");
        if (path.endsWith("/ad"))
            return m_adAnswer;
        return m_pictureAnswer;
    });
    m_client = new REST::RestClient(m_server->baseUrl());
    m_service = new TarnAuthorizationService(m_client);
}

void TestAdsManager::cleanup()
{
    delete m_downloads;
    m_downloads = nullptr;
    delete m_client;
    delete m_service;
    delete m_server;
}

void TestAdsManager::offer(const QString& fileName, const QString& link)
{
    const QString file = fileName.isEmpty() ? QString() : m_server->baseUrl().toString() + QStringLiteral("pictures/") + fileName;
    m_adAnswer = answerOf(200, QStringLiteral(R"({"file":"%1","link":"%2"})").arg(file, link).toUtf8());
}

int TestAdsManager::requestsFor(const QByteArray& pathEnd) const
{
    int count = 0;
    for (const HttpTestServer::Request& request : m_server->requests())
        count += request.target.split('?').first().endsWith(pathEnd) ? 1 : 0;
    return count;
}

std::unique_ptr<AdsManager> TestAdsManager::start()
{
    // A start of the program has a download queue of its own, which outlives its customers.
    delete m_downloads;
    m_downloads = new Download::DownloadManager;
    return std::make_unique<AdsManager>(m_client, m_service, m_downloads, nullptr, 0);
}

bool TestAdsManager::runStart()
{
    auto manager = start();
    QSignalSpy shown(manager.get(), &AdsManager::newAdAvailable);
    QSignalSpy finished(m_downloads, &Download::DownloadManager::finished);
    if (!finished.wait(3000))
        return false;
    return shown.count() == 1;
}

void TestAdsManager::oldPicturesRemovedAtStart()
{
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/ads");
    QDir(directory).removeRecursively();
    {
        LogCapture log;
        auto manager = start();
        QCOMPARE(manager->adsDirectory(), directory);
        QVERIFY(QFileInfo(directory).isDir());
        QCOMPARE(log.countStartingWith(QStringLiteral("Removing old ad file: ")), 0);
    }

    const QStringList removed{"a.png", "b.PNG", "c.gif", "d.GIF", "e.jpg", "f.JPG", "g.jpeg", "h.JPEG"};
    const QStringList kept{"notes.txt", "picture.bmp", "picture.png.part"};
    for (const QString& name : removed + kept) {
        QFile file(directory + QLatin1Char('/') + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QDir(directory).mkdir(QStringLiteral("folder.png")));

    LogCapture log;
    m_adAnswer.silent = true;
    auto manager = start();
    QStringList left = QDir(directory).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    std::sort(left.begin(), left.end());
    QCOMPARE(left, (QStringList{"folder.png", "notes.txt", "picture.bmp", "picture.png.part"}));
    for (const QString& name : removed)
        QCOMPARE(log.count(QStringLiteral("Removing old ad file: ") + directory + QLatin1Char('/') + name), 1);
    QCOMPARE(log.countStartingWith(QStringLiteral("Removing old ad file: ")), removed.size());
}

void TestAdsManager::backOff_data()
{
    QTest::addColumn<QString>("storedSignature");  // "same", "other" or "none"
    QTest::addColumn<int>("counter");
    QTest::addColumn<int>("treshold");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<int>("counterAfter");
    QTest::addColumn<int>("tresholdAfter");

    QTest::newRow("first start ever") << "none" << 0 << 0 << true << 0 << 1;
    QTest::newRow("second start") << "same" << 0 << 1 << true << 0 << 2;
    QTest::newRow("third start") << "same" << 0 << 2 << true << 0 << 3;
    QTest::newRow("fourth start") << "same" << 0 << 3 << false << 1 << 3;
    QTest::newRow("sixth start") << "same" << 2 << 3 << false << 3 << 3;
    QTest::newRow("seventh start") << "same" << 3 << 3 << true << 0 << 6;
    QTest::newRow("wait of 6 over") << "same" << 6 << 6 << true << 0 << 12;
    QTest::newRow("wait of 12 under way") << "same" << 5 << 12 << false << 6 << 12;
    QTest::newRow("changed picture during a wait") << "other" << 5 << 12 << true << 0 << 1;
    QTest::newRow("changed picture after three showings") << "other" << 0 << 3 << true << 0 << 1;
}

void TestAdsManager::backOff()
{
    QFETCH(QString, storedSignature);
    QFETCH(int, counter);
    QFETCH(int, treshold);
    QFETCH(bool, shown);
    QFETCH(int, counterAfter);
    QFETCH(int, tresholdAfter);

    if (storedSignature != QLatin1String("none")) {
        SettingsManager::setValue(Group, QStringLiteral("AdvSigMD5"),
            md5Of(storedSignature == QLatin1String("same") ? Picture : OtherPicture));
        SettingsManager::setValue(Group, QStringLiteral("AdvShowCounter"), counter);
        SettingsManager::setValue(Group, QStringLiteral("AdvShowTreshold"), treshold);
    }
    offer(QStringLiteral("ad.png"), QStringLiteral("https://offer.example/ssd?from=app"));
    auto manager = start();
    QSignalSpy shownSpy(manager.get(), &AdsManager::newAdAvailable);
    QSignalSpy finished(m_downloads, &Download::DownloadManager::finished);
    LogCapture log;
    QVERIFY(finished.wait(3000));

    const QString path = manager->adsDirectory() + QStringLiteral("/ad.png");
    QCOMPARE(shownSpy.count(), shown ? 1 : 0);
    if (shown) {
        QCOMPARE(shownSpy.first().at(0).toString(), path);
        QCOMPARE(shownSpy.first().at(1).toUrl(), QUrl(QStringLiteral("https://offer.example/ssd?from=app")));
    }
    QCOMPARE(SettingsManager::value(Group, QStringLiteral("AdvSigMD5")).toString(), md5Of(Picture));
    QCOMPARE(setting("AdvShowCounter"), counterAfter);
    QCOMPARE(setting("AdvShowTreshold"), tresholdAfter);
    QCOMPARE(log.count(QStringLiteral("Opening ad: %1").arg(path)), 1);
    // The picture stays until the next start removes it.
    QVERIFY(QFile::exists(path));
}

void TestAdsManager::showingsOfOnePictureThinOut()
{
    QList<int> showings;
    for (int startNumber = 1; startNumber <= 27; ++startNumber) {
        if (runStart())
            showings.append(startNumber);
    }
    QCOMPARE(showings, (QList<int>{1, 2, 3, 7, 14, 27}));
    QCOMPARE(setting("AdvShowTreshold"), 24);
    QCOMPARE(requestsFor("/ad"), 27);

    // A new picture starts the back-off afresh.
    m_pictureAnswer.body = OtherPicture;
    QVERIFY(runStart());
    QCOMPARE(setting("AdvShowTreshold"), 1);
}

void TestAdsManager::failuresShowNothing_data()
{
    QTest::addColumn<Answer>("adAnswer");
    QTest::addColumn<int>("pictureStatus");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("pictureRequests");

    QTest::newRow("server error") << answerOf(500, "{}") << 200
                                  << "Server did not respond correctly to ad avability check request: 500" << 0;
    QTest::newRow("malformed JSON") << answerOf(200, R"({"file":)") << 200 << R"(Unable to parse ad avability response: {"file":)" << 0;
    QTest::newRow("link missing") << answerOf(200, R"({"file":"x.png"})") << 200
                                  << R"(Unable to parse ad avability response: {"file":"x.png"})" << 0;
    QTest::newRow("empty file") << answerOf(200, R"({"file":"","link":"https://offer.example"})") << 200
                                << "Error downloading ad, url is empty" << 0;
    QTest::newRow("picture missing") << Answer() << 404 << "Failed to download ad: %1/ad.png" << 1;
}

void TestAdsManager::failuresShowNothing()
{
    QFETCH(Answer, adAnswer);
    QFETCH(int, pictureStatus);
    QFETCH(QString, line);
    QFETCH(int, pictureRequests);

    if (pictureRequests == 0)
        m_adAnswer = adAnswer;
    m_pictureAnswer.status = pictureStatus;
    LogCapture log;
    auto manager = start();
    QSignalSpy shown(manager.get(), &AdsManager::newAdAvailable);
    QTRY_VERIFY(log.count(line.arg(manager->adsDirectory())) == 1);
    QTest::qWait(100);
    QCOMPARE(shown.count(), 0);
    QCOMPARE(requestsFor("/ad"), 1);
    QCOMPARE(requestsFor(".png"), pictureRequests);
    QVERIFY(!SettingsManager::contains(Group, QStringLiteral("AdvSigMD5")));
    QVERIFY(!SettingsManager::contains(Group, QStringLiteral("AdvShowTreshold")));
    QCOMPARE(manager->pendingRequestCount(), 0);
}

void TestAdsManager::anyPictureTypeIsCounted()
{
    // Whether it can be shown is the widget's business; the back-off counts it all the same.
    offer(QStringLiteral("ad.bmp"));
    auto manager = start();
    QSignalSpy shown(manager.get(), &AdsManager::newAdAvailable);
    QTRY_COMPARE(shown.count(), 1);
    QVERIFY(shown.first().at(0).toString().endsWith(QLatin1String("/ads/ad.bmp")));
    QCOMPARE(setting("AdvShowTreshold"), 1);
}

void TestAdsManager::lostCheckIsRepeated()
{
    Answer dropped;
    dropped.drop = true;
    const Answer good = m_adAnswer;
    m_adAnswer = dropped;
    LogCapture log;
    auto manager = start();
    QCOMPARE(manager->retransmissionInterval(), AdsManager::RetransmissionInterval);
    QSignalSpy shown(manager.get(), &AdsManager::newAdAvailable);
    QTRY_COMPARE(log.count(QStringLiteral("Network communication error")), 1);
    QCOMPARE(manager->pendingRequestCount(), 1);

    m_adAnswer = good;
    manager->setRetransmissionInterval(50);
    QTRY_COMPARE(shown.count(), 1);
    QCOMPARE(log.count(QStringLiteral("Checking advertisements availability")), 1);
}

KESTRAVIN_TEST_MAIN(TestAdsManager)
#include "tst_adsmanager.moc"
