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

// Entries are written "model|firmware|class".
QList<SupportedDrive> listOf(const QStringList& entries)
{
    QList<SupportedDrive> list;
    for (const QString& entry : entries) {
        const QStringList fields = entry.split(QLatin1Char('|'));
        list.append(SupportedDrive(fields.value(0), fields.value(1), fields.value(2)));
    }
    return list;
}

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

    void writesBase64Lines_data();
    void writesBase64Lines();
    void readsStrictly_data();
    void readsStrictly();
    void reportsWhereItCannotWrite();

    void initializeLoadsTheCacheThenAsks();
    void processesTheServersList_data();
    void processesTheServersList();
    void keepsTheListWhenTheFileCannotBeWritten();
    void takesALargeList();
    void refreshesEveryInterval();

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

void TestSupportedDrivesFile::writesBase64Lines_data()
{
    QTest::addColumn<QStringList>("list");
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("one drive") << QStringList{"SSD A1|1.0|B"} << QByteArray("U1NEIEEx,MS4w,Qg==\n");
    QTest::newRow("server order kept") << QStringList{"SSDX|S9|C", "SSD A1|1.0|B"} << QByteArray("U1NEWA==,Uzk=,Qw==\nU1NEIEEx,MS4w,Qg==\n");
    QTest::newRow("UTF-8 text") << QStringList{QString::fromUtf8("Dysk Żółw|1|D")} << QByteArray("RHlzayDFu8OzxYJ3,MQ==,RA==\n");
    QTest::newRow("empty field written empty") << QStringList{"SSDX||B"} << QByteArray("U1NEWA==,,Qg==\n");
    QTest::newRow("no drives") << QStringList() << QByteArray();
}

void TestSupportedDrivesFile::writesBase64Lines()
{
    QFETCH(QStringList, list);
    QFETCH(QByteArray, content);

    const QString path = m_dir->filePath(QStringLiteral("drives/supported_drives"));
    put(path, "an older and longer list that must go entirely\n");
    LogCapture log;
    QVERIFY(SupportedDrivesFile(path).write(listOf(list)));
    QCOMPARE(contentOf(path), content);
    QCOMPARE(log.count(QStringLiteral("Successfully created supported drives file with %1 drives entries").arg(list.size())), 1);
}

void TestSupportedDrivesFile::readsStrictly_data()
{
    QTest::addColumn<QByteArray>("content");  // "<none>": no file
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("list");
    QTest::addColumn<QString>("line");

    QTest::newRow("two drives") << TwoModelsFile << true << QStringList{"SSD A1|1.0|B", "SSDX|S9|C"}
                                << "Successfully read supported drives file with 2 drive entries";
    QTest::newRow("no final line feed") << QByteArray("U1NEIEEx,MS4w,Qg==") << true << QStringList{"SSD A1|1.0|B"}
                                        << "Successfully read supported drives file with 1 drive entries";
    QTest::newRow("empty file") << QByteArray() << true << QStringList() << "Successfully read supported drives file with 0 drive entries";
    QTest::newRow("no file keeps the list") << QByteArray("<none>") << false << QStringList{"OLD|1|B"} << "Supported drives file doesn't exist";
    QTest::newRow("empty field stops the reading") << QByteArray("U1NEIEEx,MS4w,Qg==\nU1NEWA==,,Qg==\nU1NEWA==,Uzk=,Qw==\n") << false
                                                   << QStringList{"SSD A1|1.0|B"} << "Supported drives file format errors detected";
    QTest::newRow("four fields") << QByteArray("U1NEIEEx,MS4w,Qg==,Qg==\n") << false << QStringList()
                                 << "Supported drives file format errors detected";
    QTest::newRow("blank line") << QByteArray("U1NEIEEx,MS4w,Qg==\n\nU1NEWA==,Uzk=,Qw==\n") << false << QStringList{"SSD A1|1.0|B"}
                                << "Supported drives file format errors detected";
    QTest::newRow("trailing comma dropped") << QByteArray("U1NEIEEx,MS4w,Qg==,\n") << true << QStringList{"SSD A1|1.0|B"}
                                            << "Successfully read supported drives file with 1 drive entries";
}

