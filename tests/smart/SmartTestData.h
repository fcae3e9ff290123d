#pragma once

#include "Smart.pb.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

// Builds the attributes the service sends. An attribute is written "id:hex", the hex being the raw
// value as the service formats it, lowest byte first.
namespace SmartTestData {

inline Velmora::Message::Smart_SmartAttribute attribute(quint32 id, const QByteArray& hex, quint32 current = 100,
    quint32 worst = 100, quint32 threshold = 0, quint32 status = 0)
{
    Velmora::Message::Smart_SmartAttribute result;
    result.set_id(id);
    result.set_current(current);
    result.set_worst(worst);
    result.set_threshold(threshold);
    result.set_status(status);
    result.set_data(hex.toStdString());
    return result;
}

// A number as the service writes a raw value: six bytes, lowest first.
inline QByteArray rawHex(quint64 value)
{
    QByteArray bytes(6, '\0');
    for (int i = 0; i < 6; ++i)
        bytes[i] = char((value >> (8 * i)) & 0xFF);
    return bytes.toHex();
}

inline QList<Velmora::Message::Smart_SmartAttribute> attributes(const QStringList& texts)
{
    QList<Velmora::Message::Smart_SmartAttribute> result;
    for (const QString& text : texts) {
        const QStringList parts = text.split(QLatin1Char(':'));
        result.append(attribute(parts.at(0).toUInt(), parts.value(1).toLatin1()));
    }
    return result;
}

} // namespace SmartTestData
