#pragma once

#include "communicationweb/JsonMessage.h"

namespace Velmora::CommunicationWeb {

// The advertisement on offer: the picture's address and the page a click opens.
class AdAvabilityResponse : public JsonMessage
{
    Q_OBJECT
    Q_PROPERTY(QString file READ file WRITE setFile)
    Q_PROPERTY(QString link READ link WRITE setLink)

public:
    explicit AdAvabilityResponse(QObject* parent = nullptr);

    QString file() const { return m_file; }
    void setFile(const QString& file) { m_file = file; }
    QString link() const { return m_link; }
    void setLink(const QString& link) { m_link = link; }

private:
    QString m_file;
    QString m_link;
};

} // namespace Velmora::CommunicationWeb
