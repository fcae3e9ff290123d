#pragma once

#include "communicationweb/TarnWebHandler.h"
#include "download/DownloadHandler.h"

#include <QString>
#include <QUrl>

namespace Download {
class DownloadFile;
class DownloadManager;
}

namespace Velmora::Ads {

// Fetches the back-end's advertisement once a program start and decides whether to show it. A
// new picture is shown at the first three starts; the same picture then waits 3, 6, 12 ... starts
// between showings. The back-off lives in the settings and is keyed by the picture's MD5.
class AdsManager : public CommunicationWeb::TarnWebHandler, public Download::DownloadHandler
{
    Q_OBJECT

public:
    static constexpr int RetransmissionInterval = 60000;
    static constexpr int FirstCheckDelay = 5000;

    AdsManager(REST::RestClient* restClient, CommunicationWeb::TarnAuthorizationService* authorizationService,
        Download::DownloadManager* downloadManager, QObject* parent = nullptr, int firstCheckDelay = FirstCheckDelay);

    void onFileDownloaded(Download::DownloadFile* file) override;
    void onFileDownloadFailed(Download::DownloadFile* file) override;

    QString adsDirectory() const { return m_adsDirectory; }

signals:
    void newAdAvailable(QString filePath, QUrl url);

public slots:
    bool onRestResponseReceived(REST::RestResponse* response) override;

private slots:
    void checkAvailability();
    QString LoadLastAdvSig();
    void SaveLastAdvSig(QString signature);
    void LoadAdvCounters(int* counter, int* treshold);
    void SaveAdvCounters(int counter, int treshold);

private:
    void removeOldFiles();
    void readAnswer(const REST::RestResponse& response);
    // True when this start is one that shows the picture; moves the back-off on either way.
    bool advanceBackOff(const QString& signature);

    QString m_adsDirectory;
    Download::DownloadManager* m_downloadManager;
    QUrl m_adLink;
};

} // namespace Velmora::Ads
