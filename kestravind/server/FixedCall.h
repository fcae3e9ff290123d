#pragma once

#include "Refusals.h"
#include "RequestHandler.h"

namespace Velmora::Daemon {

// A request whose answer is known when it is decoded: an error, a refusal, a stop. It still queues
// behind the connection's earlier requests, so that answers keep the order of the requests.
class FixedCall : public Call
{
public:
    explicit FixedCall(Answer answer, QString task = {}, bool stops = false)
        : m_answer(std::move(answer))
        , m_task(std::move(task))
        , m_stops(stops)
    {
    }
    QString task() const override { return m_task; }
    bool stopsTask() const override { return m_stops; }
    void run(const PeerCredentials&, const std::atomic_bool&, Reply& reply) override
    {
        reply.sendPayload(m_answer.type, m_answer.payload);
    }

private:
    const Answer m_answer;
    const QString m_task;
    const bool m_stops;
};

} // namespace Velmora::Daemon
