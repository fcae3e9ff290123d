#include "communicationweb/TarnAuthenticator.h"

#include "rest/RestRequest.h"

namespace Velmora::CommunicationWeb {

TarnAuthenticator::TarnAuthenticator(const QString& sessionId)
    : REST::Authenticator(sessionId)
{
}

void TarnAuthenticator::authenticate(REST::RestRequest& request)
{
    request.addQueryParameter(QStringLiteral("session"), m_credential);
}

} // namespace Velmora::CommunicationWeb
