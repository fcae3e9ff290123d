#pragma once

#include <QObject>
#include <QString>

namespace Velmora::CommunicationWeb {

// One element of the back-end's list of supported models. Its properties are the keys of the
// array's objects.
class SupportedDriveEntry : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString model READ model WRITE setModel)
    Q_PROPERTY(QString firmware READ firmware WRITE setFirmware)
    Q_PROPERTY(QString smartType READ smartType WRITE setSmartType)

public:
    explicit SupportedDriveEntry(QObject* parent = nullptr);

    QString model() const { return m_model; }
    void setModel(const QString& model) { m_model = model; }
    QString firmware() const { return m_firmware; }
    void setFirmware(const QString& firmware) { m_firmware = firmware; }
    QString smartType() const { return m_smartType; }
    void setSmartType(const QString& smartType) { m_smartType = smartType; }

private:
    QString m_model;
    QString m_firmware;
    QString m_smartType;
};

} // namespace Velmora::CommunicationWeb
