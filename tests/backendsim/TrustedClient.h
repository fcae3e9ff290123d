#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QStringList>
#include <QUrl>

class QHttpMultiPart;

// What came back for one request.
struct HttpResult {
    int status = 0; // 0: no HTTP answer
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray body;
    QByteArray contentType;
    QByteArray location;
    qint64 elapsedMs = 0;
    QStringList sslErrors;

    QJsonDocument json() const { return QJsonDocument::fromJson(body); }
};

// An HTTPS client that trusts only the given certificate authority. SSL errors are collected and
// never ignored, so a certificate problem fails the request as it would in the program.
class TrustedClient
{
public:
    explicit TrustedClient(const QString& caCertificatePath);

    HttpResult get(const QUrl& url, int timeoutMs = 5000);
    HttpResult post(const QUrl& url, const QByteArray& body, const QByteArray& contentType = "application/json",
                    int timeoutMs = 5000);
    HttpResult put(const QUrl& url, const QByteArray& body);
    HttpResult remove(const QUrl& url);
    // Takes the multi-part object.
    HttpResult postMultipart(const QUrl& url, QHttpMultiPart* parts, int timeoutMs = 5000);

private:
    QNetworkRequest request(const QUrl& url) const;
    HttpResult finish(QNetworkReply* reply, int timeoutMs);

    QNetworkAccessManager m_manager;
    QSslConfiguration m_ssl;
};