void TestSupportedDrivesFile::readsStrictly()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, result);
    QFETCH(QStringList, list);
    QFETCH(QString, line);

    const QString path = m_dir->filePath(QStringLiteral("supported_drives"));
    if (content != "<none>")
        put(path, content);
    QList<SupportedDrive> drives = listOf({QStringLiteral("OLD|1|B")});
    LogCapture log;
    QCOMPARE(SupportedDrivesFile(path).read(drives), result);
    QCOMPARE(textOf(drives), list);
    QCOMPARE(log.count(line), 1);
}

void TestSupportedDrivesFile::reportsWhereItCannotWrite()
{
    put(m_dir->filePath(QStringLiteral("blocker")), "a file where a folder should be");
    const QString directory = m_dir->filePath(QStringLiteral("blocker/drives"));
    LogCapture log;
    QVERIFY(!SupportedDrivesFile(directory + QStringLiteral("/supported_drives")).write(listOf({QStringLiteral("A|1|B")})));
    QCOMPARE(log.count(QStringLiteral("Supported drives file directory does not exist and will be created")), 1);
    QCOMPARE(log.count(QStringLiteral("Cannot create dir for supported drives file: %1").arg(directory)), 1);
    QCOMPARE(log.countStartingWith(QStringLiteral("Cannot write supported drives file: ")), 1);

    // A missing folder alone is made.
    const QString fresh = m_dir->filePath(QStringLiteral("a/b/supported_drives"));
    QVERIFY(SupportedDrivesFile(fresh).write(listOf({QStringLiteral("A|1|B")})));
    QCOMPARE(contentOf(fresh), QByteArray("QQ==,MQ==,Qg==\n"));
}

