#pragma once

#include <QObject>
#include <QString>

class QLocalServer;
class QSharedMemory;
class QSystemSemaphore;

namespace Velmora::Application {

// Tells the first start of the program for this user from later ones: the first holds a named
// shared-memory segment and listens on a local socket; a later one finds the segment, knocks on
// the socket so that the first shows its window, and ends. All three names lie in the user's
// runtime folder, so that each user of a shared machine gets a program of their own.
class SingleInstanceGuard : public QObject
{
    Q_OBJECT

public:
    static const char* const DefaultPrefix;

    // `prefix` replaces "BRANTELKESTRAVIN" in the three system names, so that tests stay apart.
    explicit SingleInstanceGuard(QObject* parent = nullptr, const QString& prefix = QLatin1String(DefaultPrefix));
    ~SingleInstanceGuard() override;

    bool isOtherInstanceRunning();
    void startLocalServer();
    void notifyOtherInstance();
    void release();

    void setNotifyTimeout(int msec) { m_notifyTimeoutMs = msec; }

    // The folder that makes the names the user's own.
    static QString userFolder();

signals:
    void newInstanceDetected();

private:
    void removeSemaphore();

    QString m_serverName;
    QSharedMemory* m_sharedMemory;
    QSystemSemaphore* m_semaphore;
    QLocalServer* m_localServer = nullptr;
    int m_notifyTimeoutMs = 30000;
    bool m_ranInstance = false;
};

} // namespace Velmora::Application
