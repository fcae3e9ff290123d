#pragma once

#include "communication/Handler.h"

#include <QList>
#include <QMap>
#include <QObject>

namespace Velmora::Communication {

// Routes each incoming message to the handlers registered for its type, in order of registration,
// and hands on what handlers send. Does not own its handlers.
class Dispatcher : public QObject
{
    Q_OBJECT

public:
    using MessageType = Velmora::Message::Message::MessageType;

    explicit Dispatcher(QObject* parent = nullptr);

    // Returns the outcome of the last type that was not a double registration.
    bool registerHandler(Handler* handler);

    QList<Handler*> handlers() const { return m_handlers; }
    QList<Handler*> handlers(MessageType type) const { return m_routes.value(type); }

public slots:
    void clientConnected();
    void dispatchMessage(Velmora::Message::Message::MessageType type, QByteArray payload);

signals:
    void sendMessageToClient(Velmora::Message::Message::MessageType type, QByteArray payload);

private slots:
    void onSendMessage(Velmora::Message::Message::MessageType type, QByteArray payload);
    void onSendMessage(Velmora::Message::Message::MessageType type);

private:
    bool connectHandler(Handler* handler);
    void disconnectHandler(Handler* handler);

    QMap<MessageType, QList<Handler*>> m_routes;
    QList<Handler*> m_handlers;
};

} // namespace Velmora::Communication
