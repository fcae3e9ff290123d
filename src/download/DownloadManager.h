#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QObject>

class QNetworkAccessManager;
class QNetworkReply;

namespace Download {

class DownloadFile;
class DownloadHandler;

// Fetches files to disk one at a time, in the order asked, writing each chunk as it arrives.
// Redirects are reported and not followed. Every registered handler is told of every file that
// ends, each with a copy of its own.
class DownloadManager : public QObject
{
    Q_OBJECT

public:
    explicit DownloadManager(QNetworkAccessManager* manager = nullptr, QObject* parent = nullptr);
    ~DownloadManager() override;

    void addHandler(DownloadHandler* handler);
    // Takes ownership.
    virtual void addDownload(DownloadFile* file);

    bool isDownloading() const { return m_downloading; }
    int succeededCount() const { return m_succeededCount; }
    int totalCount() const { return m_totalCount; }

signals:
    void finished();
    void downloadProgressChanged(Download::DownloadFile* downloadFile, double percentCompleted, double downloadSpeed);

private slots:
    void startNextDownload();
    void downloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    void downloadFinished();
    void downloadReadyRead();

private:
    bool isRedirect(int status) const;
    void reportRedirect(int status);
    void tellHandlers(bool succeeded);
    void scheduleNext();

    QNetworkAccessManager* m_networkManager;
    QList<DownloadHandler*> m_handlers;
    QList<DownloadFile*> m_queue;
    QNetworkReply* m_currentReply = nullptr;
    DownloadFile* m_currentFile = nullptr;
    QFile m_output;
    QElapsedTimer m_downloadTime;
    bool m_downloading = false;
    int m_succeededCount = 0;
    int m_totalCount = 0;
};

} // namespace Download
