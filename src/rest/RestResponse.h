#pragma once

#include "rest/RestRequest.h"

#include <QNetworkReply>
#include <QObject>
#include <QUrl>

namespace REST {

// The outcome of one web call as the requester sees it. Whoever receives one owns it.
class RestResponse : public QObject
{
    Q_OBJECT

public:
    RestResponse(QNetworkReply* reply, const RestRequest& request, QObject* parent = nullptr);

    // Reads everything the reply holds now; the reply may have been empty at construction.
    void fillFrom(QNetworkReply* reply);

    QUrl url() const { return m_url; }
    QString contentType() const { return m_contentType; }
    long contentLength() const { return m_contentLength; }
    QString content() const { return m_content; }
    int status() const { return m_status; }
    QNetworkReply::NetworkError error() const { return m_error; }
    QString errorString() const { return m_errorString; }
    const RestRequest& request() const { return m_request; }

    bool isSuccessful() const;
    QString toString() const;

private:
    QUrl m_url;
    QString m_contentType;
    long m_contentLength = 0;
    QString m_content;
    int m_status = 0;
    QNetworkReply::NetworkError m_error = QNetworkReply::NoError;
    QString m_errorString;
    RestRequest m_request;
};

} // namespace REST

Q_DECLARE_METATYPE(REST::RestResponse*)
