#pragma once

#include "communicationweb/JsonMessage.h"

#include <QList>

namespace Velmora::CommunicationWeb {

class SupportedDriveEntry;

// The one answer that is an array: the supported models, each an object of three keys.
class SupportedDrivesResponse : public JsonMessage
{
    Q_OBJECT

public:
    explicit SupportedDrivesResponse(QObject* parent = nullptr);
    ~SupportedDrivesResponse() override;

    using JsonMessage::fromJson;
    // Empty objects and elements that are no object are passed over; an entry with a missing key
    // ends the parse with false, keeping the entries read before it.
    bool fromJson(const QJsonDocument& document) override;

    // Owned by the response.
    const QList<SupportedDriveEntry*>& entries() const { return m_entries; }

private:
    QList<SupportedDriveEntry*> m_entries;
};

} // namespace Velmora::CommunicationWeb
