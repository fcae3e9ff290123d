#include "smart/SmartController.h"

#include "smart/MarvellSmartController.h"
#include "smart/MasSmartController.h"
#include "smart/PhisonSmartController.h"
#include "smart/SmartAttribute.h"
#include "smart/SmiSmartController.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"

#include "Smart.pb.h"

#include <cmath>

namespace Velmora::Smart {

SmartController::SmartController(const QString& firmwareVersion, QObject* parent)
    : QObject(parent)
    , m_firmwareVersion(firmwareVersion)
{
}

SmartController::~SmartController()
{
    qDeleteAll(m_attributes);
    qDeleteAll(m_history);
}

void SmartController::commitReadout()
{
    // A drive without attribute 241 still gets a point, at 0.0, so the graph keeps its time axis.
    const double written = parameterValue(GBWritten, nullptr);
    m_history.prepend(new SmartHistoryPoint{written, QDateTime::currentDateTime()});
    while (m_history.size() > HistorySize)
        delete m_history.takeLast();
    emit dataChanged();
}

SmartAttribute* SmartController::attribute(unsigned id)
{
    return m_attributes.value(id, nullptr);
}

QList<SmartHistoryPoint*>* SmartController::parameterHistory(SmartParameter parameter)
{
    return parameter == GBWritten ? &m_history : nullptr;
}

void SmartController::addAttribute(const Message::Smart_SmartAttribute& attribute)
{
    storeAttribute(attribute, decodedData(attribute));
}

void SmartController::storeAttribute(const Message::Smart_SmartAttribute& attribute, const QByteArray& data)
{
    // The message carries threshold before worst; the attribute keeps the table's order.
    auto* stored = new SmartAttribute(attribute.id(), attribute.current(), attribute.worst(), attribute.threshold(),
        attribute.status(), data);
    delete m_attributes.value(stored->id(), nullptr);
    m_attributes.insert(stored->id(), stored);
}

QByteArray SmartController::decodedData(const Message::Smart_SmartAttribute& attribute)
{
    return QByteArray::fromHex(QByteArray::fromStdString(attribute.data()));
}

double SmartController::rawValue(unsigned id, RawForm form, bool* ok)
{
    const SmartAttribute* stored = attribute(id);
    if (!stored)
        return notSupported(ok);
    if (ok)
        *ok = true;
    switch (form) {
    case Raw48:
        return double(stored->raw48());
    case Raw32:
        return double(stored->raw32());
    case Lo16:
        return double(stored->lo16());
    case Hi16:
        return double(stored->hi16());
    case Byte0:
        return double(stored->byte0());
    }
    return notSupported(ok);
}

double SmartController::lifeFromEraseCount(unsigned id, double maxEraseCount, bool* ok)
{
    bool found = false;
    const double average = rawValue(id, Raw32, &found);
    if (!found)
        return notSupported(ok);
    if (ok)
        *ok = true;
    const double life = std::round((maxEraseCount - average) / maxEraseCount * 100.0);
    return qBound(0.0, life, 100.0);
}

double SmartController::commonParameterValue(SmartParameter parameter, bool* ok)
{
    switch (parameter) {
    case BadSectors:
        return rawValue(5, Raw48, ok);
    case PowerOnHours:
        return rawValue(9, Raw48, ok);
    case PowerCycles:
        return rawValue(12, Raw48, ok);
    case Temperature:
        return rawValue(194, Byte0, ok);
    default:
        return notSupported(ok);
    }
}

double SmartController::notSupported(bool* ok)
{
    if (ok)
        *ok = false;
    return 0.0;
}

SmartController* createSmartController(System::Drive* drive)
{
    const QString smartClass = System::SupportedDrivesManager::smartType(*drive);
    const QString firmware = drive->firmwareVersion();
    // Case-sensitive on purpose: an unknown class, a lower-case letter included, gets the default.
    if (smartClass == QLatin1String("B"))
        return new MarvellSmartController(firmware, drive);
    if (smartClass == QLatin1String("C"))
        return new SmiSmartController(firmware, drive);
    if (smartClass == QLatin1String("D"))
        return new MasSmartController(firmware, drive);
    return new PhisonSmartController(firmware, drive);
}

} // namespace Velmora::Smart
