#pragma once

#include "rest/RestRequest.h"

#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QSslError>
#include <QStringList>
#include <QUrl>

class QHttpMultiPart;
class QNetworkReply;
class QTimer;

namespace REST {

class Authenticator;
class RestResponse;

// A small HTTP client for the web back-end: turns a RestRequest into a network request against the
// base address, guards each reply with a time limit, and hands the RestResponse to the caller or,
// by slot name, to a requester.
class RestClient : public QObject
{
    Q_OBJECT

public:
    RestClient(const QUrl& baseUrl, QNetworkAccessManager* manager = nullptr, QObject* parent = nullptr);
    ~RestClient() override;

    // Blocks in a local event loop (user input excluded). The caller owns the result; null when no
    // request could be sent.
    virtual RestResponse* sendSync(RestRequest& request);
    // `callbackSlot` as SLOT() writes it; the slot takes one REST::RestResponse* and owns it.
    virtual void sendAsync(RestRequest& request, QObject* requester, const char* callbackSlot);

    QUrl baseUrl() const { return m_baseUrl; }
    Authenticator* authenticator() const { return m_authenticator; }
    void setAuthenticator(Authenticator* authenticator);
    int timeout() const { return m_timeout; }
    void setTimeout(int msec) { m_timeout = msec; }

    // The bare method name of a SLOT() text.
    static QString slotName(const QString& callbackSlot);

private slots:
    void onReplyReceivedAsync();
    void onReplyTimeout();
    void onSSLErrors(QNetworkReply* const reply, QList<QSslError> errors);

private:
    QNetworkReply* send(RestRequest& request);
    QUrl urlFor(const RestRequest& request) const;
    QHttpMultiPart* multiPartFor(const RestRequest& request) const;
    static QTimer* timerOf(QNetworkReply* reply);

    QUrl m_baseUrl;
    QNetworkAccessManager* m_networkManager;
    Authenticator* m_authenticator = nullptr;
    QStringList m_acceptedContentTypes;
    int m_timeout = 3000;
};

} // namespace REST
