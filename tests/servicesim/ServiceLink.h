#pragma once

#include "communication/Dispatcher.h"
#include "communication/Handler.h"
#include "communication/NamedPipeClient.h"

#include <google/protobuf/message_lite.h>

#include <QByteArray>
#include <QList>

// A handler that keeps every answer of the service, in order of arrival, for a test to take.
class RecordingHandler : public Velmora::Communication::Handler
{
    Q_OBJECT

public:
    struct Record {
        MessageType type;
        QByteArray payload;
        qint64 receivedAtMs;
        bool taken = false;
    };

    RecordingHandler();

    void clientConnected() override;
    void handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload) override;

    void request(MessageType type, const QByteArray& payload = QByteArray()) { emit sendMessage(type, payload); }

    QList<Record> records;
    int connections = 0;
};

// The program's side of the pipe as main() wires it: pipe client, dispatcher and one recording
// handler for every answer type of the service.
class ServiceLink
{
public:
    using MessageType = Velmora::Message::Message::MessageType;

    explicit ServiceLink(const QString& serverName);

    bool waitForConnection(int timeoutMs = 5000);
    void send(MessageType type, const google::protobuf::MessageLite& message);
    void send(MessageType type, const QByteArray& payload = QByteArray());

    // Takes the oldest answer of the type not taken yet, waiting for it if need be.
    bool take(MessageType type, QByteArray* payload, int timeoutMs = 5000, qint64* receivedAtMs = nullptr);
    template<typename M>
    bool take(MessageType type, M* message, int timeoutMs = 5000)
    {
        QByteArray payload;
        return take(type, &payload, timeoutMs) && message->ParseFromArray(payload.constData(), payload.size());
    }
    // Answers of the type that came and were not taken.
    int pending(MessageType type) const;

    static qint64 nowMs();

    Velmora::Communication::NamedPipeClient client;
    Velmora::Communication::Dispatcher dispatcher;
    RecordingHandler handler;
};

// Field 1 of every answer that carries a code; the service's error answers all have it there.
int answerCode(const QByteArray& payload);
