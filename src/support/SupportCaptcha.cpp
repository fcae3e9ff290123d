#include "support/SupportCaptcha.h"

#include "download/DownloadFile.h"
#include "download/DownloadManager.h"
#include "logger/Logger.h"

#include <QDir>
#include <QStandardPaths>

namespace Velmora::Support {

SupportCaptcha::SupportCaptcha(Download::DownloadManager* downloadManager, const QUrl& backendBaseUrl, QObject* parent)
    : QObject(parent)
    , m_downloadManager(downloadManager)
    , m_directory(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/support"))
    , m_url(QString::fromUtf8(backendBaseUrl.resolved(QUrl(QStringLiteral("captcha.php"))).toEncoded()))
{
    m_downloadManager->addHandler(this);
}

void SupportCaptcha::requestCaptchaImage()
{
    QDir directory(m_directory);
    if (!directory.exists())
        directory.mkpath(QStringLiteral("."));
    m_downloadManager->addDownload(new Download::CaptchaFile(m_url, m_directory));
}

void SupportCaptcha::onFileDownloaded(Download::DownloadFile* file)
{
    if (dynamic_cast<Download::CaptchaFile*>(file)) {
        Logger::info(QString(), QStringLiteral("Captcha downloaded: %1").arg(file->path()));
        emit captchaAvailable(file->path());
    }
    delete file;
}

void SupportCaptcha::onFileDownloadFailed(Download::DownloadFile* file)
{
    if (dynamic_cast<Download::CaptchaFile*>(file))
        Logger::warning(QString(), QStringLiteral("Failed to download captcha: %1").arg(file->path()));
    delete file;
}

} // namespace Velmora::Support
