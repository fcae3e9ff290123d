#pragma once

#include <QObject>
#include <QString>

class QFileSystemWatcher;
class QLocalSocket;
class QTimer;

namespace Velmora::Platform {

// Tells, without blocking and without polling, when a local server starts to accept connections:
// the folder of its socket is watched, and each change there is followed by one attempt to
// connect. Gives up after the time limit.
class ServerListenWatch : public QObject
{
    Q_OBJECT

public:
    ServerListenWatch(const QString& serverName, int timeoutMs, QObject* parent = nullptr);

    // The socket file of a server name, as QLocalServer places it.
    static QString socketPath(const QString& serverName);
    // Whether the server accepts a connection now; `timeoutMs` only bounds a server that hangs.
    static bool acceptsNow(const QString& serverName, int timeoutMs);

signals:
    // Emitted once: true when a connection was accepted, false when the time was up first.
    void finished(bool listening);

private:
    void tryConnect();
    void onRefused();
    void finish(bool listening);

    QString m_serverName;
    QFileSystemWatcher* m_watcher;
    QLocalSocket* m_probe;
    QTimer* m_deadline;
    QTimer* m_retry;
    bool m_changedWhileTrying = false;
    bool m_done = false;
};

} // namespace Velmora::Platform
