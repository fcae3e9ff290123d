#pragma once

#include "RequestGroup.h"

namespace Velmora::ServiceSim {

// Copies the service's own log files into a directory the client names, for a support ticket.
class LogFileRequests : public RequestGroup
{
    Q_OBJECT

public:
    using RequestGroup::RequestGroup;

    // The name the copies start with, so that they stand apart from the program's own logs.
    static const char* const CopyBaseName;

    QList<quint32> requestTypes() const override;
    bool handle(quint32 type, const QByteArray& payload, ClientConnection* client) override;
    bool fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client) override;
};

} // namespace Velmora::ServiceSim
