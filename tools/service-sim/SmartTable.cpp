#include "SmartTable.h"

#include <QJsonObject>

namespace Velmora::ServiceSim {

namespace {

constexpr quint64 RawMask = 0xFFFFFFFFFFFFull;

bool readRaw(const QJsonValue& value, quint64* raw)
{
    if (value.isDouble()) {
        *raw = static_cast<quint64>(value.toDouble());
        return value.toDouble() >= 0;
    }
    bool ok = false;
    *raw = value.toString().toULongLong(&ok, 0);
    return ok;
}

} // namespace

bool SmartTable::fromJson(const QJsonArray& attributes, SmartTable* table, QString* error)
{
    table->m_attributes.clear();
    for (const QJsonValue& value : attributes) {
        const QJsonObject object = value.toObject();
        Attribute attribute;
        attribute.id = static_cast<quint32>(object.value(QStringLiteral("Id")).toInt());
        attribute.current = static_cast<quint32>(object.value(QStringLiteral("Current")).toInt(100));
        attribute.worst = static_cast<quint32>(object.value(QStringLiteral("Worst")).toInt(int(attribute.current)));
        attribute.threshold = static_cast<quint32>(object.value(QStringLiteral("Threshold")).toInt(0));
        attribute.status = static_cast<quint32>(object.value(QStringLiteral("Status")).toInt(0));
        attribute.growth = static_cast<quint64>(object.value(QStringLiteral("growth")).toDouble(0));
        if (attribute.id == 0 || attribute.id > 255
            || !readRaw(object.value(QStringLiteral("raw")), &attribute.raw)) {
            *error = QStringLiteral("SMART attribute with a bad Id or raw value");
            return false;
        }
        attribute.raw &= RawMask;
        table->m_attributes.append(attribute);
    }
    return true;
}

const SmartTable::Attribute* SmartTable::attribute(quint32 id) const
{
    for (const Attribute& attribute : m_attributes) {
        if (attribute.id == id)
            return &attribute;
    }
    return nullptr;
}

void SmartTable::advance()
{
    for (Attribute& attribute : m_attributes)
        attribute.raw = (attribute.raw + attribute.growth) & RawMask;
}

QString SmartTable::rawText(quint64 raw)
{
    QByteArray bytes(6, '\0');
    for (int i = 0; i < 6; ++i)
        bytes[i] = static_cast<char>((raw >> (8 * i)) & 0xFF);
    return QString::fromLatin1(bytes.toHex().toUpper());
}

} // namespace Velmora::ServiceSim
