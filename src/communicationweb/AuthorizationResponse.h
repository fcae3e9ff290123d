#pragma once

#include "communicationweb/JsonMessage.h"

namespace Velmora::CommunicationWeb {

// The back-end's verdict on a handshake.
class AuthorizationResponse : public JsonMessage
{
    Q_OBJECT
    Q_PROPERTY(bool authenticated READ authenticated WRITE setAuthenticated)

public:
    explicit AuthorizationResponse(QObject* parent = nullptr);

    bool authenticated() const { return m_authenticated; }
    void setAuthenticated(bool authenticated) { m_authenticated = authenticated; }

private:
    bool m_authenticated = false;
};

} // namespace Velmora::CommunicationWeb
