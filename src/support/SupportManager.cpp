#include "support/SupportManager.h"

#include "communicationweb/SupportResponse.h"
#include "logger/Logger.h"
#include "rest/RestResponse.h"
#include "smart/SmartManager.h"
#include "support/SupportServiceHandler.h"
#include "support/SupportTicket.h"
#include "system/SystemManager.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QTimer>
#include <QtConcurrent>

namespace Velmora::Support {

namespace {

const QByteArray VersionText("1.1.4-");

void writeReport(const QString& path, const QString& text, const char* failure)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        Logger::error(QString(), QString::fromLatin1(failure));
        return;
    }
    file.write(text.toUtf8());
}

// What the worker needs, copied to it whole.
struct Reports {
    QString directory;
    QString systemInfo;
    QString systemReport;
    QString smartReport;
    QString logDirectory;
    QString logBaseName;
};

// Runs on a worker of the global pool: it touches nothing but its argument, the file system and
// the logger. The folder may vanish under it when the watchdog ends the ticket; the failed opens
// are then logged and that is all.
void collectReports(const Reports& reports)
{
    const QString& directory = reports.directory;
    writeReport(directory + QStringLiteral("/systemInfo.json"), reports.systemInfo, "Unable to create system info log file");
    writeReport(directory + QStringLiteral("/systemReport.json"), reports.systemReport,
        "Unable to create system report log file");
    writeReport(directory + QStringLiteral("/smartReport.json"), reports.smartReport, "Unable to create SMART report log file");
    // Without a log directory the logger never opened a file, so there is nothing to copy.
    if (reports.logDirectory.isEmpty())
        return;
    QDirIterator logs(reports.logDirectory, {reports.logBaseName + QLatin1Char('*')}, QDir::Files);
    while (logs.hasNext()) {
        const QString source = logs.next();
        if (!QFile::copy(source, directory + QLatin1Char('/') + logs.fileName()))
            Logger::error(QString(), QStringLiteral("Unable to copy log file: %1").arg(source));
    }
}

} // namespace

SupportManager::SupportManager(System::SystemManager* systemManager, Smart::SmartManager* smartManager,
    SupportServiceHandler* supportServiceHandler, REST::RestClient* restClient,
    CommunicationWeb::TarnAuthorizationService* authorizationService, QObject* parent)
    : TarnWebHandler(restClient, authorizationService, parent)
    , m_systemManager(systemManager)
    , m_smartManager(smartManager)
    , m_supportServiceHandler(supportServiceHandler)
    , m_watchdog(new QTimer(this))
{
    qRegisterMetaType<Velmora::Support::SupportStatus>();
    setRetransmissionEnabled(false);
    m_watchdog->setSingleShot(true);
    m_watchdog->setInterval(WatchdogInterval);
    connect(m_watchdog, &QTimer::timeout, this, &SupportManager::onWatchdogTimeout);
    connect(m_supportServiceHandler, &SupportServiceHandler::serviceLogFilesCopied, this,
        &SupportManager::onServiceLogFilesCopied);
}

int SupportManager::watchdogInterval() const
{
    return m_watchdog->interval();
}

void SupportManager::setWatchdogInterval(int milliseconds)
{
    m_watchdog->setInterval(milliseconds);
}

void SupportManager::setStatus(SupportStatus status)
{
    m_status = status;
    emit statusChanged(m_status);
}

void SupportManager::createSupportTicket(QString message, QString email, QString diskSerialNr, QString captcha)
{
    if (m_status != Idle) {
        Logger::warning(QString(), QStringLiteral("Cannot complete support case request as previous session is still active"));
        return;
    }
    m_ticket = new SupportTicket(message, email, diskSerialNr, captcha, this);
    setStatus(CopyingServiceLogs);
    m_supportServiceHandler->copyLogFiles(m_ticket->directoryPath());
    m_watchdog->start();
}

