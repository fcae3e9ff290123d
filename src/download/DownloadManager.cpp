#include "download/DownloadManager.h"

#include "download/DownloadFile.h"
#include "download/DownloadHandler.h"
#include "logger/Logger.h"
#include "rest/TrustedAuthority.h"

#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

namespace Download {

namespace Logger = Velmora::Logger;

DownloadManager::DownloadManager(QNetworkAccessManager* manager, QObject* parent)
    : QObject(parent)
    , m_networkManager(manager ? manager : new QNetworkAccessManager(this))
{
}

DownloadManager::~DownloadManager()
{
    if (m_currentReply) {
        m_currentReply->disconnect(this);
        m_currentReply->abort();
        m_currentReply->deleteLater();
    }
    if (m_output.isOpen())
        m_output.close();
    delete m_currentFile;
    qDeleteAll(m_queue);
}

void DownloadManager::addHandler(DownloadHandler* handler)
{
    m_handlers.append(handler);
}

void DownloadManager::addDownload(DownloadFile* file)
{
    m_queue.append(file);
    ++m_totalCount;
    if (!m_downloading)
        startNextDownload();
}

void DownloadManager::scheduleNext()
{
    // Never from within the signal of the reply that just ended.
    QTimer::singleShot(0, this, &DownloadManager::startNextDownload);
}

void DownloadManager::startNextDownload()
{
    if (m_queue.isEmpty()) {
        Logger::info(QString(), QStringLiteral("%1/%2 files downloaded successfully\n").arg(m_succeededCount).arg(m_totalCount));
        m_downloading = false;
        emit finished();
        return;
    }
    m_downloading = true;
    m_currentFile = m_queue.takeFirst();
    if (!m_currentFile) {
        Logger::error(QString(), QStringLiteral("Download failed - unallocated download pointer"));
        scheduleNext();
        return;
    }

    QString savePath = m_currentFile->path() + QLatin1Char('/')
        + QFileInfo(m_currentFile->url().path(QUrl::FullyDecoded)).fileName();
    Logger::debug(QString(), QStringLiteral("Download path: %1").arg(savePath));
    if (savePath.isEmpty())
        savePath = QStringLiteral("download");
    m_currentFile->setPath(savePath);

    m_output.setFileName(savePath);
    if (!m_output.open(QIODevice::WriteOnly)) {
        Logger::error(QString(), QStringLiteral("Problem opening save file '%1' for download '%2': %3\n")
                                     .arg(savePath, m_currentFile->url().toString(), m_output.errorString()));
        tellHandlers(false);
        delete m_currentFile;
        m_currentFile = nullptr;
        scheduleNext();
        return;
    }

    // A request takes the TLS settings of the moment it is made.
    REST::trustPendingAuthorities();
    QNetworkRequest request(m_currentFile->url());
    // Servers must name the final address; a redirect is reported, whatever the shared manager's
    // own policy says.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    m_currentReply = m_networkManager->get(request);
    connect(m_currentReply, &QNetworkReply::downloadProgress, this, &DownloadManager::downloadProgress);
    connect(m_currentReply, &QNetworkReply::finished, this, &DownloadManager::downloadFinished);
    connect(m_currentReply, &QNetworkReply::readyRead, this, &DownloadManager::downloadReadyRead);
    Logger::info(QString(), QStringLiteral("Downloading %1...\n").arg(m_currentFile->url().toString()));
    m_downloadTime.start();
}

void DownloadManager::downloadReadyRead()
{
    m_output.write(m_currentReply->readAll());
    m_output.flush();
}

void DownloadManager::downloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    const double percent = 100.0 * double(bytesReceived) / double(bytesTotal);
    const double seconds = double(qMax<qint64>(m_downloadTime.elapsed(), 1)) / 1000.0;
    emit downloadProgressChanged(m_currentFile, percent, double(bytesReceived) / seconds);
}

bool DownloadManager::isRedirect(int status) const
{
    return status == 301 || status == 302 || status == 303 || status == 305 || status == 307 || status == 308;
}

void DownloadManager::reportRedirect(int status)
{
    Logger::warning(QString(), QStringLiteral("Request %1 was redirected with code %2").arg(m_currentFile->url().toString()).arg(status));
    const QVariant target = m_currentReply->attribute(QNetworkRequest::RedirectionTargetAttribute);
    if (target.isValid()) {
        QUrl url = target.toUrl();
        if (url.isRelative())
            url = m_currentFile->url().resolved(url);
        Logger::warning(QString(), QStringLiteral("Redirected to: ") + url.toString() + QLatin1Char('\n'));
    }
}

void DownloadManager::downloadFinished()
{
    // What is left after the last readyRead.
    if (m_currentReply->bytesAvailable() > 0)
        m_output.write(m_currentReply->readAll());
    m_output.close();
    const int status = m_currentReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (m_currentReply->error() != QNetworkReply::NoError) {
        Logger::error(QString(), QStringLiteral("Failed downloading file from url: %1 to path %2. %3")
                                     .arg(m_currentFile->url().toString(), m_currentFile->path(), m_currentReply->errorString()));
        m_output.remove();
        tellHandlers(false);
    } else if (isRedirect(status)) {
        reportRedirect(status);
        m_output.remove();
        tellHandlers(false);
    } else {
        Logger::info(QString(), QStringLiteral("Download succeeded [%1]").arg(status));
        ++m_succeededCount;
        tellHandlers(true);
    }

    delete m_currentFile;
    m_currentFile = nullptr;
    m_currentReply->close();
    m_currentReply->deleteLater();
    m_currentReply = nullptr;
    scheduleNext();
}

void DownloadManager::tellHandlers(bool succeeded)
{
    if (succeeded)
        Logger::debug(QString(), QStringLiteral("File download completed"));
    else
        Logger::warning(QString(), QStringLiteral("File download failed"));
    for (DownloadHandler* handler : qAsConst(m_handlers)) {
        if (succeeded)
            handler->onFileDownloaded(m_currentFile->clone());
        else
            handler->onFileDownloadFailed(m_currentFile->clone());
    }
}

} // namespace Download
