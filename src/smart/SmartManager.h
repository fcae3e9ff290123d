#pragma once

#include "communication/Handler.h"

#include "Smart.pb.h"
#include "SmartRequest.pb.h"

#include <QMap>
#include <QString>
#include <QVariant>

class QTimer;

namespace Velmora::System {
class System;
}

namespace Velmora::Smart {

// Fetches the drives' SMART attributes from the service: at every connection, for each new drive
// and then cyclically. Hands them to the drives' controllers and keeps the last answer of every
// drive for the support report.
class SmartManager : public Velmora::Communication::Handler
{
    Q_OBJECT

public:
    static constexpr int DefaultReadInterval = 900000;

    SmartManager(Velmora::System::System* system, QObject* parent = nullptr);

    void clientConnected() override;
    void handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload) override;
    virtual QString smartReportJson() const;

    // The whole last Smart message per drive id, error answers included.
    const QMap<quint32, Velmora::Message::Smart>& lastMessages() const { return m_lastMessages; }

public slots:
    void updateSmartReadTimer();
    void requestSmartAttributes();
    void requestSmartAttributes(int driveId);
    void requestSmartAttribute(int attributeId);
    void requestSmartAttribute(int driveId, int attributeId);

private slots:
    void updateSmartAttributes(int driveId,
        google::protobuf::RepeatedPtrField<Velmora::Message::Smart_SmartAttribute> attributes);
    void onSettingsChanged(QString group, QString key, QVariant value);

private:
    void applyReadInterval(int interval);
    void sendRequest();

    Velmora::System::System* m_system;
    QMap<quint32, Velmora::Message::Smart> m_lastMessages;
    Velmora::Message::SmartRequest m_request;
    QTimer* m_readTimer;
};

} // namespace Velmora::Smart
