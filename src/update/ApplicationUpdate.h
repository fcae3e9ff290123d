#pragma once

#include "communicationweb/TarnWebHandler.h"
#include "download/DownloadHandler.h"
#include "update/UpdateInterface.h"

#include <QMetaType>
#include <QString>

#include <functional>

namespace Download {
class DownloadFile;
class DownloadManager;
}

namespace Velmora::Update {

enum ApplicationUpdateStatus {
    UpdateAvailable = 0,
    UpToDate = 1,
    CheckFailed = 2,
    Unknown = 3,
    Downloading = 4,
    DownloadFailed = 5,
    InstallerStarted = 6,
    Checking = 7
};

// Asks the back-end for the newest version of the program and, when the user wants it, fetches
// the installer to the download folder and starts it. Any version text other than our own counts
// as an update: the server decides what users should run.
class ApplicationUpdate : public CommunicationWeb::TarnWebHandler, public Download::DownloadHandler, public UpdateInterface
{
    Q_OBJECT

public:
    static constexpr int RetransmissionInterval = 60000;
    static const char* const ApplicationVersion;

    // Starts the downloaded installer; true when it runs.
    using InstallerStarter = std::function<bool(const QString& installerPath)>;

    ApplicationUpdate(REST::RestClient* restClient, CommunicationWeb::TarnAuthorizationService* authorizationService,
        Download::DownloadManager* downloadManager, QObject* parent = nullptr);

    void onFileDownloaded(Download::DownloadFile* file) override;
    void onFileDownloadFailed(Download::DownloadFile* file) override;
    void checkForUpdates() override;

    ApplicationUpdateStatus status() const { return m_status; }
    QString newestVersion() const { return m_newestVersion; }
    QString installerUrl() const { return m_installerUrl; }

    // The folder the installer goes to; the user's download folder unless set.
    QString downloadDirectory() const { return m_downloadDirectory; }
    void setDownloadDirectory(const QString& directory) { m_downloadDirectory = directory; }
    // Replaces the way the installer is started, so that a test can see the start without
    // running anything.
    void setInstallerStarter(const InstallerStarter& starter) { m_installerStarter = starter; }
    // The program's own way: the file is made executable and started on its own, so that it
    // outlives this process when it closes us.
    static bool startInstaller(const QString& installerPath);

signals:
    void applicationUpdateStatusChanged(Velmora::Update::ApplicationUpdateStatus status, QString newestApplicationVersion);
    void downloadProgressChanged(double percentageCompleted, double speedInBytesPerSecond);

public slots:
    void onUpdateApplicationRequest();
    bool onRestResponseReceived(REST::RestResponse* response) override;

private slots:
    void onDownloadProgressChanged(Download::DownloadFile* downloadFile, double percentageCompleted,
        double speedInBytesPerSecond);

private:
    void setStatus(ApplicationUpdateStatus status);
    ApplicationUpdateStatus readAnswer(const REST::RestResponse& response);

    Download::DownloadManager* m_downloadManager;
    ApplicationUpdateStatus m_status = Unknown;
    QString m_newestVersion;
    QString m_installerUrl;
    QString m_downloadDirectory;
    InstallerStarter m_installerStarter;
};

} // namespace Velmora::Update

Q_DECLARE_METATYPE(Velmora::Update::ApplicationUpdateStatus)
