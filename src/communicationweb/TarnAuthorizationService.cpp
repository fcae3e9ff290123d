#include "communicationweb/TarnAuthorizationService.h"

#include "communicationweb/AuthorizationRequest.h"
#include "communicationweb/AuthorizationResponse.h"
#include "communicationweb/SessionResponse.h"
#include "communicationweb/TarnAuthenticator.h"
#include "logger/Logger.h"
#include "rest/RestClient.h"
#include "rest/RestResponse.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>

#include <memory>

namespace Velmora::CommunicationWeb {

namespace {
const QString SessionPath = QStringLiteral("session");
}

TarnAuthorizationService::TarnAuthorizationService(REST::RestClient* restClient, QObject* parent)
    : QObject(parent)
    , m_restClient(restClient)
{
}

bool TarnAuthorizationService::isAuthorized() const
{
    return m_authorized;
}

bool TarnAuthorizationService::isAuthorizationInProgress() const
{
    return m_authorizationInProgress;
}

QString TarnAuthorizationService::sharedKey()
{
    return QStringLiteral("Qx7mTzR4kP");
}

QString TarnAuthorizationService::hashOf(const QString& sessionId, const QString& key)
{
    const QByteArray mac = QMessageAuthenticationCode::hash(sessionId.toUtf8(), key.toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(mac.toHex());
}

void TarnAuthorizationService::authorizeAccess()
{
    Logger::info(QString(), QStringLiteral("Received authorization request"));
    if (m_authorizationInProgress) {
        Logger::info(QString(), QStringLiteral("Authorization already in progress"));
        return;
    }
    m_authorized = false;
    m_authorizationInProgress = true;
    // The handshake itself runs without a session.
    m_restClient->setAuthenticator(nullptr);
    Logger::info(QString(), QStringLiteral("Authorization started..."));
    REST::RestRequest request(REST::GET, SessionPath);
    m_restClient->sendAsync(request, this, "1onSessionIdResponse(REST::RestResponse*)");
}

void TarnAuthorizationService::fail(const QString& message, bool signalFirst)
{
    Logger::error(QString(), message);
    // The session step clears the flag before it tells the handlers, the verdict step after.
    if (signalFirst)
        emit authorizeFailed();
    m_authorizationInProgress = false;
    if (!signalFirst)
        emit authorizeFailed();
}

void TarnAuthorizationService::onSessionIdResponse(REST::RestResponse* responseRaw)
{
    std::unique_ptr<REST::RestResponse> response(responseRaw);
    if (!response || !response->isSuccessful()) {
        fail(QStringLiteral("Unable to get session ID from server"), false);
        return;
    }
    SessionResponse session;
    if (!session.fromJson(response->content())) {
        fail(QStringLiteral("Unable to parse Session ID response"), false);
        return;
    }
    Logger::debug(QString(), QStringLiteral("Session ID response received"));
    m_sessionId = session.session();

    AuthorizationRequest proof;
    proof.setSession(m_sessionId);
    proof.setHash(hashOf(m_sessionId));
    REST::RestRequest request(REST::POST, SessionPath);
    request.addJsonBody(proof.toJson());
    m_restClient->sendAsync(request, this, "1onAuthorizationResponse(REST::RestResponse*)");
}

void TarnAuthorizationService::onAuthorizationResponse(REST::RestResponse* responseRaw)
{
    std::unique_ptr<REST::RestResponse> response(responseRaw);
    if (!response || !response->isSuccessful()) {
        fail(QStringLiteral("Unable to get Authorization from server"), true);
        return;
    }
    AuthorizationResponse verdict;
    if (!verdict.fromJson(response->content())) {
        fail(QStringLiteral("Unable to parse Authorization response"), true);
        return;
    }
    m_authorized = verdict.authenticated();
    Logger::info(QString(), QStringLiteral("Server authorization response received, status: %1").arg(m_authorized ? 1 : 0));
    // A refusal emits nothing: the handlers' queues wait for their next tick, which asks again.
    if (m_authorized) {
        m_restClient->setAuthenticator(new TarnAuthenticator(m_sessionId));
        emit authorized();
    }
    m_authorizationInProgress = false;
}

} // namespace Velmora::CommunicationWeb
