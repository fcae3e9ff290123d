#include "ClientConnection.h"

#include "Log.h"
#include "RequestRouter.h"

#include <QLocalSocket>

namespace Velmora::Daemon {

namespace {
// What is taken from the socket at a time: an absurd header is seen before much follows it.
constexpr qint64 ReadChunkBytes = 64 * 1024;
} // namespace

ClientConnection::ClientConnection(QLocalSocket* socket, int id, const PeerCredentials& peer, RequestRouter& router,
    const ConnectionLimits& limits, QObject* parent)
    : QObject(parent)
    , m_socket(socket)
    , m_id(id)
    , m_peer(peer)
    , m_router(router)
    , m_limits(limits)
    , m_calls(router.pool(), router, this, peer)
{
    m_socket->setParent(this);
    // Qt reads no more from the kernel than this until we take it, so a client that writes faster
    // than its requests are served is held back by its own socket.
    m_socket->setReadBufferSize(ReadChunkBytes);
    connect(m_socket, &QLocalSocket::readyRead, this, &ClientConnection::readSocket);
    connect(m_socket, &QLocalSocket::disconnected, this, [this] {
        qCInfo(serverLog, "Client %d disconnected", m_id);
        finish();
    });
}

void ClientConnection::readSocket()
{
    while (!m_closing && m_calls.waiting() < m_limits.maxWaitingCalls && m_socket->bytesAvailable() > 0)
        receive(m_socket->read(ReadChunkBytes));
}

void ClientConnection::receive(const QByteArray& bytes)
{
    m_reader.append(bytes);
    Velmora::Message::FrameReader::Frame frame;
    while (!m_closing && m_reader.next(frame)) {
        if (m_reader.skippedBytes() != m_reportedSkipped) {
            qCWarning(serverLog, "Client %d: skipped %lld bytes without a sync pattern", m_id,
                m_reader.skippedBytes() - m_reportedSkipped);
            m_reportedSkipped = m_reader.skippedBytes();
        }
        m_router.route(*this, frame.type, frame.payload);
    }
    if (!m_closing && m_reader.announcedLength() > m_limits.maxFrameBytes) {
        qCWarning(serverLog, "Client %d (uid %u, pid %d) announced a frame of %lld bytes, more than %lld",
            m_id, unsigned(m_peer.uid), int(m_peer.pid), m_reader.announcedLength(), m_limits.maxFrameBytes);
        close("frame too large");
    }
}

void ClientConnection::send(const Answer& answer)
{
    if (m_closing)
        return;
    // A frame larger than the bound still goes to a client that reads; only a backlog that stays
    // unread counts against it.
    if (m_socket->bytesToWrite() > m_limits.maxUnsentBytes) {
        qCWarning(serverLog, "Client %d (uid %u, pid %d) leaves %lld bytes of answers unread",
            m_id, unsigned(m_peer.uid), int(m_peer.pid), m_socket->bytesToWrite());
        close("answers not read");
        return;
    }
    m_socket->write(Velmora::Message::FrameReader::encode(answer.type, answer.payload));
}

void ClientConnection::callFinished(const QString& task, const std::shared_ptr<std::atomic_bool>& stopFlag)
{
    m_calls.finished(task, stopFlag);
    // Reading may have paused while too many requests waited.
    if (!m_closing && m_socket->bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &ClientConnection::readSocket, Qt::QueuedConnection);
}

void ClientConnection::close(const char* reason)
{
    qCWarning(serverLog, "Client %d: closing the connection (%s)", m_id, reason);
    m_closing = true;
    m_socket->abort();
    finish();
}

void ClientConnection::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    m_closing = true;
    emit closed(this);
}

} // namespace Velmora::Daemon
