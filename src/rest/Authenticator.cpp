#include "rest/Authenticator.h"

#include "rest/RestRequest.h"

namespace REST {

Authenticator::Authenticator(const QString& credential)
    : m_credential(credential)
{
}

Authenticator::~Authenticator() = default;

void Authenticator::authenticate(RestRequest& request)
{
    request.addHeader(QStringLiteral("Authorization"), QStringLiteral("Basic %1").arg(m_credential));
}

} // namespace REST
