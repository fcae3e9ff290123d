#include "TrustedClient.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QHttpMultiPart>
#include <QSslCertificate>
#include <QTimer>

TrustedClient::TrustedClient(const QString& caCertificatePath)
    : m_ssl(QSslConfiguration::defaultConfiguration())
{
    m_ssl.setCaCertificates(caCertificatePath.isEmpty() ? QList<QSslCertificate>()
                                                        : QSslCertificate::fromPath(caCertificatePath));
}

QNetworkRequest TrustedClient::request(const QUrl& url) const
{
    QNetworkRequest request(url);
    request.setSslConfiguration(m_ssl);
    return request;
}

HttpResult TrustedClient::get(const QUrl& url, int timeoutMs)
{
    return finish(m_manager.get(request(url)), timeoutMs);
}

HttpResult TrustedClient::post(const QUrl& url, const QByteArray& body, const QByteArray& contentType, int timeoutMs)
{
    QNetworkRequest post = request(url);
    post.setHeader(QNetworkRequest::ContentTypeHeader, contentType);
    return finish(m_manager.post(post, body), timeoutMs);
}

HttpResult TrustedClient::put(const QUrl& url, const QByteArray& body)
{
    QNetworkRequest put = request(url);
    put.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    return finish(m_manager.put(put, body), 5000);
}

HttpResult TrustedClient::remove(const QUrl& url)
{
    return finish(m_manager.deleteResource(request(url)), 5000);
}

HttpResult TrustedClient::postMultipart(const QUrl& url, QHttpMultiPart* parts, int timeoutMs)
{
    QNetworkRequest post = request(url);
    post.setHeader(QNetworkRequest::ContentTypeHeader,
                   QByteArray("multipart/form-data; boundary=") + parts->boundary());
    QNetworkReply* reply = m_manager.post(post, parts);
    parts->setParent(reply);
    return finish(reply, timeoutMs);
}

HttpResult TrustedClient::finish(QNetworkReply* reply, int timeoutMs)
{
    HttpResult result;
    QObject::connect(reply, &QNetworkReply::sslErrors, reply, [&result](const QList<QSslError>& errors) {
        for (const QSslError& error : errors)
            result.sslErrors.append(error.errorString());
    });
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer limit;
    limit.setSingleShot(true);
    limit.setTimerType(Qt::PreciseTimer);
    QObject::connect(&limit, &QTimer::timeout, reply, &QNetworkReply::abort);
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    limit.start(timeoutMs);
    if (!reply->isFinished())
        loop.exec();
    result.elapsedMs = clock.elapsed();
    result.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    result.error = reply->error();
    if (reply->isOpen())
        result.body = reply->readAll();
    result.contentType = reply->rawHeader("Content-Type");
    result.location = reply->rawHeader("Location");
    reply->deleteLater();
    return result;
}