void TestSupportedDrivesFile::initializeLoadsTheCacheThenAsks()
{
    put(cachePath(), "U1NEWA==,Uzk=,Qw==\n");
    LogCapture log;
    startManager();
    SupportedDrivesManager* manager = SupportedDrivesManager::instance();
    // The cache is in force at once; the server is asked only at the next turn of the loop.
    QCOMPARE(textOf(manager->supportedDrives()), QStringList{"SSDX|S9|C"});
    QCOMPARE(log.count(QStringLiteral("Successfully read supported drives list")), 1);
    QVERIFY(m_server->requests().isEmpty());
    QCOMPARE(manager->retransmissionInterval(), SupportedDrivesManager::RetransmissionInterval);
    QVERIFY(manager->updateTimer());
    QVERIFY(!manager->updateTimer()->isActive());

    QTRY_COMPARE(log.count(QStringLiteral("Successfully updated supported drive list")), 1);
    QCOMPARE(m_server->requests().last().target, QByteArray("/kestravin/public/api/supported-models?session=s1"));
    QCOMPARE(textOf(manager->supportedDrives()), (QStringList{"SSD A1|1.0|B", "SSDX|S9|C"}));
    QCOMPARE(contentOf(cachePath()), TwoModelsFile);
    QCOMPARE(log.count(QStringLiteral("Drives support response received")), 1);
    QCOMPARE(manager->updateTimer()->interval(), SupportedDrivesManager::UpdateInterval);
    QVERIFY(manager->updateTimer()->isActive());
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
    QTest::newRow("other order rewrites") << reversedFile << answerOf(200, TwoModels) << "Successfully updated supported drive list"
                                          << twoModels << TwoModelsFile;
    QTest::newRow("empty field cannot be read back")
        << TwoModelsFile << answerOf(200, R"([{"model":"SSD A1","firmware":"1.0","smartType":"B"},{"model":"SSDX","firmware":"","smartType":"C"}])")
        << "Updated drives list and server drives list mismatch" << QStringList{"SSD A1|1.0|B"}
        << QByteArray("U1NEIEEx,MS4w,Qg==\nU1NEWA==,,Qw==\n");
    QTest::newRow("empty list") << TwoModelsFile << answerOf(200, "[]") << "Successfully updated supported drive list" << QStringList()
                                << QByteArray();
    QTest::newRow("server error") << TwoModelsFile << answerOf(500, TwoModels)
                                  << "Server did not respond correctly to supported drives request: 500" << twoModels << TwoModelsFile;
    Answer redirect = answerOf(302, TwoModels);
    redirect.extraHeaders = {{"Location", "/elsewhere/supported-models"}};
    QTest::newRow("redirect not followed") << TwoModelsFile << redirect
                                           << "Server did not respond correctly to supported drives request: 302" << twoModels << TwoModelsFile;
    QTest::newRow("malformed JSON") << TwoModelsFile << answerOf(200, R"([{"model":)")
                                    << R"(Unable to parse server supported drives response: [{"model":)" << twoModels << TwoModelsFile;
    QTest::newRow("object instead of array") << TwoModelsFile << answerOf(200, R"({"model":"A"})")
                                             << R"(Unable to parse server supported drives response: {"model":"A"})" << twoModels
                                             << TwoModelsFile;
    QTest::newRow("missing key") << TwoModelsFile << answerOf(200, R"([{"model":"A","firmware":"1"}])")
                                 << R"(Unable to parse server supported drives response: [{"model":"A","firmware":"1"}])" << twoModels
                                 << TwoModelsFile;
    QTest::newRow("zero byte in the body") << TwoModelsFile << answerOf(200, QByteArray("[{\"model\":\"A\",\0\"firmware\":\"1\"}]", 30))
                                           << "Unable to parse server supported drives response: [{\"model\":\"A\"," << twoModels
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

void TestSupportedDrivesFile::keepsTheListWhenTheFileCannotBeWritten()
{
    // A file where the cache's folder belongs.
    const QString folder = QFileInfo(cachePath()).absolutePath();
    put(folder, "in the way");
    SupportedDrivesManager::instance()->setSupportedDrives(listOf({QStringLiteral("OLD|1|B")}));
    LogCapture log;
    startManager();
    QCOMPARE(log.count(QStringLiteral("Failed to read supported drives list")), 1);
    QTRY_COMPARE(log.count(QStringLiteral("Error while writing supported drive list to file")), 1);
    QCOMPARE(textOf(SupportedDrivesManager::instance()->supportedDrives()), QStringList{"OLD|1|B"});
    QFile::remove(folder);
}

void TestSupportedDrivesFile::takesALargeList()
{
    const int count = 20000;
    QByteArray body = "[";
    for (int i = 0; i < count; ++i)
        body += (i ? "," : "") + QByteArray(R"({"model":"SSD M)") + QByteArray::number(i) + R"(","firmware":"F1","smartType":"B"})";
    body += "]";
    m_listAnswers = {answerOf(200, body)};
    LogCapture log;
    startManager();
    QTRY_COMPARE_WITH_TIMEOUT(log.count(QStringLiteral("Successfully updated supported drive list")), 1, 10000);
    const QList<SupportedDrive> list = SupportedDrivesManager::instance()->supportedDrives();
    QCOMPARE(list.size(), count);
    QCOMPARE(list.last().model(), QStringLiteral("SSD M%1").arg(count - 1));
    QCOMPARE(contentOf(cachePath()).count('\n'), count);
}

void TestSupportedDrivesFile::refreshesEveryInterval()
{
    // The back-end cannot be reached: every check replaces the one before it in the queue.
    m_server->shutDown();
    LogCapture log;
    startManager();
    SupportedDrivesManager* manager = SupportedDrivesManager::instance();
    manager->setUpdateInterval(100);
    QTRY_VERIFY(log.count(QStringLiteral("Refreshing supported drives information")) >= 3);
    QVERIFY(log.count(QStringLiteral("Cleared retransmission queue")) >= 3);
    QVERIFY(manager->pendingRequestCount() <= 1);

    // Back again: the next check brings the list.
    QVERIFY(m_server->restart());
    QTRY_COMPARE(textOf(manager->supportedDrives()), (QStringList{"SSD A1|1.0|B", "SSDX|S9|C"}));
}

KESTRAVIN_TEST_MAIN(TestSupportedDrivesFile)
#include "tst_supporteddrivesfile.moc"
