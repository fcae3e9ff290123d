#include "communicationweb/TarnWebHandler.h"

#include "communicationweb/TarnAuthorizationService.h"
#include "logger/Logger.h"
#include "rest/RestClient.h"
#include "rest/RestResponse.h"

namespace Velmora::CommunicationWeb {

TarnWebHandler::TarnWebHandler(REST::RestClient* restClient, TarnAuthorizationService* authorizationService, QObject* parent)
    : QObject(parent)
    , m_restClient(restClient)
    , m_authorizationService(authorizationService)
{
    connectService();
    m_retransmissionTimer.setInterval(DefaultRetransmissionInterval);
    connect(&m_retransmissionTimer, &QTimer::timeout, this, &TarnWebHandler::onRetransmissionTimerTimeout);
    m_retransmissionTimer.start();
}

TarnWebHandler::~TarnWebHandler()
{
    m_retransmissionTimer.stop();
    qDeleteAll(m_pendingRequests);
}

void TarnWebHandler::connectService()
{
    if (!m_authorizationService)
        return;
    connect(m_authorizationService, &TarnAuthorizationService::authorized, this, &TarnWebHandler::onAuthorizationGranted,
        Qt::UniqueConnection);
    connect(m_authorizationService, &TarnAuthorizationService::authorizeFailed, this, &TarnWebHandler::onAuthorizationFailed,
        Qt::UniqueConnection);
}

void TarnWebHandler::setWebServices(REST::RestClient* restClient, TarnAuthorizationService* authorizationService)
{
    m_restClient = restClient;
    m_authorizationService = authorizationService;
    connectService();
}

void TarnWebHandler::sendRequest(const REST::RestRequest& request, bool forced)
{
    if (!m_restClient || !m_authorizationService) {
        // Not wired yet: keep the request for the first tick after the services arrive.
        m_pendingRequests.append(new REST::RestRequest(request));
        return;
    }
    if (m_authorizationService->isAuthorized() || forced) {
        // The client stamps the request it is given; the response carries that stamped copy.
        REST::RestRequest copy(request);
        m_restClient->sendAsync(copy, this, "1onRestResponseReceived(REST::RestResponse*)");
        return;
    }
    m_authorizationService->authorizeAccess();
    m_pendingRequests.append(new REST::RestRequest(request));
}

void TarnWebHandler::setRetransmissionInterval(int milliseconds)
{
    m_retransmissionTimer.setInterval(milliseconds);
}

void TarnWebHandler::setRetransmissionEnabled(bool enabled)
{
    m_retransmissionEnabled = enabled;
}

void TarnWebHandler::clearRetransmissionQueue()
{
    qDeleteAll(m_pendingRequests);
    m_pendingRequests.clear();
    Logger::debug(QString(), QStringLiteral("Cleared retransmission queue"));
}

int TarnWebHandler::pendingRequestCount() const
{
    return m_pendingRequests.size();
}

QList<REST::RestRequest> TarnWebHandler::pendingRequests() const
{
    QList<REST::RestRequest> result;
    for (const REST::RestRequest* request : m_pendingRequests)
        result.append(*request);
    return result;
}

bool TarnWebHandler::onRestResponseReceived(REST::RestResponse* response)
{
    if (!response)
        return false;
    if (response->status() == 401) {
        Logger::warning(QString(), QStringLiteral("Server authorization error"));
        // Queued with the stale session still on it; the next sending adds the new one behind it.
        m_pendingRequests.append(new REST::RestRequest(response->request()));
        // A stale session calls for a new handshake at once. A 401 to a request that went out
        // without one, after a handshake had failed, waits for the retransmission timer instead:
        // another handshake straight away would post it again and again, many times a second, for
        // as long as the back-end refuses every call.
        if (m_authorizationService && m_authorizationService->isAuthorized())
            m_authorizationService->authorizeAccess();
        return true;
    }
    if (response->status() == 0) {
        Logger::warning(QString(), QStringLiteral("Network communication error"));
        if (!m_retransmissionEnabled)
            return false;
        m_pendingRequests.append(new REST::RestRequest(response->request()));
        return true;
    }
    return false;
}

void TarnWebHandler::retransmitAll(bool forced)
{
    // Counted first: a request that still finds no session goes back to the tail.
    const int count = m_pendingRequests.size();
    for (int i = 0; i < count && !m_pendingRequests.isEmpty(); ++i) {
        const REST::RestRequest copy(*m_pendingRequests.first());
        delete m_pendingRequests.takeFirst();
        sendRequest(copy, forced);
    }
}

void TarnWebHandler::onAuthorizationGranted()
{
    Logger::debug(QString(), QStringLiteral("Authorization granted"));
    onRetransmissionTimerTimeout();
}

void TarnWebHandler::onRetransmissionTimerTimeout()
{
    if (m_pendingRequests.isEmpty())
        return;
    Logger::debug(QString(), QStringLiteral("All pending requests [%1] will be now retransmitted").arg(m_pendingRequests.size()));
    retransmitAll(false);
}

void TarnWebHandler::onAuthorizationFailed()
{
    Logger::warning(QString(), QStringLiteral("Authorization failed"));
    if (m_pendingRequests.isEmpty())
        return;
    Logger::debug(QString(), QStringLiteral("All pending requests [%1] will be now retransmitted in forced mode")
                                 .arg(m_pendingRequests.size()));
    retransmitAll(true);
}

} // namespace Velmora::CommunicationWeb
