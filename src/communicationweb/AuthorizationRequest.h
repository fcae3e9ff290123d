#pragma once

#include "communicationweb/JsonMessage.h"

namespace Velmora::CommunicationWeb {

// Second step of the handshake: the session received and its keyed hash.
class AuthorizationRequest : public JsonMessage
{
    Q_OBJECT
    Q_PROPERTY(QString session READ session WRITE setSession)
    Q_PROPERTY(QString hash READ hash WRITE setHash)

public:
    explicit AuthorizationRequest(QObject* parent = nullptr);

    QString session() const { return m_session; }
    void setSession(const QString& session) { m_session = session; }
    QString hash() const { return m_hash; }
    void setHash(const QString& hash) { m_hash = hash; }

private:
    QString m_session;
    QString m_hash;
};

} // namespace Velmora::CommunicationWeb
