#include "download/DownloadManager.h"
#include "support/HttpTestServer.h"
#include "support/LogCapture.h"
#include "support/SupportCaptcha.h"
#include "support/SupportServiceHandler.h"
#include "support/SupportTicket.h"
#include "support/TestEnvironment.h"

#include "CopyLogFiles.pb.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

using Velmora::Support::SupportCaptcha;
using Velmora::Support::SupportServiceHandler;
using Velmora::Support::SupportTicket;
using Message = Velmora::Message::Message;
namespace pb = Velmora::Message;

namespace {

QByteArray copyResponse(int code, const QString& baseName, uint count)
{
    pb::CopyLogFilesResponse response;
    response.set_code(static_cast<pb::Code>(code));
    response.set_logfilebasename(baseName.toStdString());
    response.set_filescopied(count);
    const std::string bytes = response.SerializeAsString();
    return QByteArray(bytes.data(), int(bytes.size()));
}

} // namespace

class TestSupportParts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Velmora::Logger::setConsoleEnabled(false);
        qRegisterMetaType<Message::MessageType>();
    }

    void handlerAsksServiceForLogs();
    void handlerReadsServiceAnswer_data();
    void handlerReadsServiceAnswer();
    void ticketHoldsFormAndFolder();
    void captchaLandsInSupportFolder();
    void failedCaptchaKeepsLastPicture();
};

void TestSupportParts::handlerAsksServiceForLogs()
{
    SupportServiceHandler handler;
    QCOMPARE(handler.messageTypes(), QList<Message::MessageType>{Message::CopyLogFilesResponse});
    QSignalSpy sent(&handler, qOverload<Message::MessageType, QByteArray>(&SupportServiceHandler::sendMessage));
    LogCapture log;
    handler.copyLogFiles(QStringLiteral("/tmp/ticket ü"));
    QCOMPARE(sent.count(), 1);
    QCOMPARE(sent.first().at(0).toInt(), int(Message::CopyLogFilesRequest));
    pb::CopyLogFilesRequest request;
    const QByteArray payload = sent.first().at(1).toByteArray();
    QVERIFY(request.ParseFromArray(payload.constData(), payload.size()));
    QCOMPARE(QString::fromStdString(request.destinationdirectory()), QStringLiteral("/tmp/ticket ü"));
    QCOMPARE(log.count(QStringLiteral("Sending request to service log file to: /tmp/ticket ü")), 1);
}

void TestSupportParts::handlerReadsServiceAnswer_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("signalCount");
    QTest::addColumn<uint>("count");
    QTest::addColumn<QString>("baseName");

    QTest::newRow("copied") << int(Message::CopyLogFilesResponse) << copyResponse(0, QStringLiteral("VelmoraService"), 3)
                            << "Service log files were copied" << 1 << 3u << "VelmoraService";
    QTest::newRow("service failed") << int(Message::CopyLogFilesResponse) << copyResponse(6, QStringLiteral("VelmoraService"), 3)
                                    << "Cannot copy service log files. Error raised by service." << 1 << 0u << QString();
    QTest::newRow("garbage") << int(Message::CopyLogFilesResponse) << QByteArray("\x0a\xff", 2)
                             << "Cannot copy service log files. Message parse failed." << 1 << 0u << QString();
    QTest::newRow("another type") << int(Message::SystemInfo) << copyResponse(0, QStringLiteral("X"), 1)
                                  << "Unexpected message type: SystemInfo." << 0 << 0u << QString();
}

void TestSupportParts::handlerReadsServiceAnswer()
{
    QFETCH(int, type);
    QFETCH(QByteArray, payload);
    QFETCH(QString, line);
    QFETCH(int, signalCount);
    QFETCH(uint, count);
    QFETCH(QString, baseName);

    SupportServiceHandler handler;
    QSignalSpy copied(&handler, &SupportServiceHandler::serviceLogFilesCopied);
    LogCapture log;
    handler.handleMessage(Message::MessageType(type), payload);
    QCOMPARE(log.count(line), 1);
    QCOMPARE(copied.count(), signalCount);
    if (signalCount) {
        QCOMPARE(copied.first().at(0).toUInt(), count);
        QCOMPARE(copied.first().at(1).toString(), baseName);
    }
}

