#pragma once

#include "RequestGroup.h"

namespace Velmora::ServiceSim {

// The version handshake, the drive list, the machine summary and TRIM.
class SystemRequests : public RequestGroup
{
    Q_OBJECT

public:
    // `version` is major, minor and patch.
    SystemRequests(Machine& machine, const Timings& timings, const QList<int>& version, QObject* parent = nullptr);

    QList<quint32> requestTypes() const override;
    bool handle(quint32 type, const QByteArray& payload, ClientConnection* client) override;
    bool fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client) override;

private:
    bool answerTrim(const QByteArray& payload, ClientConnection* client);

    const QList<int> m_version;
};

} // namespace Velmora::ServiceSim
