#include "application/SingleInstanceGuard.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QSharedMemory>
#include <QSystemSemaphore>

namespace Velmora::Application {

const char* const SingleInstanceGuard::DefaultPrefix = "BRANTELKESTRAVIN";

namespace {
constexpr int SegmentSize = 8;
constexpr int ProbeTimeoutMs = 100;
} // namespace

SingleInstanceGuard::SingleInstanceGuard(QObject* parent, const QString& prefix)
    : QObject(parent)
    , m_serverName(prefix + QStringLiteral("SingleInstanceGuard_LocalServer"))
    , m_sharedMemory(new QSharedMemory(prefix + QStringLiteral("SingleInstanceGuard_SharedMemory"), this))
    , m_semaphore(new QSystemSemaphore(prefix + QStringLiteral("SingleInstanceGuard_Semaphore"), 1, QSystemSemaphore::Open))
{
    // A segment left by a crashed owner survives on Linux; attaching and detaching once removes it.
    m_semaphore->acquire();
    {
        QSharedMemory leftover(m_sharedMemory->key());
        leftover.attach();
    }
    m_semaphore->release();
}

SingleInstanceGuard::~SingleInstanceGuard()
{
    release();
    delete m_semaphore;
}

bool SingleInstanceGuard::isOtherInstanceRunning()
{
    if (m_sharedMemory->isAttached())
        return true;
    m_semaphore->acquire();
    bool running;
    if (m_sharedMemory->attach(QSharedMemory::ReadWrite)) {
        m_sharedMemory->detach();
        running = true;
    } else {
        running = !m_sharedMemory->create(SegmentSize, QSharedMemory::ReadWrite);
    }
    m_semaphore->release();
    return running;
}

void SingleInstanceGuard::startLocalServer()
{
    m_localServer = new QLocalServer(this);
    connect(m_localServer, &QLocalServer::newConnection, this, &SingleInstanceGuard::newInstanceDetected);
    if (m_localServer->listen(m_serverName))
        return;
    // A socket file left by a killed first instance: remove it, but never rob a live server.
    QLocalSocket probe;
    probe.connectToServer(m_serverName);
    if (probe.waitForConnected(ProbeTimeoutMs))
        return;
    QLocalServer::removeServer(m_serverName);
    m_localServer->listen(m_serverName);
}

void SingleInstanceGuard::notifyOtherInstance()
{
    QLocalSocket socket;
    socket.connectToServer(m_serverName, QIODevice::ReadWrite);
    socket.waitForConnected(m_notifyTimeoutMs);
    socket.disconnectFromServer();
    if (socket.state() != QLocalSocket::UnconnectedState)
        socket.waitForDisconnected(m_notifyTimeoutMs);
}

void SingleInstanceGuard::release()
{
    m_semaphore->acquire();
    if (m_sharedMemory->isAttached())
        m_sharedMemory->detach();
    m_semaphore->release();
}

} // namespace Velmora::Application
