#pragma once

#include "communicationweb/JsonMessage.h"

namespace Velmora::CommunicationWeb {

// Newest firmware for one drive model; the model and firmware asked for come back as an echo,
// which is all that ties an answer to its drives.
class FirmwareResponse : public JsonMessage
{
    Q_OBJECT
    Q_PROPERTY(QString model READ model WRITE setModel)
    Q_PROPERTY(QString currentFirmware READ currentFirmware WRITE setCurrentFirmware)
    Q_PROPERTY(QString version READ version WRITE setVersion)
    Q_PROPERTY(QString url READ url WRITE setUrl)

public:
    explicit FirmwareResponse(QObject* parent = nullptr);

    QString model() const { return m_model; }
    void setModel(const QString& model) { m_model = model; }
    QString currentFirmware() const { return m_currentFirmware; }
    void setCurrentFirmware(const QString& currentFirmware) { m_currentFirmware = currentFirmware; }
    QString version() const { return m_version; }
    void setVersion(const QString& version) { m_version = version; }
    QString url() const { return m_url; }
    void setUrl(const QString& url) { m_url = url; }

private:
    QString m_model;
    QString m_currentFirmware;
    QString m_version;
    QString m_url;
};

} // namespace Velmora::CommunicationWeb
