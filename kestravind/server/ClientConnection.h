#pragma once

#include "CallScheduler.h"
#include "PeerCredentials.h"
#include "Refusals.h"

#include "message/FrameReader.h"

#include <QObject>

class QLocalSocket;

namespace Velmora::Daemon {

class RequestRouter;

// Bounds that keep one client from costing the service more than its share.
struct ConnectionLimits {
    // A header announcing more closes the connection before its payload is read.
    qint64 maxFrameBytes = 16 * 1024 * 1024;
    // Answers the client has not read yet; past this the client is taken for stuck.
    qint64 maxUnsentBytes = 4 * 1024 * 1024;
    // Requests waiting for a worker; past this the socket is not read until they drain.
    size_t maxWaitingCalls = 256;
};

// One client of the service socket: cuts its bytes into frames for the router, writes answers, and
// holds the requests it has running. Lives on the main thread; its requests run elsewhere.
class ClientConnection : public QObject
{
    Q_OBJECT

public:
    ClientConnection(QLocalSocket* socket, int id, const PeerCredentials& peer, RequestRouter& router,
        const ConnectionLimits& limits, QObject* parent = nullptr);

    int id() const { return m_id; }
    const PeerCredentials& peer() const { return m_peer; }
    CallScheduler& calls() { return m_calls; }

    void send(const Answer& answer);
    // Takes bytes as if they had come from the socket.
    void receive(const QByteArray& bytes);
    // Called when a request of this connection has ended on its worker.
    void callFinished(const QString& task, const std::shared_ptr<std::atomic_bool>& stopFlag);

signals:
    void closed(Velmora::Daemon::ClientConnection* connection);

private:
    void readSocket();
    void close(const char* reason);
    void finish();

    QLocalSocket* m_socket;
    const int m_id;
    const PeerCredentials m_peer;
    RequestRouter& m_router;
    const ConnectionLimits m_limits;
    Velmora::Message::FrameReader m_reader;
    qint64 m_reportedSkipped = 0;
    bool m_closing = false;
    bool m_finished = false;
    // Declared last: its destructor raises the stop flags while the rest is still there.
    CallScheduler m_calls;
};

} // namespace Velmora::Daemon
