#include "message/Message.h"

#include <QDataStream>
#include <QMetaEnum>

#include <limits>

namespace Velmora::Message {

Message::Message(QObject* parent)
    : QObject(parent)
{
}

QByteArray Message::serialize() const
{
    QByteArray frame;
    frame.reserve(HeaderSize + payload.size());
    QDataStream stream(&frame, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << sync << length << static_cast<quint32>(type);
    frame.append(payload);
    return frame;
}

QString Message::typeName(quint32 type)
{
    const QMetaObject& meta = staticMetaObject;
    const QMetaEnum metaEnum = meta.enumerator(meta.indexOfEnumerator("MessageType"));
    return QString::fromLatin1(metaEnum.valueToKey(static_cast<int>(type)));
}

bool Message::isNamedType(quint32 type)
{
    return type <= quint32(std::numeric_limits<int>::max()) && !typeName(type).isEmpty();
}

} // namespace Velmora::Message
