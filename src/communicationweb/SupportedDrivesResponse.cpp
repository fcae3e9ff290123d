#include "communicationweb/SupportedDrivesResponse.h"

#include "communicationweb/SupportedDriveEntry.h"

#include <QJsonArray>

namespace Velmora::CommunicationWeb {

SupportedDrivesResponse::SupportedDrivesResponse(QObject* parent)
    : JsonMessage(parent)
{
}

SupportedDrivesResponse::~SupportedDrivesResponse()
{
    qDeleteAll(m_entries);
}

bool SupportedDrivesResponse::fromJson(const QJsonDocument& document)
{
    qDeleteAll(m_entries);
    m_entries.clear();
    if (document.isNull() || !document.isArray())
        return false;
    const QJsonArray array = document.array();
    for (const QJsonValue& element : array) {
        const QJsonObject object = element.toObject();
        if (object.isEmpty())
            continue;
        auto* entry = new SupportedDriveEntry;
        if (!readProperties(entry, object, true)) {
            delete entry;
            return false;
        }
        m_entries.append(entry);
    }
    return true;
}

} // namespace Velmora::CommunicationWeb
