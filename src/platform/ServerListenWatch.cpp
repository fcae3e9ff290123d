#include "platform/ServerListenWatch.h"

#include <QDir>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QLocalSocket>
#include <QTimer>

namespace Velmora::Platform {

namespace {
// A socket file exists from bind() on, a moment before the server listens, and a stale one stays
// until the server replaces it: a refused connection while the file is there is tried again, at
// growing intervals.
constexpr int FirstRetryMs = 10;
constexpr int LastRetryMs = 1000;
} // namespace

ServerListenWatch::ServerListenWatch(const QString& serverName, int timeoutMs, QObject* parent)
    : QObject(parent)
    , m_serverName(serverName)
    , m_watcher(new QFileSystemWatcher(this))
    , m_probe(new QLocalSocket(this))
    , m_deadline(new QTimer(this))
    , m_retry(new QTimer(this))
{
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, &ServerListenWatch::tryConnect);
    connect(m_probe, &QLocalSocket::connected, this, [this] { finish(true); });
    connect(m_probe, &QLocalSocket::errorOccurred, this, &ServerListenWatch::onRefused);
    m_deadline->setSingleShot(true);
    connect(m_deadline, &QTimer::timeout, this, [this] { finish(false); });
    m_retry->setSingleShot(true);
    m_retry->setInterval(FirstRetryMs);
    connect(m_retry, &QTimer::timeout, this, &ServerListenWatch::tryConnect);

    m_watcher->addPath(QFileInfo(socketPath(serverName)).absolutePath());
    m_deadline->start(timeoutMs);
    // The server may be there before the watch began.
    QTimer::singleShot(0, this, &ServerListenWatch::tryConnect);
}

bool ServerListenWatch::acceptsNow(const QString& serverName, int timeoutMs)
{
    QLocalSocket probe;
    probe.connectToServer(serverName);
    const bool accepted = probe.waitForConnected(timeoutMs);
    probe.abort();
    return accepted;
}

QString ServerListenWatch::socketPath(const QString& serverName)
{
    return serverName.startsWith(QLatin1Char('/')) ? serverName : QDir::tempPath() + QLatin1Char('/') + serverName;
}

void ServerListenWatch::tryConnect()
{
    if (m_done)
        return;
    if (m_probe->state() != QLocalSocket::UnconnectedState) {
        m_changedWhileTrying = true;
        return;
    }
    m_changedWhileTrying = false;
    m_probe->connectToServer(m_serverName);
}

void ServerListenWatch::onRefused()
{
    m_probe->abort();
    if (m_done)
        return;
    if (m_changedWhileTrying) {
        tryConnect();
    } else if (QFileInfo::exists(socketPath(m_serverName))) {
        m_retry->start();
        m_retry->setInterval(qMin(m_retry->interval() * 2, LastRetryMs));
    }
}

void ServerListenWatch::finish(bool listening)
{
    if (m_done)
        return;
    m_done = true;
    m_deadline->stop();
    m_retry->stop();
    m_watcher->disconnect(this);
    m_probe->abort();
    emit finished(listening);
}

} // namespace Velmora::Platform
