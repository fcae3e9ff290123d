#pragma once

#include "message/FrameReader.h"

#include <QByteArray>
#include <QList>
#include <QLocalServer>
#include <QLocalSocket>
#include <QObject>
#include <QPointer>

// An in-process stand-in for the service end of the pipe. Tests script it both ways: send frames,
// raw bytes, split frames or garbage, drop the connection, and read back every byte and frame the
// client wrote.
class FakeService : public QObject
{
    Q_OBJECT

public:
    explicit FakeService(const QString& serverName, QObject* parent = nullptr);
    ~FakeService() override;

    bool listen();
    void stopListening();
    QString serverName() const { return m_serverName; }

    // Waits until a client connection is accepted (one that came earlier counts).
    bool waitForClient(int timeoutMs = 5000);
    bool hasClient() const;
    int connectionCount() const { return m_connectionCount; }

    // Writes to the present client and waits until the bytes have left this end.
    void sendRaw(const QByteArray& bytes);
    void sendFrame(quint32 type, const QByteArray& payload = QByteArray());
    void disconnectClient();

    QByteArray receivedBytes() const { return m_received; }
    QList<Velmora::Message::FrameReader::Frame> receivedFrames() const { return m_frames; }
    // Waits until at least `count` whole frames have come from the client.
    bool waitForFrames(int count, int timeoutMs = 5000);
    void clearReceived();

signals:
    void clientConnected();
    void frameReceived(quint32 type, QByteArray payload);

private:
    void onNewConnection();
    void onReadyRead();

    QString m_serverName;
    QLocalServer m_server;
    QPointer<QLocalSocket> m_client;
    int m_connectionCount = 0;
    QByteArray m_received;
    Velmora::Message::FrameReader m_reader;
    QList<Velmora::Message::FrameReader::Frame> m_frames;
};
