#pragma once

#include "communicationweb/JsonMessage.h"

namespace Velmora::CommunicationWeb {

// The number the back-end gave a new ticket.
class SupportResponse : public JsonMessage
{
    Q_OBJECT
    Q_PROPERTY(int id READ id WRITE setId)

public:
    explicit SupportResponse(QObject* parent = nullptr);

    int id() const { return m_id; }
    void setId(int id) { m_id = id; }

private:
    int m_id = 0;
};

} // namespace Velmora::CommunicationWeb
