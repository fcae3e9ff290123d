#pragma once

#include "message/Message.h"

#include <QByteArray>
#include <QLocalSocket>
#include <QObject>

class QTimer;

namespace Velmora::Communication {

// The client end of the service pipe. Writes frames, cuts the incoming byte stream into frames,
// resynchronises one byte at a time after corruption, and reconnects after every disconnection.
// It knows nothing of what a payload means.
class NamedPipeClient : public QObject
{
    Q_OBJECT

public:
    static const char* const DefaultServerName;

    explicit NamedPipeClient(QObject* parent = nullptr);

    bool isConnected() const;

    // Parses the bytes of one read from the pipe, as onDataReceived() does with the socket's.
    // Lets tests and benchmarks feed exact reads.
    void receiveBytes(const QByteArray& bytes);

    // The pipe is "VelmoraServer"; tests running side by side give each client a pipe of its own.
    QString serverName() const { return m_serverName; }
    void setServerName(const QString& name) { m_serverName = name; }

    // How long to wait before asking again for a pipe that does not exist yet.
    void setServerNotFoundRetryInterval(int msec);

public slots:
    void sendMessage(Velmora::Message::Message::MessageType type, QByteArray payload);
    void connectToServer();
    // For a caller that knows the server listens now (it has just started it): connects at once
    // rather than at the retry after "No server found", and cancels that retry. Does nothing while a
    // connection is being made or stands.
    void connectToServerNow();
    void disconnectFromServer();
    void onDataReceived();
    void onDisconnected();
    void onConnected();
    void onError(QLocalSocket::LocalSocketError error);

signals:
    void messageReceived(Velmora::Message::Message::MessageType type, QByteArray payload);
    void connectedToServer();
    void serverNotFound();
    void connectionError();
    void sendingMessage();

private slots:
    void onSocketError(QLocalSocket::LocalSocketError error);

private:
    enum ParseState { WaitingForHeader = 0, WaitingForPayload = 1 };

    bool consumeHeader();
    void deliverFrame();
    void reconnect();
    void dropConsumedBytes();
    qsizetype unreadSize() const { return m_buffer.size() - m_readOffset; }

    QLocalSocket* m_socket;
    // Bytes received and not yet consumed start at m_readOffset. Consumed bytes are dropped in one
    // go once a read has been parsed, so that many frames in one read cost linear time.
    QByteArray m_buffer;
    qsizetype m_readOffset = 0;
    Velmora::Message::Message m_frame;
    // The type as it came: a number that names no message must not be taken for a MessageType.
    quint32 m_frameType = 0;
    int m_parseState = WaitingForHeader;
    bool m_parsing = false;
    int m_reconnectionCount = 0;

    QString m_serverName;
    QTimer* m_serverNotFoundRetry;
};

} // namespace Velmora::Communication
