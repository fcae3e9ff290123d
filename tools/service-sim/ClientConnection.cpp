#include "ClientConnection.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include <google/protobuf/message_lite.h>

namespace Velmora::ServiceSim {

using Velmora::Message::FrameReader;
using Velmora::Message::Message;

namespace {
// A client that announces a frame this large, or never finishes one, is cut off instead of being
// buffered without end.
constexpr qsizetype MaxPendingBytes = 64 * 1024 * 1024;
} // namespace

ClientConnection::ClientConnection(QLocalSocket* socket, int id, const FaultPlan& faults,
    const Timings& timings, QObject* parent)
    : QObject(parent)
    , m_socket(socket)
    , m_id(id)
    , m_faults(faults)
    , m_random(faults.seed * 7919u + static_cast<quint32>(id))
{
    m_socket->setParent(this);
    m_pieceTimer.setInterval(timings.splitPieceMs);
    connect(&m_pieceTimer, &QTimer::timeout, this, &ClientConnection::writeNextPiece);
    connect(m_socket, &QLocalSocket::readyRead, this, &ClientConnection::onReadyRead);
    connect(m_socket, &QLocalSocket::disconnected, this, &ClientConnection::onDisconnected);
}

bool ClientConnection::isOpen() const
{
    return m_socket->state() == QLocalSocket::ConnectedState;
}

void ClientConnection::onReadyRead()
{
    m_reader.append(m_socket->readAll());
    FrameReader::Frame frame;
    while (isOpen() && m_reader.next(frame)) {
        if (m_reader.skippedBytes() != m_reportedSkipped) {
            Logger::warning(QString(), QStringLiteral("Client %1: skipped %2 bytes without a sync pattern")
                                           .arg(m_id).arg(m_reader.skippedBytes() - m_reportedSkipped));
            m_reportedSkipped = m_reader.skippedBytes();
        }
        emit frameReceived(this, frame.type, frame.payload);
    }
    if (m_reader.pendingBytes() > MaxPendingBytes) {
        Logger::error(QString(), QStringLiteral("Client %1: %2 bytes without a whole frame, closing the connection")
                                     .arg(m_id).arg(m_reader.pendingBytes()));
        m_socket->abort();
    }
}

void ClientConnection::onDisconnected()
{
    Logger::info(QString(), QStringLiteral("Client %1 disconnected").arg(m_id));
    m_pieceTimer.stop();
    emit closed(this);
}

void ClientConnection::send(quint32 type, const google::protobuf::MessageLite& message)
{
    const std::string bytes = message.SerializeAsString();
    send(type, QByteArray(bytes.data(), static_cast<int>(bytes.size())));
}

void ClientConnection::send(quint32 type, const QByteArray& payload)
{
    if (!isOpen()) {
        Logger::debug(QString(), QStringLiteral("Client %1 has gone; %2 not sent").arg(m_id).arg(Message::typeName(type)));
        return;
    }
    Logger::debug(QString(), QStringLiteral("Client %1 <- %2 (%3 bytes)")
                                 .arg(m_id).arg(Message::typeName(type)).arg(payload.size()));
    const QByteArray bytes = garbage() + FrameReader::encode(type, payload);
    if (m_faults.splitPieceSize > 0 || m_faults.splitRandomly) {
        queuePieces(bytes);
        return;
    }
    m_socket->write(bytes);
    // Out at once, as a pipe write of the service is: an answer written before the service dies
    // reaches the client.
    m_socket->flush();
    countSentFrame();
}

QByteArray ClientConnection::garbage()
{
    // Bytes that can never line up into the sync pattern, however the reader slides over them.
    QByteArray bytes(m_faults.garbageBytes, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(m_random.bounded(256));
        if (static_cast<uchar>(byte) == 0xCD)
            byte = 0x3C;
    }
    return bytes;
}

void ClientConnection::queuePieces(const QByteArray& bytes)
{
    int pieces = 0;
    for (int at = 0; at < bytes.size(); ++pieces) {
        const int size = m_faults.splitRandomly ? 1 + static_cast<int>(m_random.bounded(quint32(bytes.size() - at)))
                                                : m_faults.splitPieceSize;
        m_pieces.append(bytes.mid(at, size));
        at += size;
    }
    m_frameEnds.append(pieces);
    if (!m_pieceTimer.isActive())
        m_pieceTimer.start();
}

void ClientConnection::writeNextPiece()
{
    if (m_pieces.isEmpty() || !isOpen()) {
        m_pieceTimer.stop();
        return;
    }
    m_socket->write(m_pieces.takeFirst());
    m_socket->flush();
    if (--m_frameEnds.first() == 0) {
        m_frameEnds.removeFirst();
        countSentFrame();
    }
}

void ClientConnection::countSentFrame()
{
    ++m_framesSent;
    if (m_faults.dropAfterFrames > 0 && m_framesSent >= m_faults.dropAfterFrames) {
        Logger::warning(QString(), QStringLiteral("Client %1: dropping the connection after %2 frames, as asked")
                                       .arg(m_id).arg(m_framesSent));
        m_socket->flush();
        m_socket->disconnectFromServer();
    }
}

} // namespace Velmora::ServiceSim
