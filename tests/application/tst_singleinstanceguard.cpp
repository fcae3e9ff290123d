#include "application/SingleInstanceGuard.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using Velmora::Application::SingleInstanceGuard;

class TestSingleInstanceGuard : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void staleSocketIsReplaced();
    void eachUserRunsOnce();

private:
    // Runtime folders of two users; short, since the wake-up socket lies in them.
    QTemporaryDir m_firstUser;
    QTemporaryDir m_secondUser;
};

void TestSingleInstanceGuard::initTestCase()
{
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_firstUser.path()));
}

void TestSingleInstanceGuard::staleSocketIsReplaced()
{
    const QString prefix = TestEnvironment::uniqueName(QStringLiteral("guard"));
    const QString serverName = m_firstUser.filePath(prefix + QStringLiteral("SingleInstanceGuard_LocalServer"));
    {
        // A server whose socket file stays behind, as after a kill.
        QLocalServer leftover;
        leftover.setSocketOptions(QLocalServer::UserAccessOption);
        QVERIFY(leftover.listen(serverName));
        leftover.close();
    }
    QFile socketFile(serverName);
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

void TestSingleInstanceGuard::eachUserRunsOnce()
{
    // Users differ by their runtime folder here; the guard knows them by nothing else.
    const QString prefix = TestEnvironment::uniqueName(QStringLiteral("guard"));
    SingleInstanceGuard first(nullptr, prefix);
    QVERIFY(!first.isOtherInstanceRunning());
    first.startLocalServer();
    QSignalSpy firstWoken(&first, &SingleInstanceGuard::newInstanceDetected);

    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_secondUser.path()));
    SingleInstanceGuard second(nullptr, prefix);
    const bool secondFoundOne = second.isOtherInstanceRunning();
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_firstUser.path()));
    QVERIFY2(!secondFoundOne, "a second user's start took the first user's program for its own");

    SingleInstanceGuard again(nullptr, prefix);
    QVERIFY(again.isOtherInstanceRunning());
    again.setNotifyTimeout(2000);
    again.notifyOtherInstance();
    QTRY_COMPARE(firstWoken.count(), 1);
}

KESTRAVIN_TEST_SUITE(TestSingleInstanceGuard)
#include "tst_singleinstanceguard.moc"
