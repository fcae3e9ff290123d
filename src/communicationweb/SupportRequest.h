#pragma once

#include "communicationweb/JsonMessage.h"

namespace Velmora::CommunicationWeb {

// A support ticket as the user filled it in.
class SupportRequest : public JsonMessage
{
    Q_OBJECT
    Q_PROPERTY(QString message READ message WRITE setMessage)
    Q_PROPERTY(QString diskSerialNumber READ diskSerialNumber WRITE setDiskSerialNumber)
    Q_PROPERTY(QString email READ email WRITE setEmail)
    Q_PROPERTY(QString captcha READ captcha WRITE setCaptcha)

public:
    explicit SupportRequest(QObject* parent = nullptr);

    QString message() const { return m_message; }
    void setMessage(const QString& message) { m_message = message; }
    QString diskSerialNumber() const { return m_diskSerialNumber; }
    void setDiskSerialNumber(const QString& diskSerialNumber) { m_diskSerialNumber = diskSerialNumber; }
    QString email() const { return m_email; }
    void setEmail(const QString& email) { m_email = email; }
    QString captcha() const { return m_captcha; }
    void setCaptcha(const QString& captcha) { m_captcha = captcha; }

private:
    QString m_message;
    QString m_diskSerialNumber;
    QString m_email;
    QString m_captcha;
};

} // namespace Velmora::CommunicationWeb
