#include "RequestGroup.h"

#include <QTimer>

namespace Velmora::ServiceSim {

RequestGroup::RequestGroup(Machine& machine, const Timings& timings, QObject* parent)
    : QObject(parent)
    , m_machine(machine)
    , m_timings(timings)
{
}

void RequestGroup::later(ClientConnection* client, int ms, std::function<void(ClientConnection*)> work)
{
    QPointer<ClientConnection> target(client);
    QTimer::singleShot(ms, this, [target, work = std::move(work)] {
        if (target && target->isOpen())
            work(target);
    });
}

} // namespace Velmora::ServiceSim
