#pragma once

#include <QObject>
#include <QString>

namespace REST {
class RestClient;
class RestResponse;
}

namespace Velmora::CommunicationWeb {

// Gets a session from the back-end and proves the client entitled to it: GET "session" for the
// session text, then POST "session" with its HMAC-SHA-256 under the shared key. An accepted
// session is installed in the client as its authenticator. One instance serves all web handlers,
// so one handshake releases all their queues.
class TarnAuthorizationService : public QObject
{
    Q_OBJECT

public:
    explicit TarnAuthorizationService(REST::RestClient* restClient, QObject* parent = nullptr);

    virtual bool isAuthorized() const;
    virtual bool isAuthorizationInProgress() const;

    QString sessionId() const { return m_sessionId; }

    // The keyed hash that proves a session: 64 lower-case hexadecimal digits.
    static QString hashOf(const QString& sessionId, const QString& key = sharedKey());
    // Fixed at build time; the back-end holds the same.
    static QString sharedKey();

public slots:
    virtual void authorizeAccess();

signals:
    void authorized();
    void authorizeFailed();

private slots:
    void onSessionIdResponse(REST::RestResponse* responseRaw);
    void onAuthorizationResponse(REST::RestResponse* responseRaw);

private:
    void fail(const QString& message, bool signalFirst);

    REST::RestClient* m_restClient;
    bool m_authorized = false;
    bool m_authorizationInProgress = false;
    QString m_sessionId;
};

} // namespace Velmora::CommunicationWeb
