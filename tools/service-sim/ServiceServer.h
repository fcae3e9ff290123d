#pragma once

#include "FaultPlan.h"
#include "Timings.h"

#include <QLocalServer>
#include <QObject>
#include <QString>

namespace Velmora::ServiceSim {

class RequestRouter;

// The listening end of the pipe. Refuses to start while another service answers on the name, and
// clears the socket a killed one left behind. Each client gets a connection of its own.
class ServiceServer : public QObject
{
    Q_OBJECT

public:
    ServiceServer(const FaultPlan& faults, const Timings& timings, RequestRouter* router, QObject* parent = nullptr);

    // False, with a reason, when the name is taken by a live service or cannot be listened on.
    bool start(const QString& name, QString* error);
    QString fullServerName() const { return m_server.fullServerName(); }

private slots:
    void onNewConnection();

private:
    static bool isServedElsewhere(const QString& name, bool* staleSocket);

    QLocalServer m_server;
    const FaultPlan& m_faults;
    const Timings& m_timings;
    RequestRouter* m_router;
    int m_nextClientId = 1;
};

} // namespace Velmora::ServiceSim
