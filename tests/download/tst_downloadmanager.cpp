#include "download/DownloadFile.h"
#include "download/DownloadHandler.h"
#include "download/DownloadManager.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

using namespace Download;
using Answer = HttpTestServer::Answer;

namespace {

Answer fileAnswer(int status, const QByteArray& body, const QList<QPair<QByteArray, QByteArray>>& headers = {})
{
    Answer answer = answerOf(status, body, "application/octet-stream");
    answer.extraHeaders = headers;
    return answer;
}

QString kindOf(const DownloadFile* file)
{
    if (dynamic_cast<const InstallerFile*>(file))
        return QStringLiteral("installer");
    if (dynamic_cast<const CaptchaFile*>(file))
        return QStringLiteral("captcha");
    if (dynamic_cast<const AdvertisementFile*>(file))
        return QStringLiteral("advertisement");
    return QStringLiteral("plain");
}

// A customer that keeps what it is told, and owns what it is given.
class Recorder : public DownloadHandler
{
public:
    struct Event {
        bool succeeded;
        QString kind;
        QString path;
        QString url;
        DownloadFile* file;
    };
    QList<Event> events;
    std::vector<std::unique_ptr<DownloadFile>> files;

    void onFileDownloaded(DownloadFile* file) override { record(true, file); }
    void onFileDownloadFailed(DownloadFile* file) override { record(false, file); }

private:
    void record(bool succeeded, DownloadFile* file)
    {
        events.append({succeeded, kindOf(file), file->path(), file->url().toString(), file});
        files.emplace_back(file);
    }
};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

} // namespace

class TestDownloadManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init();
    void cleanup();

    void downloadsOneAtATimeStreamingToDisk();
    void endsAsTheAnswerSays_data();
    void endsAsTheAnswerSays();
    void refusesWhatItCannotWrite_data();
    void refusesWhatItCannotWrite();
    void everyHandlerGetsItsOwnCopy_data();
    void everyHandlerGetsItsOwnCopy();
    void countsGrowOverBatches();
    void reportsProgress();
    void passesOverANullFile();

private:
    QString urlOf(const QString& path) const { return m_server->baseUrl().resolved(QUrl(path)).toString(); }

    HttpTestServer* m_server = nullptr;
    DownloadManager* m_manager = nullptr;
    Recorder* m_recorder = nullptr;
    QTemporaryDir* m_dir = nullptr;
};

void TestDownloadManager::init()
{
    m_server = new HttpTestServer;
    QVERIFY(m_server->listen());
    m_manager = new DownloadManager;
    m_recorder = new Recorder;
    m_manager->addHandler(m_recorder);
    m_dir = new QTemporaryDir;
    QVERIFY(m_dir->isValid());
}

void TestDownloadManager::cleanup()
{
    delete m_manager;
    delete m_recorder;
    delete m_server;
    delete m_dir;
}

