#pragma once

#include "download/DownloadHandler.h"

#include <QObject>
#include <QString>
#include <QUrl>

namespace Download {
class DownloadManager;
}

namespace Velmora::Support {

// Fetches the captcha picture of the support form. The picture is good for one ticket, so the
// form asks for a fresh one after every verdict; a failed download leaves the last one in place.
class SupportCaptcha : public QObject, public Download::DownloadHandler
{
    Q_OBJECT

public:
    // `backendBaseUrl` is the back-end's base address; the picture is "captcha.php" under it.
    SupportCaptcha(Download::DownloadManager* downloadManager, const QUrl& backendBaseUrl, QObject* parent = nullptr);

    void onFileDownloaded(Download::DownloadFile* file) override;
    void onFileDownloadFailed(Download::DownloadFile* file) override;

    QString directory() const { return m_directory; }
    QString url() const { return m_url; }

public slots:
    void requestCaptchaImage();

signals:
    void captchaAvailable(QString filePath);

private:
    Download::DownloadManager* m_downloadManager;
    QString m_directory;
    QString m_url;
};

} // namespace Velmora::Support
