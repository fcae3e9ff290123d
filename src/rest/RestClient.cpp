#include "rest/RestClient.h"

#include "logger/Logger.h"
#include "rest/Authenticator.h"
#include "rest/RestResponse.h"
#include "rest/TrustedAuthority.h"

#include <QEventLoop>
#include <QFile>
#include <QHttpMultiPart>
#include <QMetaEnum>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrlQuery>

namespace REST {

namespace Logger = Velmora::Logger;

RestClient::RestClient(const QUrl& baseUrl, QNetworkAccessManager* manager, QObject* parent)
    : QObject(parent)
    , m_baseUrl(baseUrl)
    , m_networkManager(manager ? manager : new QNetworkAccessManager(this))
    , m_acceptedContentTypes({QStringLiteral("application/json"), QStringLiteral("text/json")})
{
    qRegisterMetaType<RestResponse*>("REST::RestResponse*");
    connect(m_networkManager, &QNetworkAccessManager::sslErrors, this, &RestClient::onSSLErrors);
}

RestClient::~RestClient()
{
    delete m_authenticator;
}

void RestClient::setAuthenticator(Authenticator* authenticator)
{
    if (authenticator == m_authenticator)
        return;
    delete m_authenticator;
    m_authenticator = authenticator;
}

QString RestClient::slotName(const QString& callbackSlot)
{
    return callbackSlot.mid(1, callbackSlot.indexOf(QLatin1Char('(')) - 1);
}

QUrl RestClient::urlFor(const RestRequest& request) const
{
    QString path = request.path();
    if (path.startsWith(QLatin1Char('/')))
        path.remove(0, 1);
    for (const RestParameter& parameter : request.parameters()) {
        if (parameter.kind == PathParameter)
            path.replace(QStringLiteral("{%1}").arg(parameter.name), parameter.value.toString(), Qt::CaseSensitive);
    }
    QUrl url = m_baseUrl.resolved(QUrl(path));
    QUrlQuery query(url);
    for (const RestParameter& parameter : request.parameters()) {
        if (parameter.kind == QueryParameter)
            query.addQueryItem(parameter.name, parameter.value.toString());
    }
    url.setQuery(query);
    return url;
}

QHttpMultiPart* RestClient::multiPartFor(const RestRequest& request) const
{
    auto* multiPart = new QHttpMultiPart(QHttpMultiPart::FormDataType);
    for (const RestFileParameter& file : request.fileParameters()) {
        auto* device = new QFile(file.path, multiPart);
        if (!device->open(QIODevice::ReadOnly)) {
            Logger::warning(QString(), QStringLiteral("Specified REST request file is not available: %1").arg(file.path));
            delete device;
            continue;
        }
        QHttpPart part;
        part.setHeader(QNetworkRequest::ContentTypeHeader, file.contentType);
        part.setHeader(QNetworkRequest::ContentDispositionHeader,
            QStringLiteral("form-data; name=\"%1\"; filename=\"%1\"").arg(file.name));
        part.setBodyDevice(device);
        multiPart->append(part);
    }
    for (const RestParameter& parameter : request.parameters()) {
        if (parameter.kind != BodyParameter)
            continue;
        QHttpPart part;
        part.setHeader(QNetworkRequest::ContentTypeHeader, parameter.name);
        part.setHeader(QNetworkRequest::ContentDispositionHeader, QStringLiteral("form-data; name=\"%1\"").arg(parameter.name));
        part.setBody(parameter.value.toByteArray());
        multiPart->append(part);
    }
    return multiPart;
}

QNetworkReply* RestClient::send(RestRequest& request)
{
    Logger::debug(QString(), QStringLiteral("Processing %1").arg(request.description()));
    // Stamps the caller's own request: a request sent again carries every earlier stamp as well.
    if (m_authenticator)
        m_authenticator->authenticate(request);

    // A request takes the TLS settings of the moment it is made.
    trustPendingAuthorities();
    const QUrl url = urlFor(request);
    QNetworkRequest networkRequest(url);
    bool acceptGiven = false;
    for (const RestParameter& parameter : request.parameters()) {
        if (parameter.kind != HeaderParameter)
            continue;
        networkRequest.setRawHeader(parameter.name.toUtf8(), parameter.value.toString().toUtf8());
        acceptGiven = acceptGiven || parameter.name.compare(QLatin1String("accept"), Qt::CaseInsensitive) == 0;
    }
    if (!acceptGiven)
        networkRequest.setRawHeader("Accept", m_acceptedContentTypes.join(QLatin1Char(',')).toUtf8());

    QByteArray body;
    QHttpMultiPart* multiPart = nullptr;
    if (request.fileParameters().isEmpty()) {
        for (const RestParameter& parameter : request.parameters()) {
            if (parameter.kind != BodyParameter)
                continue;
            body.append(parameter.value.toByteArray());
            networkRequest.setHeader(QNetworkRequest::ContentTypeHeader, parameter.name);
        }
    } else {
        multiPart = multiPartFor(request);
        networkRequest.setHeader(QNetworkRequest::ContentTypeHeader,
            QStringLiteral("multipart/form-data; boundary=%1").arg(QString::fromLatin1(multiPart->boundary())));
    }

    Logger::info(QString(), QStringLiteral("Sending new REST request to [%1]").arg(url.toString()));
    QNetworkReply* reply = nullptr;
    switch (request.type()) {
    case GET: reply = m_networkManager->get(networkRequest); break;
    case POST:
        reply = multiPart ? m_networkManager->post(networkRequest, multiPart) : m_networkManager->post(networkRequest, body);
        break;
    case PUT:
        reply = multiPart ? m_networkManager->put(networkRequest, multiPart) : m_networkManager->put(networkRequest, body);
        break;
    case DELETE: reply = m_networkManager->deleteResource(networkRequest); break;
    case HEAD: reply = m_networkManager->head(networkRequest); break;
    default:
        Logger::error(QString(), QStringLiteral("Unimplemented REST request type: %1").arg(request.type()));
        break;
    }
    if (multiPart) {
        if (reply)
            multiPart->setParent(reply);
        else
            delete multiPart;
    }

    if (reply && m_timeout != 0) {
        auto* timer = new QTimer(reply);
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, &RestClient::onReplyTimeout);
        timer->start(m_timeout * (request.fileParameters().size() + 1));
    }
    return reply;
}

