#include "rest/RestResponse.h"

namespace REST {

RestResponse::RestResponse(QNetworkReply* reply, const RestRequest& request, QObject* parent)
    : QObject(parent)
    , m_request(request)
{
    setObjectName(QStringLiteral("RestResponse"));
    fillFrom(reply);
}

void RestResponse::fillFrom(QNetworkReply* reply)
{
    m_url = reply->url();
    m_contentType = QString::fromLatin1(reply->rawHeader("Content-Type"));
    bool ok = false;
    const long length = reply->rawHeader("Content-Length").toLong(&ok, 10);
    m_contentLength = ok ? length : 0;
    // One character a byte, up to the first zero byte: the back-end answers in ASCII.
    const QByteArray body = reply->isOpen() ? reply->readAll() : QByteArray();
    const int zero = body.indexOf('\0');
    m_content = QString::fromLatin1(zero < 0 ? body : body.left(zero));
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    m_status = status.isValid() ? status.toInt() : 0;
    m_error = reply->error();
    m_errorString = reply->errorString();
}

bool RestResponse::isSuccessful() const
{
    return m_error == QNetworkReply::NoError && m_status >= 200 && m_status <= 299;
}

QString RestResponse::toString() const
{
    return QStringLiteral("Reply [%1]:\n\tError: %2\n\tStatus: %3\n\tContent type: %4\n\tContent:\n%5")
        .arg(m_url.toString(), m_errorString, QString::number(m_status), m_contentType, m_content);
}

} // namespace REST
