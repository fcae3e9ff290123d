#include "application/SingleInstanceGuard.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSharedMemory>
#include <QStandardPaths>
#include <QSystemSemaphore>

namespace Velmora::Application {

const char* const SingleInstanceGuard::DefaultPrefix = "BRANTELKESTRAVIN";

namespace {
constexpr int SegmentSize = 8;
constexpr int ProbeTimeoutMs = 100;

QString userName(const QString& prefix, const char* suffix)
{
    return SingleInstanceGuard::userFolder() + QLatin1Char('/') + prefix + QLatin1String(suffix);
}
} // namespace

QString SingleInstanceGuard::userFolder()
{
    // Qt makes a private folder under the temporary one when the session names none; it gives
    // nothing only when that folder belongs to someone else.
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return runtime.isEmpty() ? QDir::homePath() : runtime;
}

SingleInstanceGuard::SingleInstanceGuard(QObject* parent, const QString& prefix)
    : QObject(parent)
    , m_serverName(userName(prefix, "SingleInstanceGuard_LocalServer"))
    , m_sharedMemory(new QSharedMemory(this))
    // Qt keeps a semaphore's key file in the temporary folder, shared by all users; the folder in
    // the key makes the name differ from user to user.
    , m_semaphore(new QSystemSemaphore(userName(prefix, "SingleInstanceGuard_Semaphore"), 1, QSystemSemaphore::Open))
{
    // A native key is the path of the file that the segment's key comes from: in the user's folder,
    // where nobody else can make or remove it.
    m_sharedMemory->setNativeKey(userName(prefix, "SingleInstanceGuard_SharedMemory"));
    // A segment left by a crashed owner survives on Linux; attaching and detaching once removes it.
    m_semaphore->acquire();
    {
        QSharedMemory leftover;
        leftover.setNativeKey(m_sharedMemory->nativeKey());
        leftover.attach();
    }
    m_semaphore->release();
}

SingleInstanceGuard::~SingleInstanceGuard()
{
    release();
    if (m_ranInstance)
        removeSemaphore();
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
        m_ranInstance = m_ranInstance || !running;
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

void SingleInstanceGuard::removeSemaphore()
{
    // Qt removes a semaphore only in the process that created it, and that is as often a later
    // start, which found this instance and ended without cleaning up: the instance that ran removes
    // it instead. It does so holding it, so that no start is halfway through its check; one
    // waiting for it gets a fresh semaphore. Opening in Create mode makes this object the owner
    // that removes it; the count 0 is the one it has while held.
    m_semaphore->acquire();
    QSystemSemaphore owner(m_semaphore->key(), 0, QSystemSemaphore::Create);
}

} // namespace Velmora::Application