QTimer* RestClient::timerOf(QNetworkReply* reply)
{
    return reply->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
}

void RestClient::sendAsync(RestRequest& request, QObject* requester, const char* callbackSlot)
{
    QNetworkReply* reply = send(request);
    const QString slotText = QString::fromLatin1(callbackSlot);
    if (!reply) {
        Logger::info(QString(), QStringLiteral("Authorization started... A"));
        Logger::info(QString(), QStringLiteral("Authorization started... A_1 %1").arg(slotText));
        Logger::info(QString(), QStringLiteral("Authorization started... A_2 %1").arg(slotName(slotText)));
        RestResponse* none = nullptr;
        QMetaObject::invokeMethod(requester, slotName(slotText).toLatin1().constData(), Qt::AutoConnection,
            QGenericArgument("REST::RestResponse*", &none));
        Logger::info(QString(), QStringLiteral("Authorization started... B"));
        return;
    }
    reply->setProperty("requester", QVariant::fromValue(static_cast<void*>(requester)));
    reply->setProperty("callbackSlot", slotText);
    connect(reply, &QNetworkReply::finished, this, &RestClient::onReplyReceivedAsync);
    new RestResponse(reply, request, reply);
}

namespace {
QString errorName(QNetworkReply::NetworkError error)
{
    const QMetaObject& meta = QNetworkReply::staticMetaObject;
    return QString::fromLatin1(meta.enumerator(meta.indexOfEnumerator("NetworkError")).valueToKey(error));
}
} // namespace

void RestClient::onReplyReceivedAsync()
{
    auto* reply = qobject_cast<QNetworkReply*>(sender());
    if (!reply)
        return;
    if (QTimer* timer = timerOf(reply))
        timer->stop();

    const QString received = QStringLiteral("New REST reply received from %1 [error %2 - %3]")
                                 .arg(reply->url().toString(), errorName(reply->error()), reply->errorString());
    Logger::debug(QString(), received);
    if (reply->error() != QNetworkReply::NoError)
        Logger::error(QString(), received);

    auto* response = reply->findChild<RestResponse*>(QStringLiteral("RestResponse"), Qt::FindDirectChildrenOnly);
    response->setParent(nullptr);
    response->fillFrom(reply);
    Logger::info(QString(), response->toString());

    auto* requester = static_cast<QObject*>(reply->property("requester").value<void*>());
    const QString slot = slotName(reply->property("callbackSlot").toString());
    reply->close();
    reply->deleteLater();
    QMetaObject::invokeMethod(requester, slot.toLatin1().constData(), Qt::AutoConnection,
        QGenericArgument("REST::RestResponse*", &response));
}

void RestClient::onReplyTimeout()
{
    auto* timer = qobject_cast<QTimer*>(sender());
    auto* reply = timer ? qobject_cast<QNetworkReply*>(timer->parent()) : nullptr;
    Logger::warning(QString(), QStringLiteral("REST reply timeout"));
    if (reply)
        reply->abort();
}

RestResponse* RestClient::sendSync(RestRequest& request)
{
    QNetworkReply* reply = send(request);
    if (!reply)
        return nullptr;
    Logger::debug(QString(), QStringLiteral("Waiting for response..."));
    QTimer* timer = timerOf(reply);

    QEventLoop loop;
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (timer)
        connect(timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    if (!reply->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);

    Logger::debug(QString(), QStringLiteral("Response received"));
    if (timer)
        timer->stop();
    auto* response = new RestResponse(reply, request);
    Logger::info(QString(), response->toString());
    reply->close();
    reply->deleteLater();
    return response;
}

void RestClient::onSSLErrors(QNetworkReply* const reply, QList<QSslError> errors)
{
    Q_UNUSED(reply)
    QStringList texts;
    for (const QSslError& error : errors)
        texts.append(error.errorString());
    Logger::error(QString(), QStringLiteral("SSL errors reported: %1").arg(texts.join(QStringLiteral(", "))));
}

} // namespace REST
