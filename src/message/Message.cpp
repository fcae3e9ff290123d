#include "message/Message.h"

#include <QDataStream>
#include <QMetaEnum>

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

} // namespace Velmora::Message
