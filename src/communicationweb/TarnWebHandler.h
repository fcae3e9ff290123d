#pragma once

#include "rest/RestRequest.h"

#include <QList>
#include <QObject>
#include <QTimer>

namespace REST {
class RestClient;
class RestResponse;
}

namespace Velmora::CommunicationWeb {

class TarnAuthorizationService;

// Base of every module that calls the back-end. Requests that find no session, or that the
// network lost, wait in a queue that goes out again on every tick of the retransmission timer and
// whenever a handshake ends.
//
// A derived handler sends through sendRequest() and overrides onRestResponseReceived(): it calls
// the base first and, if that returns true, only deletes the response; otherwise it reads and
// deletes it. Either way it returns true.
class TarnWebHandler : public QObject
{
    Q_OBJECT

public:
    static constexpr int DefaultRetransmissionInterval = 10000;

    TarnWebHandler(REST::RestClient* restClient, TarnAuthorizationService* authorizationService, QObject* parent = nullptr);
    ~TarnWebHandler() override;

    // Sends at once with a session, or when `forced`; otherwise queues the request and asks for a
    // handshake.
    virtual void sendRequest(const REST::RestRequest& request, bool forced = false);
    virtual void setRetransmissionInterval(int milliseconds);
    // Whether a request lost to the network is queued. A 401 is queued regardless.
    virtual void setRetransmissionEnabled(bool enabled);
    virtual void clearRetransmissionQueue();
    virtual int pendingRequestCount() const;

    // Oldest first.
    QList<REST::RestRequest> pendingRequests() const;
    int retransmissionInterval() const { return m_retransmissionTimer.interval(); }
    bool isRetransmissionEnabled() const { return m_retransmissionEnabled; }

protected:
    // For a handler made before the shared client and service existed; connects the service's
    // signals once.
    void setWebServices(REST::RestClient* restClient, TarnAuthorizationService* authorizationService);

    REST::RestClient* restClient() const { return m_restClient; }
    TarnAuthorizationService* authorizationService() const { return m_authorizationService; }

protected slots:
    // True when the response needed no further reading: a 401, or a lost request that was queued.
    // It does not delete the response.
    virtual bool onRestResponseReceived(REST::RestResponse* response);
    void onAuthorizationGranted();
    void onAuthorizationFailed();

private slots:
    void onRetransmissionTimerTimeout();

private:
    void connectService();
    void retransmitAll(bool forced);

    REST::RestClient* m_restClient;
    TarnAuthorizationService* m_authorizationService;
    QList<REST::RestRequest*> m_pendingRequests;
    QTimer m_retransmissionTimer;
    bool m_retransmissionEnabled = true;
};

} // namespace Velmora::CommunicationWeb
