#include "communication/NamedPipeClient.h"

#include "logger/Logger.h"

#include <QTimer>
#include <QtEndian>

namespace Velmora::Communication {

using Velmora::Message::Message;

const char* const NamedPipeClient::DefaultServerName = "VelmoraServer";

namespace {
// Beyond this many passes of the reconnection rule without a successful connection, give up.
constexpr int MaxReconnectionPasses = 5;
constexpr int DisconnectWaitMs = 3000;
constexpr int ServerNotFoundRetryMs = 3000;
} // namespace

NamedPipeClient::NamedPipeClient(QObject* parent)
    : QObject(parent)
    , m_socket(new QLocalSocket(this))
    , m_serverName(QLatin1String(DefaultServerName))
    , m_serverNotFoundRetry(new QTimer(this))
{
    m_serverNotFoundRetry->setSingleShot(true);
    m_serverNotFoundRetry->setInterval(ServerNotFoundRetryMs);
    connect(m_serverNotFoundRetry, &QTimer::timeout, this, &NamedPipeClient::connectToServer);
    connect(m_socket, &QLocalSocket::readyRead, this, &NamedPipeClient::onDataReceived);
    connect(m_socket, &QLocalSocket::disconnected, this, &NamedPipeClient::onDisconnected);
    connect(m_socket, &QLocalSocket::connected, this, &NamedPipeClient::onConnected);
    connect(m_socket, QOverload<QLocalSocket::LocalSocketError>::of(&QLocalSocket::error),
        this, &NamedPipeClient::onSocketError);
}

bool NamedPipeClient::isConnected() const
{
    return m_socket && m_socket->state() == QLocalSocket::ConnectedState;
}

void NamedPipeClient::sendMessage(Message::MessageType type, QByteArray payload)
{
    if (!isConnected()) {
        Logger::warning(QString(), QStringLiteral("Not connected to server!"));
        return;
    }

    Message frame;
    frame.type = type;
    frame.length = static_cast<quint32>(payload.size());
    frame.payload = payload;

    const qint64 written = m_socket->write(frame.serialize());
    if (written != static_cast<qint64>(payload.size()) + Message::HeaderSize)
        Logger::error(QString(), QStringLiteral("Write message to socket failed"));
    else
        Logger::debug(QString(), QStringLiteral("Message send: %1").arg(Message::typeName(type)));

    emit sendingMessage();
}

void NamedPipeClient::connectToServer()
{
    Logger::debug(QString(), QStringLiteral("Connect to server: %1").arg(m_serverName));
    m_socket->connectToServer(m_serverName, QIODevice::ReadWrite);
}

void NamedPipeClient::setServerNotFoundRetryInterval(int msec)
{
    m_serverNotFoundRetry->setInterval(msec);
}

void NamedPipeClient::connectToServerNow()
{
    // Connecting a socket that is connecting or connected already fails with an operation error,
    // which would end the link for good; the attempt under way reaches the server just as well.
    if (m_socket->state() != QLocalSocket::UnconnectedState)
        return;
    m_serverNotFoundRetry->stop();
    connectToServer();
}

void NamedPipeClient::disconnectFromServer()
{
    Logger::debug(QString(), QStringLiteral("Disconnect from server."));
    m_socket->disconnectFromServer();
}

void NamedPipeClient::onDataReceived()
{
    receiveBytes(m_socket->readAll());
}

void NamedPipeClient::receiveBytes(const QByteArray& bytes)
{
    m_buffer.append(bytes);
    if (Logger::isEnabled(Logger::Debug))
        Logger::debug(QString(), QStringLiteral("data in buffer count: %1").arg(unreadSize()));

    // A slot that spins an event loop (a message box, a synchronous web call) can bring us back
    // here; the outer pass sees the appended bytes and goes on parsing them in order.
    if (m_parsing)
        return;
    m_parsing = true;

    while (unreadSize() > 0) {
        if (m_parseState == WaitingForHeader && !consumeHeader())
            break;
        // A header may have used up the buffer: a frame without payload is still delivered now.
        if (static_cast<quint64>(unreadSize()) < m_frame.length)
            break;
        deliverFrame();
    }

    m_parsing = false;
    dropConsumedBytes();
}

bool NamedPipeClient::consumeHeader()
{
    while (unreadSize() >= Message::HeaderSize) {
        const uchar* header = reinterpret_cast<const uchar*>(m_buffer.constData()) + m_readOffset;
        if (qFromLittleEndian<quint32>(header) != Message::SyncPattern) {
            Logger::error(QString(),
                QStringLiteral("Incorrect synchronization pattern detected, trying to restore synchronization..."));
            ++m_readOffset;
            continue;
        }

        m_frame.length = qFromLittleEndian<quint32>(header + 4);
        m_frameType = qFromLittleEndian<quint32>(header + 8);
        if (Logger::isEnabled(Logger::Debug))
            Logger::debug(QString(), QStringLiteral("payload length: %1").arg(m_frame.length));
        m_readOffset += Message::HeaderSize;
        m_parseState = WaitingForPayload;
        return true;
    }
    return false;
}

void NamedPipeClient::deliverFrame()
{
    if (Logger::isEnabled(Logger::Debug))
        Logger::debug(QString(), QStringLiteral("Data count OK, message type: ") + Message::typeName(m_frameType));

    const QByteArray payload = m_buffer.mid(m_readOffset, static_cast<int>(m_frame.length));
    m_readOffset += m_frame.length;
    m_parseState = WaitingForHeader;
    // No handler takes a type that has no name, so such a frame ends here, as it would in the
    // dispatcher, before the number is loaded as an enumerator it is not.
    if (Message::isNamedType(m_frameType))
        emit messageReceived(static_cast<Message::MessageType>(m_frameType), payload);
}

void NamedPipeClient::dropConsumedBytes()
{
    if (m_readOffset == m_buffer.size()) {
        m_buffer.clear();
        m_readOffset = 0;
    } else if (m_readOffset > unreadSize()) {
        // Moving the rest only once more than half is consumed keeps a large frame that arrives
        // in many small reads linear as well.
        m_buffer.remove(0, static_cast<int>(m_readOffset));
        m_readOffset = 0;
    }
}

void NamedPipeClient::onDisconnected()
{
    Logger::debug(QString(), QStringLiteral("Disconnected from server."));
    // A local socket may connect within connectToServer() itself. Reconnecting on the next turn of
    // the event loop lets the reconnection rule, which may have caused this disconnection, see the
    // socket unconnected rather than wait for the fresh connection to end. Should a connection have
    // been made meanwhile, it stands.
    QMetaObject::invokeMethod(this, &NamedPipeClient::connectToServerNow, Qt::QueuedConnection);
}

void NamedPipeClient::onConnected()
{
    Logger::debug(QString(), QStringLiteral("Connected to server."));
    m_reconnectionCount = 0;
    emit connectedToServer();
}

void NamedPipeClient::onSocketError(QLocalSocket::LocalSocketError error)
{
    // A named pipe goes with its server, so a missing server reads as "not found". A Unix socket
    // file can outlive a service that was killed, and connecting to it is refused instead: the
    // same situation, which must lead to the same retry. (Nothing else refuses a connection;
    // a broken one reports the peer closed.)
    if (error == QLocalSocket::ConnectionRefusedError)
        error = QLocalSocket::ServerNotFoundError;
    onError(error);
}

void NamedPipeClient::onError(QLocalSocket::LocalSocketError error)
{
    Logger::error(QString(), QStringLiteral("Named pipe client error: %1").arg(static_cast<int>(error)));

    switch (error) {
    case QLocalSocket::ServerNotFoundError:
        Logger::error(QString(), QStringLiteral("No server found"));
        m_serverNotFoundRetry->start();
        emit serverNotFound();
        break;
    case QLocalSocket::ConnectionRefusedError:
    case QLocalSocket::PeerClosedError:
    case QLocalSocket::ConnectionError:
        reconnect();
        break;
    case QLocalSocket::UnknownSocketError:
    case QLocalSocket::SocketAccessError:
    case QLocalSocket::SocketResourceError:
    case QLocalSocket::SocketTimeoutError:
    case QLocalSocket::DatagramTooLargeError:
    case QLocalSocket::UnsupportedSocketOperationError:
    case QLocalSocket::OperationError:
        emit connectionError();
        break;
    default:
        break;
    }
}

void NamedPipeClient::reconnect()
{
    if (m_reconnectionCount >= MaxReconnectionPasses) {
        emit connectionError();
        return;
    }
    Logger::error(QString(), QStringLiteral("Connection error - reconnecting"));
    ++m_reconnectionCount;

    m_socket->disconnectFromServer();
    // The next attempt comes from onDisconnected(), driven by the socket's disconnected().
    if (m_socket->state() != QLocalSocket::ConnectedState)
        return;
    if (m_socket->waitForDisconnected(DisconnectWaitMs))
        return;
    Logger::error(QString(), QStringLiteral("Disconnection failed."));
    emit connectionError();
}

} // namespace Velmora::Communication