void TestDownloadManager::downloadsOneAtATimeStreamingToDisk()
{
    Answer first = fileAnswer(200, QByteArray(64 * 1024, 'a') + QByteArray(64 * 1024, 'b'));
    first.stallAfter = 64 * 1024;
    m_server->enqueue(first);
    m_server->enqueue(fileAnswer(200, "second"));
    QSignalSpy finished(m_manager, &DownloadManager::finished);
    LogCapture log;

    m_manager->addDownload(new InstallerFile(urlOf(QStringLiteral("files/setup.bin")), m_dir->path()));
    m_manager->addDownload(new AdvertisementFile(urlOf(QStringLiteral("files/ad.png")), m_dir->path()));
    QVERIFY(m_manager->isDownloading());

    // Half of the first file is on disk while its answer is still open, and the second waits.
    const QString firstPath = m_dir->filePath(QStringLiteral("setup.bin"));
    QTRY_COMPARE(contentOf(firstPath), QByteArray(64 * 1024, 'a'));
    QCOMPARE(m_server->requests().size(), 1);
    QVERIFY(m_recorder->events.isEmpty());

    m_server->releaseStalled();
    QVERIFY(finished.wait(5000));
    QCOMPARE(finished.count(), 1);
    QVERIFY(!m_manager->isDownloading());
    QCOMPARE(m_server->requests().size(), 2);
    QCOMPARE(m_server->requests().at(0).target, QByteArray("/kestravin/public/api/files/setup.bin"));
    QCOMPARE(m_server->requests().at(1).target, QByteArray("/kestravin/public/api/files/ad.png"));
    QCOMPARE(contentOf(firstPath), QByteArray(64 * 1024, 'a') + QByteArray(64 * 1024, 'b'));
    QCOMPARE(contentOf(m_dir->filePath(QStringLiteral("ad.png"))), QByteArray("second"));

    QCOMPARE(m_recorder->events.size(), 2);
    QCOMPARE(m_recorder->events.at(0).kind, QStringLiteral("installer"));
    QCOMPARE(m_recorder->events.at(0).path, firstPath);
    QVERIFY(m_recorder->events.at(0).succeeded);
    QCOMPARE(m_recorder->events.at(1).kind, QStringLiteral("advertisement"));
    QCOMPARE(log.count(QStringLiteral("Downloading %1...\n").arg(urlOf(QStringLiteral("files/setup.bin")))), 1);
    QCOMPARE(log.count(QStringLiteral("Download path: %1").arg(firstPath)), 1);
    QCOMPARE(log.count(QStringLiteral("Download succeeded [200]")), 2);
    QCOMPARE(log.count(QStringLiteral("File download completed")), 2);
    QCOMPARE(log.count(QStringLiteral("2/2 files downloaded successfully\n")), 1);
}

void TestDownloadManager::endsAsTheAnswerSays_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<bool>("succeeded");
    QTest::addColumn<QByteArray>("content");  // empty: no file is left
    QTest::addColumn<QStringList>("lines");   // %1: the URL, %2: the base address' origin

    QTest::newRow("ok") << fileAnswer(200, "hello") << true << QByteArray("hello") << QStringList{"Download succeeded [200]"};
    QTest::newRow("zero bytes kept") << fileAnswer(200, QByteArray("a\0b\0", 4)) << true << QByteArray("a\0b\0", 4)
                                     << QStringList{"Download succeeded [200]"};
    QTest::newRow("not found") << fileAnswer(404, "missing") << false << QByteArray()
                               << QStringList{"Failed downloading file from url: %1 to path ", "File download failed"};
    QTest::newRow("redirect elsewhere")
        << fileAnswer(302, "moved", {{"Location", "https://elsewhere.example/x.bin"}}) << false << QByteArray()
        << QStringList{"Request %1 was redirected with code 302", "Redirected to: https://elsewhere.example/x.bin\n", "File download failed"};
    QTest::newRow("relative redirect") << fileAnswer(301, "moved", {{"Location", "/mirror/x.bin"}}) << false << QByteArray()
                                       << QStringList{"Request %1 was redirected with code 301", "Redirected to: %2/mirror/x.bin\n"};
    QTest::newRow("redirect without target") << fileAnswer(308, "") << false << QByteArray()
                                             << QStringList{"Request %1 was redirected with code 308"};
    QTest::newRow("306 is no redirect") << fileAnswer(306, "odd") << true << QByteArray("odd") << QStringList{"Download succeeded [306]"};
    Answer dropped;
    dropped.drop = true;
    QTest::newRow("connection dropped") << dropped << false << QByteArray()
                                        << QStringList{"Failed downloading file from url: %1 to path "};
}

