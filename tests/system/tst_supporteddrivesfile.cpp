#include "communicationweb/TarnAuthorizationService.h"
#include "rest/RestClient.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/SupportedDrivesManager.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using Velmora::CommunicationWeb::TarnAuthorizationService;
using Velmora::System::SupportedDrive;
using Velmora::System::SupportedDrivesFile;
using Velmora::System::SupportedDrivesManager;
using Answer = HttpTestServer::Answer;

namespace {

QStringList textOf(const QList<SupportedDrive>& list)
{
    QStringList result;
    for (const SupportedDrive& drive : list)
        result.append(drive.model() + QLatin1Char('|') + drive.firmware() + QLatin1Char('|') + drive.smartType());
    return result;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void put(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

const QByteArray TwoModels = R"([{"model":"SSD A1","firmware":"1.0","smartType":"B"},{"model":"SSDX","firmware":"S9","smartType":"C"}])";
const QByteArray TwoModelsFile = "U1NEIEEx,MS4w,Qg==\nU1NEWA==,Uzk=,Qw==\n";

} // namespace

class TestSupportedDrivesFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init();
    void cleanup();

    void processesTheServersList_data();
    void processesTheServersList();

private:
    QString cachePath() const;
    void startManager();

    QTemporaryDir* m_dir = nullptr;
    HttpTestServer* m_server = nullptr;
    QList<Answer> m_listAnswers;
    REST::RestClient* m_client = nullptr;
    TarnAuthorizationService* m_service = nullptr;
};

void TestSupportedDrivesFile::init()
{
    m_dir = new QTemporaryDir;
    QVERIFY(m_dir->isValid());
    QDir(QFileInfo(cachePath()).absolutePath()).removeRecursively();
    QFile::remove(QFileInfo(cachePath()).absolutePath());
    m_server = new HttpTestServer;
    QVERIFY(m_server->listen());
    m_listAnswers = {answerOf(200, TwoModels)};
    m_server->setResponder([this](const HttpTestServer::Request& request) {
        if (request.target.endsWith("/session"))
            return answerOf(200, request.method == "GET" ? R"({"session":"s1"})" : R"({"authenticated":true})");
        return m_listAnswers.size() > 1 ? m_listAnswers.takeFirst() : m_listAnswers.first();
    });
    m_client = new REST::RestClient(m_server->baseUrl());
    m_service = new TarnAuthorizationService(m_client);
}

void TestSupportedDrivesFile::cleanup()
{
    delete m_client;
    SupportedDrivesManager::release();
    delete m_service;
    delete m_server;
    delete m_dir;
}

QString TestSupportedDrivesFile::cachePath() const
{
    return SupportedDrivesManager::instance()->filePath();
}

void TestSupportedDrivesFile::startManager()
{
    SupportedDrivesManager::initialize(m_client, m_service);
}

void TestSupportedDrivesFile::processesTheServersList_data()
{
    QTest::addColumn<QByteArray>("cache");  // "<none>": no file
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("list");   // in force afterwards
    QTest::addColumn<QByteArray>("file");    // afterwards

    const QByteArray reversedFile = "U1NEWA==,Uzk=,Qw==\nU1NEIEEx,MS4w,Qg==\n";
    const QStringList twoModels{"SSD A1|1.0|B", "SSDX|S9|C"};
    // Read by the strict reader, yet not as the writer would put it: a rewrite would show.
    const QByteArray sameWithoutLineFeed = TwoModelsFile.left(TwoModelsFile.size() - 1);

    QTest::newRow("first start") << QByteArray("<none>") << answerOf(200, TwoModels) << "Successfully updated supported drive list"
                                 << twoModels << TwoModelsFile;
    QTest::newRow("unchanged list leaves the file") << sameWithoutLineFeed << answerOf(200, TwoModels)
                                                    << "Supported drive list up to date, update not required" << twoModels
                                                    << sameWithoutLineFeed;
    QTest::newRow("empty field cannot be read back")
        << TwoModelsFile << answerOf(200, R"([{"model":"SSD A1","firmware":"1.0","smartType":"B"},{"model":"SSDX","firmware":"","smartType":"C"}])")
        << "Updated drives list and server drives list mismatch" << QStringList{"SSD A1|1.0|B"}
        << QByteArray("U1NEIEEx,MS4w,Qg==\nU1NEWA==,,Qw==\n");
    // An empty model would match every drive: "!!!!" decodes to nothing, "AFM=" to a text ending at its NUL.
    for (const QByteArray& field : {QByteArray("!!!!"), QByteArray("AFM=")}) {
        const QByteArray damagedFile = "U1NEIEEx,MS4w,Qg==\n" + field + ",Uzk=,Qw==\n";
        QTest::newRow("damaged field " + field) << damagedFile << answerOf(500, TwoModels)
            << "Supported drives file format errors detected" << QStringList{"SSD A1|1.0|B"} << damagedFile;
    }
    QTest::newRow("server error") << TwoModelsFile << answerOf(500, TwoModels)
                                  << "Server did not respond correctly to supported drives request: 500" << twoModels << TwoModelsFile;
    Answer redirect = answerOf(302, TwoModels);
    redirect.extraHeaders = {{"Location", "/elsewhere/supported-models"}};
    QTest::newRow("malformed JSON") << TwoModelsFile << answerOf(200, R"([{"model":)")
                                    << R"(Unable to parse server supported drives response: [{"model":)" << twoModels << TwoModelsFile;
    QTest::newRow("missing key") << TwoModelsFile << answerOf(200, R"([{"model":"A","firmware":"1"}])")
                                 << R"(Unable to parse server supported drives response: [{"model":"A","firmware":"1"}])" << twoModels
                                 << TwoModelsFile;
}

void TestSupportedDrivesFile::processesTheServersList()
{
    QFETCH(QByteArray, cache);
    QFETCH(Answer, answer);
    QFETCH(QString, line);
    QFETCH(QStringList, list);
    QFETCH(QByteArray, file);

    if (cache != "<none>")
        put(cachePath(), cache);
    m_listAnswers = {answer};
    LogCapture log;
    startManager();
    QTRY_COMPARE(log.count(line), 1);
    QCOMPARE(textOf(SupportedDrivesManager::instance()->supportedDrives()), list);
    QCOMPARE(contentOf(cachePath()), file);
    for (const HttpTestServer::Request& request : m_server->requests())
        QVERIFY(!request.target.contains("elsewhere"));
}

KESTRAVIN_TEST_SUITE(TestSupportedDrivesFile)
#include "tst_supporteddrivesfile.moc"
