#include "smart/PhisonSmartController.h"

#include "smart/SmartAttribute.h"

#include "Smart.pb.h"

namespace Velmora::Smart {

namespace {

constexpr quint32 TemperatureId = 194;
constexpr quint32 EraseCountId = 173;
constexpr quint32 WrittenId = 241;

// Firmwares "SA"/"SB" have no working temperature sensor; "S9" counts written data in units of
// 1/1000 of what the others do and stores the two erase counts swapped.
bool hasNoTemperatureSensor(const QString& firmware)
{
    return firmware.startsWith(QLatin1String("SA")) || firmware.startsWith(QLatin1String("SB"));
}

bool isS9(const QString& firmware)
{
    return firmware.startsWith(QLatin1String("S9"));
}

// Short raw values count as zero-extended, as the attribute itself would store them.
QByteArray padded(QByteArray data)
{
    if (data.size() < SmartAttribute::RawSize)
        data.append(QByteArray(SmartAttribute::RawSize - data.size(), '\0'));
    return data;
}

} // namespace

PhisonSmartController::PhisonSmartController(const QString& firmwareVersion, QObject* parent)
    : SmartController(firmwareVersion, parent)
{
}

void PhisonSmartController::addAttribute(const Message::Smart_SmartAttribute& attribute)
{
    storeAttribute(attribute, correctedData(attribute.id(), decodedData(attribute)));
}

QByteArray PhisonSmartController::correctedData(quint32 id, QByteArray data) const
{
    if (id == TemperatureId && hasNoTemperatureSensor(m_firmwareVersion)) {
        // Such a drive always shows 30 degrees.
        data = QByteArray(SmartAttribute::RawSize, '\0');
        data[0] = char(0x1E);
    } else if (id == WrittenId && isS9(m_firmwareVersion)) {
        quint64 number = 0;
        if (data.size() >= 2) {
            for (int i = qMin(data.size(), int(SmartAttribute::RawSize)) - 1; i >= 0; --i)
                number = (number << 8) | quint8(data.at(i));
        }
        number /= 1000;
        data = padded(data);
        for (int i = 0; i < 5; ++i)
            data[i] = char((number >> (8 * i)) & 0xFF);
        data[5] = '\0';
    } else if (id == EraseCountId && isS9(m_firmwareVersion)) {
        data = padded(data);
        const char low0 = data.at(0);
        const char low1 = data.at(1);
        data[0] = data.at(2);
        data[1] = data.at(3);
        data[2] = low0;
        data[3] = low1;
    }
    return data;
}

double PhisonSmartController::parameterValue(SmartParameter parameter, bool* ok)
{
    switch (parameter) {
    case MaxEraseCount:
        return rawValue(EraseCountId, Lo16, ok);
    case AvgEraseCount:
        return rawValue(EraseCountId, Hi16, ok);
    case LifeRemaining:
        return qMin(rawValue(231, Byte0, ok), 100.0);
    case GBWritten:
        return rawValue(WrittenId, Raw48, ok);
    default:
        return commonParameterValue(parameter, ok);
    }
}

} // namespace Velmora::Smart
