#pragma once

#include "RequestHandler.h"

#include <functional>

namespace Velmora::Daemon {

// Plugs an engine into the router: the request message is parsed here, the engine gets it with
// the asking peer, the stop flag and a progress callback, and its return value is the final
// answer. For example:
//
//   router.addHandler(std::make_unique<EngineHandler<Wire::SmartRequest, Wire::Smart>>(
//       Message::SmartRequest, Message::Smart,
//       [&smart](const Wire::SmartRequest& request, const PeerCredentials&, const std::atomic_bool& stop,
//           const auto&) { return smart.read(request, stop); }));
//
// A long task also gives the name of its task, and, if its stop request is of the same type (an
// Action field), which requests stop it. A stop request is not run: the engine of the task sees
// its stop flag and returns, and that return value is the last answer.
template<typename Request, typename Answer>
class EngineHandler : public RequestHandler
{
public:
    using Progress = std::function<void(const Answer&)>;
    using Engine = std::function<Answer(const Request&, const PeerCredentials&, const std::atomic_bool&, const Progress&)>;
    using StopsTask = std::function<bool(const Request&)>;

    EngineHandler(quint32 requestType, quint32 answerType, Engine engine, QString task = {}, StopsTask stops = {})
        : m_requestType(requestType)
        , m_answerType(answerType)
        , m_engine(std::move(engine))
        , m_task(std::move(task))
        , m_stops(std::move(stops))
    {
    }

    QList<quint32> requestTypes() const override { return {m_requestType}; }

    std::unique_ptr<Call> decode(quint32, const QByteArray& payload) const override
    {
        Request request;
        if (!request.ParseFromArray(payload.constData(), payload.size()))
            return nullptr;
        return std::make_unique<EngineCall>(*this, std::move(request));
    }

private:
    class EngineCall : public Call
    {
    public:
        EngineCall(const EngineHandler& handler, Request request)
            : m_handler(handler)
            , m_request(std::move(request))
        {
        }
        QString task() const override { return m_handler.m_task; }
        bool stopsTask() const override { return m_handler.m_stops && m_handler.m_stops(m_request); }
        void run(const PeerCredentials& peer, const std::atomic_bool& stop, Reply& reply) override
        {
            const quint32 answerType = m_handler.m_answerType;
            const Progress progress = [&reply, answerType](const Answer& interim) { reply.send(answerType, interim); };
            reply.send(answerType, m_handler.m_engine(m_request, peer, stop, progress));
        }

    private:
        const EngineHandler& m_handler;
        const Request m_request;
    };

    const quint32 m_requestType;
    const quint32 m_answerType;
    const Engine m_engine;
    const QString m_task;
    const StopsTask m_stops;
};

} // namespace Velmora::Daemon