void TestSupportParts::ticketHoldsFormAndFolder()
{
    LogCapture log;
    auto* ticket = new SupportTicket(QStringLiteral("msg"), QStringLiteral("a@b.c"), QStringLiteral("SN1"), QStringLiteral("cap"));
    const QString folder = ticket->directoryPath();
    QVERIFY(QFileInfo(folder).isDir());
    QVERIFY(folder.startsWith(QDir::tempPath()));
    QCOMPARE(log.count(QStringLiteral("New ticket created in: %1").arg(folder)), 1);
    QCOMPARE(ticket->request().message(), QStringLiteral("msg"));
    QCOMPARE(ticket->request().email(), QStringLiteral("a@b.c"));
    QCOMPARE(ticket->request().diskSerialNumber(), QStringLiteral("SN1"));
    QCOMPARE(ticket->request().captcha(), QStringLiteral("cap"));

    ticket->addFile(folder + QStringLiteral("/version.txt"));
    ticket->addFile(folder + QStringLiteral("/other.txt"));
    ticket->addFile(folder + QStringLiteral("/version.txt"));
    QCOMPARE(ticket->files(), (QStringList{folder + "/version.txt", folder + "/other.txt"}));
    QCOMPARE(log.countStartingWith(QStringLiteral("Support ticket file added: ")), 2);

    QFile inside(folder + QStringLiteral("/report.json"));
    QVERIFY(inside.open(QIODevice::WriteOnly));
    inside.close();
    delete ticket;
    QVERIFY(!QDir(folder).exists());
    QCOMPARE(log.count(QStringLiteral("Ticket removed")), 1);
}

void TestSupportParts::captchaLandsInSupportFolder()
{
    HttpTestServer server;
    QVERIFY(server.listen());
    HttpTestServer::Answer picture;
    picture.contentType = "image/png";
    picture.body = "first picture";
    server.enqueue(picture);
    picture.body = "second picture";
    server.enqueue(picture);

    Download::DownloadManager downloads;
    SupportCaptcha captcha(&downloads, server.baseUrl());
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/support");
    QDir(folder).removeRecursively();
    QCOMPARE(captcha.directory(), folder);
    QCOMPARE(captcha.url(), server.baseUrl().toString() + QStringLiteral("captcha.php"));

    QSignalSpy available(&captcha, &SupportCaptcha::captchaAvailable);
    LogCapture log;
    captcha.requestCaptchaImage();
    QVERIFY(available.wait(3000));
    const QString path = folder + QStringLiteral("/captcha.php");
    QCOMPARE(available.first().at(0).toString(), path);
    QCOMPARE(log.count(QStringLiteral("Captcha downloaded: %1").arg(path)), 1);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("first picture"));
    file.close();

    // The next picture replaces the last one.
    captcha.requestCaptchaImage();
    QVERIFY(available.wait(3000));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("second picture"));
    QCOMPARE(server.requests().last().target, QByteArray("/kestravin/public/api/captcha.php"));
    QVERIFY(!server.requests().last().target.contains("session"));
}

void TestSupportParts::failedCaptchaKeepsLastPicture()
{
    HttpTestServer server;
    QVERIFY(server.listen());
    HttpTestServer::Answer answer;
    answer.body = "first picture";
    server.enqueue(answer);
    answer.status = 500;
    answer.body = "broken";
    server.enqueue(answer);

    Download::DownloadManager downloads;
    SupportCaptcha captcha(&downloads, server.baseUrl());
    QSignalSpy available(&captcha, &SupportCaptcha::captchaAvailable);
    captcha.requestCaptchaImage();
    QVERIFY(available.wait(3000));

    QSignalSpy finished(&downloads, &Download::DownloadManager::finished);
    LogCapture log;
    captcha.requestCaptchaImage();
    QVERIFY(finished.wait(3000));
    QCOMPARE(available.count(), 1);
    QCOMPARE(log.count(QStringLiteral("Failed to download captcha: %1/captcha.php").arg(captcha.directory())), 1);
}

KESTRAVIN_TEST_MAIN(TestSupportParts)
#include "tst_supportparts.moc"
