#include "CallScheduler.h"

#include "ClientConnection.h"
#include "Log.h"
#include "Refusals.h"

#include <QRunnable>
#include <QThreadPool>

#include <exception>

namespace Velmora::Daemon {

namespace {

// Long tasks of one connection on workers at the same time, stopped ones that have not ended yet
// included: a client that starts and stops a scan in a loop still holds no more than this.
constexpr int MaxLiveTasks = 4;

// Answers from a worker thread, delivered on the connection's thread in the order sent.
class QueuedReply : public Reply
{
public:
    QueuedReply(QObject& postbox, QPointer<ClientConnection> target)
        : m_postbox(postbox)
        , m_target(std::move(target))
    {
    }

    void sendPayload(quint32 type, const QByteArray& payload) override
    {
        QMetaObject::invokeMethod(&m_postbox, [target = m_target, type, payload] {
            if (target)
                target->send({type, payload});
        }, Qt::QueuedConnection);
    }

private:
    QObject& m_postbox;
    QPointer<ClientConnection> m_target;
};

class CallRunnable : public QRunnable
{
public:
    CallRunnable(std::unique_ptr<Call> call, const PeerCredentials& peer, QObject& postbox,
        QPointer<ClientConnection> owner, QString task, std::shared_ptr<std::atomic_bool> stopFlag)
        : m_call(std::move(call))
        , m_peer(peer)
        , m_postbox(postbox)
        , m_owner(std::move(owner))
        , m_task(std::move(task))
        , m_stop(std::move(stopFlag))
    {
    }

    void run() override
    {
        QueuedReply reply(m_postbox, m_owner);
        try {
            m_call->run(m_peer, *m_stop, reply);
        } catch (const std::exception& error) {
            // An engine's fault ends its request, never the service.
            qCCritical(serverLog, "A request of uid %u ended with an exception: %s", unsigned(m_peer.uid), error.what());
            const Answer answer = errorAnswer(Velmora::Message::FAILED, QStringLiteral("The request failed"));
            reply.sendPayload(answer.type, answer.payload);
        }
        QMetaObject::invokeMethod(&m_postbox, [owner = m_owner, task = m_task, stop = m_stop] {
            if (owner)
                owner->callFinished(task, stop);
        }, Qt::QueuedConnection);
    }

private:
    std::unique_ptr<Call> m_call;
    const PeerCredentials m_peer;
    QObject& m_postbox;
    QPointer<ClientConnection> m_owner;
    const QString m_task;
    std::shared_ptr<std::atomic_bool> m_stop;
};

} // namespace

CallScheduler::CallScheduler(QThreadPool& pool, QObject& postbox, ClientConnection* owner, const PeerCredentials& peer)
    : m_pool(pool)
    , m_postbox(postbox)
    , m_owner(owner)
    , m_peer(peer)
{
}

CallScheduler::~CallScheduler()
{
    if (m_shortStop)
        *m_shortStop = true;
    for (const auto& flag : qAsConst(m_tasks))
        *flag = true;
}

void CallScheduler::submit(std::unique_ptr<Call> call)
{
    const QString task = call->task();
    if (task.isEmpty()) {
        m_waiting.push_back(std::move(call));
        startNextShort();
        return;
    }
    // One task of a name per connection: the new request replaces the running one.
    if (stop(task))
        qCInfo(serverLog, "Stopping the %s task for a new one", qPrintable(task));
    if (m_liveTasks >= MaxLiveTasks)
        m_pendingTasks[task] = std::move(call);
    else
        launch(task, std::move(call));
}

void CallScheduler::launch(const QString& task, std::unique_ptr<Call> call)
{
    auto flag = std::make_shared<std::atomic_bool>(false);
    m_tasks.insert(task, flag);
    ++m_liveTasks;
    start(std::move(call), task, flag);
}

bool CallScheduler::stop(const QString& task)
{
    bool found = m_pendingTasks.erase(task) > 0;
    const auto running = m_tasks.constFind(task);
    if (running != m_tasks.constEnd()) {
        **running = true;
        found = true;
    }
    return found;
}

void CallScheduler::finished(const QString& task, const std::shared_ptr<std::atomic_bool>& stopFlag)
{
    if (task.isEmpty()) {
        m_shortStop.reset();
        startNextShort();
        return;
    }
    --m_liveTasks;
    if (m_tasks.value(task) == stopFlag)
        m_tasks.remove(task);
    if (!m_pendingTasks.empty()) {
        auto next = m_pendingTasks.begin();
        const QString nextTask = next->first;
        std::unique_ptr<Call> call = std::move(next->second);
        m_pendingTasks.erase(next);
        launch(nextTask, std::move(call));
    }
}

void CallScheduler::startNextShort()
{
    if (m_shortStop || m_waiting.empty())
        return;
    std::unique_ptr<Call> call = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_shortStop = std::make_shared<std::atomic_bool>(false);
    start(std::move(call), QString(), m_shortStop);
}

void CallScheduler::start(std::unique_ptr<Call> call, const QString& task, std::shared_ptr<std::atomic_bool> stopFlag)
{
    m_pool.start(new CallRunnable(std::move(call), m_peer, m_postbox, m_owner, task, std::move(stopFlag)));
}

} // namespace Velmora::Daemon