void SupportManager::onServiceLogFilesCopied(uint filesCopied, QString serviceLogFileBaseName)
{
    if (m_status != CopyingServiceLogs) {
        Logger::warning(QString(),
            QStringLiteral("Service log file copy event received while module was in improper state %1").arg(m_status));
        return;
    }
    Logger::debug(QString(), QStringLiteral("Service log files [%1] were copied to ticket dir (base name: %2)")
                                 .arg(filesCopied)
                                 .arg(serviceLogFileBaseName));
    // The managers live in this thread: their texts are made here and handed over as copies.
    const Reports reports{m_ticket->directoryPath(), m_systemManager->systemInfoJson(), m_systemManager->systemReportJson(),
        m_smartManager->smartReportJson(), Logger::logDirectory(), Logger::logFileBaseName()};

    auto* watcher = new QFutureWatcher<void>(this);
    connect(watcher, &QFutureWatcher<void>::finished, this, [this, watcher] {
        postTicket();
        watcher->deleteLater();
    });
    watcher->setFuture(QtConcurrent::run(collectReports, reports));
    setStatus(CollectingReports);
}

void SupportManager::postTicket()
{
    // A ticket the watchdog ended leaves its worker's tail here.
    if (m_status != CollectingReports) {
        Logger::warning(QString(),
            QStringLiteral("Support ticket post requested while module was in improper state %1").arg(m_status));
        return;
    }
    QFile version(m_ticket->directoryPath() + QStringLiteral("/version.txt"));
    if (version.open(QIODevice::WriteOnly) && version.write(VersionText) == VersionText.size()) {
        version.close();
        m_ticket->addFile(version.fileName());
    } else {
        Logger::error(QString(), QStringLiteral("Unable to create version log file"));
    }

    REST::RestRequest request(REST::POST, QStringLiteral("support"));
    request.addJsonBody(m_ticket->request().toJson());
    const QStringList files = m_ticket->files();
    for (const QString& path : files) {
        const QFileInfo file(path);
        if (file.exists())
            request.addFile(file.fileName(), file.absoluteFilePath(), QStringLiteral("text"));
        else
            Logger::warning(QString(), QStringLiteral("File [%1] does not exist and will be not added to support request").arg(path));
    }
    sendRequest(request);
    setStatus(PostingTicket);
}

bool SupportManager::onRestResponseReceived(REST::RestResponse* response)
{
    // A 401: the post waits in the queue for a new session, and the watchdog keeps running. A
    // ticket the watchdog already cancelled must not go out once the server takes sessions again:
    // the user was told it failed and sends it anew.
    if (TarnWebHandler::onRestResponseReceived(response)) {
        if (m_status == Idle)
            clearRetransmissionQueue();
        delete response;
        return true;
    }
    if (!response)
        return true;
    if (m_status != PostingTicket) {
        Logger::warning(QString(), QStringLiteral("Support response received while module was in improper state %1").arg(m_status));
        delete response;
        return true;
    }
    m_watchdog->stop();
    const SupportStatus verdict = readAnswer(*response);
    if (verdict != m_status)
        setStatus(verdict);
    dropTicket();
    delete response;
    return true;
}

SupportStatus SupportManager::readAnswer(const REST::RestResponse& response)
{
    const int status = response.status();
    if (status == 201) {
        Logger::debug(QString(), QStringLiteral("Support response accepted"));
        CommunicationWeb::SupportResponse answer;
        if (answer.fromJson(response.content()))
            Logger::info(QString(), QStringLiteral("Support ticket created with id: %1").arg(answer.id()));
        else
            Logger::error(QString(), QStringLiteral("Unable to parse server support response: %1").arg(response.content()));
        return Accepted;
    }
    if (status == 0) {
        Logger::error(QString(), QStringLiteral("Server did not respond correctly to support request: %1").arg(status));
        return ConnectionFailed;
    }
    Logger::debug(QString(), QStringLiteral("Support response rejected with code %1 (%2)").arg(status).arg(response.content()));
    return status == 418 ? InvalidCaptcha : Rejected;
}

void SupportManager::dropTicket()
{
    // Back to Idle without a signal: the last word the form heard stays on it.
    m_status = Idle;
    if (m_ticket)
        m_ticket->deleteLater();
    m_ticket = nullptr;
}

void SupportManager::onWatchdogTimeout()
{
    if (m_status == Idle)
        return;
    Logger::error(QString(), QStringLiteral("Unable to complete support ticket operation in time, request is cancelled"));
    clearRetransmissionQueue();
    setStatus(TimedOut);
    dropTicket();
}

} // namespace Velmora::Support
