#pragma once

#include "rest/Authenticator.h"

namespace Velmora::CommunicationWeb {

// Stamps the session of the last accepted handshake on every request, as the query item
// "session"; the back-end wants no Authorization header.
class TarnAuthenticator : public REST::Authenticator
{
public:
    explicit TarnAuthenticator(const QString& sessionId);
    void authenticate(REST::RestRequest& request) override;
};

} // namespace Velmora::CommunicationWeb
