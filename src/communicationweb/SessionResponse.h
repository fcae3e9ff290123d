#pragma once

#include "communicationweb/JsonMessage.h"

namespace Velmora::CommunicationWeb {

// The back-end's answer to the first step of the handshake.
class SessionResponse : public JsonMessage
{
    Q_OBJECT
    Q_PROPERTY(QString session READ session WRITE setSession)

public:
    explicit SessionResponse(QObject* parent = nullptr);

    QString session() const { return m_session; }
    void setSession(const QString& session) { m_session = session; }

private:
    QString m_session;
};

} // namespace Velmora::CommunicationWeb
