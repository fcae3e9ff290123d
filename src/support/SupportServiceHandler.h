#pragma once

#include "communication/Handler.h"

#include <QString>

namespace Velmora::Support {

// Asks the service to copy its own log files into a ticket's folder; the program can't read
// them itself.
class SupportServiceHandler : public Communication::Handler
{
    Q_OBJECT

public:
    explicit SupportServiceHandler(QObject* parent = nullptr);

    void clientConnected() override;
    void handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload) override;

    virtual void copyLogFiles(QString destinationDirectory);

signals:
    // Also after a failure, with nothing copied: a ticket goes on without the service's logs.
    void serviceLogFilesCopied(uint count, QString serviceLogFileBaseName);
};

} // namespace Velmora::Support
