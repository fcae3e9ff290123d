#include "communication/Dispatcher.h"

#include "logger/Logger.h"

namespace Velmora::Communication {

using Velmora::Message::Message;

namespace {
using TypeOnly = void (Handler::*)(Message::MessageType);
using TypeAndPayload = void (Handler::*)(Message::MessageType, QByteArray);
using OwnTypeOnly = void (Dispatcher::*)(Message::MessageType);
using OwnTypeAndPayload = void (Dispatcher::*)(Message::MessageType, QByteArray);
} // namespace

Dispatcher::Dispatcher(QObject* parent)
    : QObject(parent)
{
}

bool Dispatcher::registerHandler(Handler* handler)
{
    bool result = false;
    for (const MessageType type : handler->messageTypes()) {
        QList<Handler*>& route = m_routes[type];
        if (route.contains(handler)) {
            Logger::error(QString(), QStringLiteral("Handler %1 is already registred for message %2")
                                         .arg(handler->name(), Message::typeName(type)));
            continue;
        }
        route.append(handler);

        if (!m_handlers.contains(handler)) {
            m_handlers.append(handler);
            if (!connectHandler(handler)) {
                disconnectHandler(handler);
                Logger::error(QString(), QStringLiteral("Failed to register handler %1 message %2")
                                             .arg(handler->name(), Message::typeName(type)));
                result = false;
                continue;
            }
        }

        Logger::info(QString(), QStringLiteral("Added handler %1 for message type %2")
                                    .arg(handler->name(), Message::typeName(type)));
        result = true;
    }
    return result;
}

bool Dispatcher::connectHandler(Handler* handler)
{
    const bool withPayload = connect(handler, static_cast<TypeAndPayload>(&Handler::sendMessage), this,
        static_cast<OwnTypeAndPayload>(&Dispatcher::onSendMessage), Qt::UniqueConnection);
    const bool withoutPayload = connect(handler, static_cast<TypeOnly>(&Handler::sendMessage), this,
        static_cast<OwnTypeOnly>(&Dispatcher::onSendMessage), Qt::UniqueConnection);
    return withPayload && withoutPayload;
}

void Dispatcher::disconnectHandler(Handler* handler)
{
    disconnect(handler, static_cast<TypeAndPayload>(&Handler::sendMessage), this,
        static_cast<OwnTypeAndPayload>(&Dispatcher::onSendMessage));
    disconnect(handler, static_cast<TypeOnly>(&Handler::sendMessage), this,
        static_cast<OwnTypeOnly>(&Dispatcher::onSendMessage));
}

void Dispatcher::clientConnected()
{
    const QList<Handler*> handlers = m_handlers;
    for (Handler* handler : handlers)
        handler->clientConnected();
}

void Dispatcher::dispatchMessage(Message::MessageType type, QByteArray payload)
{
    // A copy: a handler may register another while we deliver. Types without a handler are
    // dropped silently, Error among them.
    const QList<Handler*> route = m_routes.value(type);
    for (Handler* handler : route)
        handler->handleMessage(type, payload);
}

void Dispatcher::onSendMessage(Message::MessageType type, QByteArray payload)
{
    const auto* handler = qobject_cast<Handler*>(sender());
    Logger::debug(QString(), QStringLiteral("Message send request from handler %1")
                                 .arg(handler ? handler->name() : QString()));
    emit sendMessageToClient(type, payload);
}

void Dispatcher::onSendMessage(Message::MessageType type)
{
    onSendMessage(type, QByteArray());
}

} // namespace Velmora::Communication
