#include "update/ApplicationUpdate.h"

#include "communicationweb/ApplicationUpdateResponse.h"
#include "download/DownloadFile.h"
#include "download/DownloadManager.h"
#include "logger/Logger.h"
#include "rest/RestResponse.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace Velmora::Update {

const char* const ApplicationUpdate::ApplicationVersion = "1.1.4";

ApplicationUpdate::ApplicationUpdate(REST::RestClient* restClient,
    CommunicationWeb::TarnAuthorizationService* authorizationService, Download::DownloadManager* downloadManager,
    QObject* parent)
    : TarnWebHandler(restClient, authorizationService, parent)
    , m_downloadManager(downloadManager)
    , m_downloadDirectory(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation))
    , m_installerStarter(&ApplicationUpdate::startInstaller)
{
    qRegisterMetaType<Velmora::Update::ApplicationUpdateStatus>();
    setRetransmissionInterval(RetransmissionInterval);
    m_downloadManager->addHandler(this);
    connect(m_downloadManager, &Download::DownloadManager::downloadProgressChanged, this,
        &ApplicationUpdate::onDownloadProgressChanged);
}

void ApplicationUpdate::setStatus(ApplicationUpdateStatus status)
{
    m_status = status;
    emit applicationUpdateStatusChanged(m_status, m_newestVersion);
}

void ApplicationUpdate::checkForUpdates()
{
    Logger::info(QString(), QStringLiteral("Checking application update availability"));
    setStatus(Checking);
    sendRequest(REST::RestRequest(REST::GET, QStringLiteral("application")));
}

bool ApplicationUpdate::onRestResponseReceived(REST::RestResponse* response)
{
    // A lost check waits in the queue; the status stays at Checking until it is answered.
    if (TarnWebHandler::onRestResponseReceived(response)) {
        delete response;
        return true;
    }
    if (response) {
        m_status = readAnswer(*response);
        emit applicationUpdateStatusChanged(m_status, m_newestVersion);
    }
    delete response;
    return true;
}

ApplicationUpdateStatus ApplicationUpdate::readAnswer(const REST::RestResponse& response)
{
    if (response.error() != QNetworkReply::NoError) {
        Logger::error(QString(), QStringLiteral("No server response to application update request"));
        return CheckFailed;
    }
    Logger::info(QString(), QStringLiteral("Application update response received"));
    CommunicationWeb::ApplicationUpdateResponse answer;
    if (!answer.fromJson(response.content())) {
        Logger::error(QString(), QStringLiteral("Application update response parse error: %1").arg(response.content()));
        return CheckFailed;
    }
    Logger::info(QString(), QStringLiteral("Application server version: %1 [%2]").arg(answer.version(), answer.url()));
    m_newestVersion = answer.version();
    m_installerUrl = answer.url();
    if (m_newestVersion == QLatin1String(ApplicationVersion)) {
        Logger::info(QString(), QStringLiteral("Application is up-to-date"));
        return UpToDate;
    }
    Logger::info(QString(), QStringLiteral("Application update available"));
    return UpdateAvailable;
}

void ApplicationUpdate::onUpdateApplicationRequest()
{
    if (m_status != UpdateAvailable && m_status != DownloadFailed && m_status != InstallerStarted)
        return;
    if (m_newestVersion.isEmpty() || m_installerUrl.isEmpty())
        return;
    // A fresh home has no download folder yet; without it the file could not be opened.
    QDir().mkpath(m_downloadDirectory);
    Logger::info(QString(), QStringLiteral("Downloading application installer to: %1").arg(m_downloadDirectory));
    // Downloading comes first: a file that cannot be opened fails within addDownload(), and its
    // DownloadFailed must be the last word.
    setStatus(Downloading);
    m_downloadManager->addDownload(new Download::InstallerFile(m_installerUrl, m_downloadDirectory));
}

void ApplicationUpdate::onDownloadProgressChanged(Download::DownloadFile* downloadFile, double percentageCompleted,
    double speedInBytesPerSecond)
{
    if (m_status == Downloading && dynamic_cast<Download::InstallerFile*>(downloadFile))
        emit downloadProgressChanged(percentageCompleted, speedInBytesPerSecond);
}

void ApplicationUpdate::onFileDownloaded(Download::DownloadFile* file)
{
    if (!dynamic_cast<Download::InstallerFile*>(file)) {
        delete file;
        return;
    }
    Logger::info(QString(), QStringLiteral("Installer downloaded"));
    const QFileInfo installer(file->path());
    if (!installer.exists() || !installer.isFile()) {
        Logger::error(QString(), QStringLiteral("Intaller file is invalid"));
        setStatus(DownloadFailed);
        delete file;
        return;
    }
    Logger::debug(QString(), QStringLiteral("Opening installer: %1").arg(file->path()));
    setStatus(InstallerStarted);
    if (!m_installerStarter(file->path()))
        Logger::error(QString(), QStringLiteral("Unable to start installer: %1").arg(file->path()));
    delete file;
}

void ApplicationUpdate::onFileDownloadFailed(Download::DownloadFile* file)
{
    if (dynamic_cast<Download::InstallerFile*>(file))
        setStatus(DownloadFailed);
    delete file;
}

bool ApplicationUpdate::startInstaller(const QString& installerPath)
{
    // A download is written without the execute bits; the installer needs them to run at all.
    QFile installer(installerPath);
    installer.setPermissions(installer.permissions() | QFileDevice::ExeOwner | QFileDevice::ExeUser);
    const QStringList command = QProcess::splitCommand(QLatin1Char('"') + installerPath + QLatin1Char('"'));
    if (command.isEmpty())
        return false;
    return QProcess::startDetached(command.first(), command.mid(1));
}

} // namespace Velmora::Update
