#pragma once

#include "communicationweb/JsonMessage.h"

namespace Velmora::CommunicationWeb {

// Newest application version and where its installer lies.
class ApplicationUpdateResponse : public JsonMessage
{
    Q_OBJECT
    Q_PROPERTY(QString version READ version WRITE setVersion)
    Q_PROPERTY(QString url READ url WRITE setUrl)

public:
    explicit ApplicationUpdateResponse(QObject* parent = nullptr);

    QString version() const { return m_version; }
    void setVersion(const QString& version) { m_version = version; }
    QString url() const { return m_url; }
    void setUrl(const QString& url) { m_url = url; }

private:
    QString m_version;
    QString m_url;
};

} // namespace Velmora::CommunicationWeb
