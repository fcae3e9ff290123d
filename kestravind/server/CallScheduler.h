#pragma once

#include "PeerCredentials.h"
#include "RequestHandler.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

#include <atomic>
#include <deque>
#include <map>
#include <memory>

class QThreadPool;

namespace Velmora::Daemon {

class ClientConnection;

// The requests of one connection on their way through the worker threads. Short requests run one
// at a time in the order they came, so that a client that floods the service takes one worker,
// not all; each long task runs beside them on a worker of its own, a few at most, while tasks
// asked for beyond that wait (the newest of each name). Every call gets a stop flag,
// raised by its stop request or when the connection goes. Answers and the news that a call has
// ended travel back to the connection's thread as queued calls on `postbox`, which outlives
// every connection; a connection that has gone by then gets nothing.
class CallScheduler
{
public:
    CallScheduler(QThreadPool& pool, QObject& postbox, ClientConnection* owner, const PeerCredentials& peer);
    ~CallScheduler();

    void submit(std::unique_ptr<Call> call);
    // False when no task of that name runs.
    bool stop(const QString& task);
    // Called on the connection's thread when a call has ended.
    void finished(const QString& task, const std::shared_ptr<std::atomic_bool>& stopFlag);

    size_t waiting() const { return m_waiting.size(); }
    bool idle() const { return !m_shortStop && m_waiting.empty() && m_liveTasks == 0 && m_pendingTasks.empty(); }

private:
    void startNextShort();
    void launch(const QString& task, std::unique_ptr<Call> call);
    void start(std::unique_ptr<Call> call, const QString& task, std::shared_ptr<std::atomic_bool> stopFlag);

    QThreadPool& m_pool;
    QObject& m_postbox;
    QPointer<ClientConnection> m_owner;
    const PeerCredentials m_peer;
    std::deque<std::unique_ptr<Call>> m_waiting;
    // The stop flag of the short call that runs; none while none does.
    std::shared_ptr<std::atomic_bool> m_shortStop;
    // The stop flag of the latest task of each name; tasks stopped but not yet ended still count
    // among the live ones.
    QHash<QString, std::shared_ptr<std::atomic_bool>> m_tasks;
    int m_liveTasks = 0;
    std::map<QString, std::unique_ptr<Call>> m_pendingTasks;
};

} // namespace Velmora::Daemon