void TestDownloadManager::endsAsTheAnswerSays()
{
    QFETCH(Answer, answer);
    QFETCH(bool, succeeded);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, lines);

    // A file of the same name from an earlier download is replaced, or gone after a failure.
    QFile earlier(m_dir->filePath(QStringLiteral("x.bin")));
    QVERIFY(earlier.open(QIODevice::WriteOnly));
    earlier.write("an older and much longer file of the same name");
    earlier.close();
    m_server->enqueue(answer);
    LogCapture log;
    QSignalSpy finished(m_manager, &DownloadManager::finished);
    const QString url = urlOf(QStringLiteral("files/x.bin"));
    m_manager->addDownload(new CaptchaFile(url, m_dir->path()));
    QVERIFY(finished.wait(5000));

    QCOMPARE(m_recorder->events.size(), 1);
    QCOMPARE(m_recorder->events.first().succeeded, succeeded);
    QCOMPARE(m_recorder->events.first().kind, QStringLiteral("captcha"));
    const QString path = m_dir->filePath(QStringLiteral("x.bin"));
    QCOMPARE(m_recorder->events.first().path, path);
    if (content.isEmpty())
        QVERIFY(!QFile::exists(path));
    else
        QCOMPARE(contentOf(path), content);
    const QString origin = m_server->baseUrl().adjusted(QUrl::RemovePath).toString();
    const QStringList messages = log.messages();
    for (const QString& line : lines) {
        const QString expected = QString(line).replace(QLatin1String("%1"), url).replace(QLatin1String("%2"), origin);
        QVERIFY2(std::any_of(messages.cbegin(), messages.cend(), [&](const QString& m) { return m.startsWith(expected); }),
            qPrintable(expected));
    }
    QCOMPARE(log.count(QStringLiteral("%1/1 files downloaded successfully\n").arg(succeeded ? 1 : 0)), 1);
}

void TestDownloadManager::refusesWhatItCannotWrite_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("directory");  // relative to the test's folder
    QTest::addColumn<QString>("savePath");

    QTest::newRow("no file name") << "files/" << "." << "./";
    QTest::newRow("directory under a file") << "files/x.bin" << "plain.txt/sub" << "plain.txt/sub/x.bin";
    QTest::newRow("directory missing") << "files/x.bin" << "absent" << "absent/x.bin";
}

void TestDownloadManager::refusesWhatItCannotWrite()
{
    QFETCH(QString, url);
    QFETCH(QString, directory);
    QFETCH(QString, savePath);

    QFile plain(m_dir->filePath(QStringLiteral("plain.txt")));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    plain.close();
    m_server->enqueue(fileAnswer(200, "next"));
    LogCapture log;
    QSignalSpy finished(m_manager, &DownloadManager::finished);
    const QString base = m_dir->path() + QLatin1Char('/');
    m_manager->addDownload(new DownloadFile(urlOf(url), base + directory));
    m_manager->addDownload(new DownloadFile(urlOf(QStringLiteral("files/next.txt")), m_dir->path()));
    QVERIFY(finished.wait(5000));

    const QString expected = QStringLiteral("Problem opening save file '%1' for download '%2': ").arg(base + savePath, urlOf(url));
    QCOMPARE(log.countStartingWith(expected), 1);
    QCOMPARE(m_recorder->events.size(), 2);
    QVERIFY(!m_recorder->events.at(0).succeeded);
    QCOMPARE(m_recorder->events.at(0).path, base + savePath);
    // The queue goes on with the next file, and the refused one was never asked for.
    QVERIFY(m_recorder->events.at(1).succeeded);
    QCOMPARE(m_server->requests().size(), 1);
    QCOMPARE(log.count(QStringLiteral("1/2 files downloaded successfully\n")), 1);
}

void TestDownloadManager::everyHandlerGetsItsOwnCopy_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("succeeded");
    QTest::newRow("installer") << "installer" << true;
    QTest::newRow("captcha") << "captcha" << true;
    QTest::newRow("advertisement, failed") << "advertisement" << false;
    QTest::newRow("plain") << "plain" << true;
}

