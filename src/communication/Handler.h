#pragma once

#include "message/Message.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

namespace Velmora::Communication {

// Base of every module that talks to the service. A subclass names the message types it wants in
// its constructor (before registration), receives them through handleMessage() and sends by
// emitting sendMessage(); it never sees the pipe.
class Handler : public QObject
{
    Q_OBJECT

public:
    using MessageType = Velmora::Message::Message::MessageType;

    explicit Handler(QObject* parent = nullptr);

    QString name() const { return m_name; }
    QList<MessageType> messageTypes() const { return m_messageTypes; }

    // Called for every successful connection to the service, so possibly many times.
    virtual void clientConnected() = 0;
    virtual void handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload) = 0;

signals:
    void sendMessage(Velmora::Message::Message::MessageType type);
    void sendMessage(Velmora::Message::Message::MessageType type, QByteArray payload);

protected:
    // Subclasses pass metaObject()->className() from their own constructor.
    void setName(const QString& name) { m_name = name; }
    void setMessageTypes(const QList<MessageType>& types) { m_messageTypes = types; }

private:
    QString m_name;
    QList<MessageType> m_messageTypes;
};

} // namespace Velmora::Communication
