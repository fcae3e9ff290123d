#pragma once

#include "message/FrameReader.h"

#include <QByteArray>
#include <QList>
#include <QLocalServer>
#include <QLocalSocket>
#include <QObject>
#include <QPointer>

// An in-process stand-in for the service end of the pipe: sends raw bytes, drops the connection,
// and reads back every byte and frame the client wrote.
class FakeService : public QObject
{
    Q_OBJECT

public:
    explicit FakeService(const QString& serverName, QObject* parent = nullptr);
    ~FakeService() override;

    bool listen();
    QString serverName() const { return m_serverName; }

    // Waits until a client connection is accepted (one that came earlier counts).
    bool waitForClient(int timeoutMs = 5000);
    bool hasClient() const;

    // Writes to the present client and waits until the bytes have left this end.
    void sendRaw(const QByteArray& bytes);
    void disconnectClient();

    QByteArray receivedBytes() const { return m_received; }
    // Waits until at least `count` whole frames have come from the client.
    bool waitForFrames(int count, int timeoutMs = 5000);

signals:
    void clientConnected();

private:
    void onNewConnection();
    void onReadyRead();

    QString m_serverName;
    QLocalServer m_server;
    QPointer<QLocalSocket> m_client;
    QByteArray m_received;
    Velmora::Message::FrameReader m_reader;
    QList<Velmora::Message::FrameReader::Frame> m_frames;
};
