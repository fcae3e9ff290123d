#include "application/SingleInstanceGuard.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QSignalSpy>
#include <QTest>

using Velmora::Application::SingleInstanceGuard;

class TestSingleInstanceGuard : public QObject
{
    Q_OBJECT

private slots:
    void staleSocketIsReplaced();
};

void TestSingleInstanceGuard::staleSocketIsReplaced()
{
    const QString prefix = TestEnvironment::uniqueName(QStringLiteral("guard"));
    const QString serverName = prefix + QStringLiteral("SingleInstanceGuard_LocalServer");
    {
        // A server whose socket file stays behind, as after a kill.
        QLocalServer leftover;
        leftover.setSocketOptions(QLocalServer::UserAccessOption);
        QVERIFY(leftover.listen(serverName));
        leftover.close();
    }
    QFile socketFile(QDir::tempPath() + QLatin1Char('/') + serverName);
    if (!socketFile.exists())
        socketFile.open(QIODevice::WriteOnly);  // close() removed it; leave a file in its place

    SingleInstanceGuard guard(nullptr, prefix);
    QVERIFY(!guard.isOtherInstanceRunning());
    guard.startLocalServer();
    QSignalSpy woken(&guard, &SingleInstanceGuard::newInstanceDetected);
    SingleInstanceGuard later(nullptr, prefix);
    later.setNotifyTimeout(2000);
    later.notifyOtherInstance();
    QTRY_COMPARE(woken.count(), 1);
}

KESTRAVIN_TEST_SUITE(TestSingleInstanceGuard)
#include "tst_singleinstanceguard.moc"
