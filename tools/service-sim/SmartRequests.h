#pragma once

#include "RequestGroup.h"

namespace Velmora::ServiceSim {

// S.M.A.R.T. read-outs: the whole table of a drive or one attribute of it.
class SmartRequests : public RequestGroup
{
    Q_OBJECT

public:
    using RequestGroup::RequestGroup;

    QList<quint32> requestTypes() const override;
    bool handle(quint32 type, const QByteArray& payload, ClientConnection* client) override;
    bool fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client) override;
};

} // namespace Velmora::ServiceSim