void TestDownloadManager::everyHandlerGetsItsOwnCopy()
{
    QFETCH(QString, kind);
    QFETCH(bool, succeeded);

    Recorder second;
    m_manager->addHandler(&second);
    m_server->enqueue(fileAnswer(succeeded ? 200 : 500, "x"));
    const QString url = urlOf(QStringLiteral("pic.png"));
    DownloadFile* file = nullptr;
    if (kind == QLatin1String("installer"))
        file = new InstallerFile(url, m_dir->path());
    else if (kind == QLatin1String("captcha"))
        file = new CaptchaFile(url, m_dir->path());
    else if (kind == QLatin1String("advertisement"))
        file = new AdvertisementFile(url, m_dir->path());
    else
        file = new DownloadFile(url, m_dir->path());
    QSignalSpy finished(m_manager, &DownloadManager::finished);
    m_manager->addDownload(file);
    QVERIFY(finished.wait(5000));

    QCOMPARE(m_recorder->events.size(), 1);
    QCOMPARE(second.events.size(), 1);
    const Recorder::Event mine = m_recorder->events.first();
    const Recorder::Event theirs = second.events.first();
    QVERIFY(mine.file != theirs.file);
    QVERIFY(mine.file != file);
    QCOMPARE(mine.kind, kind);
    QCOMPARE(theirs.kind, kind);
    QCOMPARE(mine.succeeded, succeeded);
    QCOMPARE(theirs.succeeded, succeeded);
    m_recorder->files.clear();
    QCOMPARE(theirs.file->path(), m_dir->filePath(QStringLiteral("pic.png")));
    QCOMPARE(theirs.file->url().toString(), url);
}

void TestDownloadManager::countsGrowOverBatches()
{
    m_server->enqueue(fileAnswer(200, "1"));
    m_server->enqueue(fileAnswer(404, "2"));
    m_server->enqueue(fileAnswer(200, "3"));
    LogCapture log;
    QSignalSpy finished(m_manager, &DownloadManager::finished);
    for (const char* name : {"a", "b", "c"})
        m_manager->addDownload(new DownloadFile(urlOf(QString::fromLatin1(name)), m_dir->path()));
    QVERIFY(finished.wait(5000));
    QCOMPARE(log.count(QStringLiteral("2/3 files downloaded successfully\n")), 1);
    QCOMPARE(contentOf(m_dir->filePath(QStringLiteral("c"))), QByteArray("3"));
    QVERIFY(!QFile::exists(m_dir->filePath(QStringLiteral("b"))));

    m_manager->addDownload(new DownloadFile(urlOf(QStringLiteral("d")), m_dir->path()));
    QVERIFY(finished.wait(5000));
    QCOMPARE(log.count(QStringLiteral("3/4 files downloaded successfully\n")), 1);
    QCOMPARE(m_manager->succeededCount(), 3);
    QCOMPARE(m_manager->totalCount(), 4);
}

void TestDownloadManager::reportsProgress()
{
    m_server->enqueue(fileAnswer(200, QByteArray(200 * 1024, 'z')));
    struct Step {
        QString path;
        double percent;
        double speed;
    };
    QList<Step> progress;
    connect(m_manager, &DownloadManager::downloadProgressChanged, this,
        [&](DownloadFile* file, double percent, double speed) { progress.append({file->path(), percent, speed}); });
    QSignalSpy finished(m_manager, &DownloadManager::finished);
    m_manager->addDownload(new InstallerFile(urlOf(QStringLiteral("big.bin")), m_dir->path()));
    QVERIFY(finished.wait(5000));
    // Qt holds progress back to a few signals a second; the last one tells the whole file.
    QVERIFY(!progress.isEmpty());
    QCOMPARE(progress.last().path, m_dir->filePath(QStringLiteral("big.bin")));
    QCOMPARE(progress.last().percent, 100.0);
    QVERIFY(progress.last().speed > 0);
}

void TestDownloadManager::passesOverANullFile()
{
    LogCapture log;
    QSignalSpy finished(m_manager, &DownloadManager::finished);
    m_manager->addDownload(nullptr);
    QVERIFY(finished.wait(5000));
    QCOMPARE(log.count(QStringLiteral("Download failed - unallocated download pointer")), 1);
    QCOMPARE(log.count(QStringLiteral("0/1 files downloaded successfully\n")), 1);
    QVERIFY(m_recorder->events.isEmpty());
}

KESTRAVIN_TEST_MAIN(TestDownloadManager)
#include "tst_downloadmanager.moc"
