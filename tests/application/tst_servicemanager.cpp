#include "application/ServiceManager.h"
#include "platform/LinuxServiceControl.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include "Version.pb.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <csignal>

using Velmora::Application::ServiceManager;
using Velmora::Message::Message;
using Velmora::Platform::ServiceControl;

namespace {

// Plays the operating system's service control from a script and records what it was asked.
class ScriptedControl : public ServiceControl
{
public:
    QList<State> states;
    CommandResult installResult;
    CommandResult startResult;
    QStringList calls;

    State query() override
    {
        calls << QStringLiteral("query");
        return states.size() > 1 ? states.takeFirst() : states.value(0, State::Running);
    }
    QString installCommand() const override { return QStringLiteral("install-it"); }
    QString startCommand() const override { return QStringLiteral("start-it"); }
    CommandResult install(int) override
    {
        calls << QStringLiteral("install");
        return installResult;
    }
    void start(int, Finished finished) override
    {
        calls << QStringLiteral("start");
        finished(startResult);
    }
};

ServiceControl::CommandResult exited(int code, const QByteArray& output = QByteArray())
{
    ServiceControl::CommandResult result;
    result.normalExit = true;
    result.exitCode = code;
    result.output = output;
    return result;
}

QByteArray version(quint32 major, quint32 minor, quint32 patch)
{
    Velmora::Message::Version message;
    message.set_major(major);
    message.set_minor(minor);
    message.set_patch(patch);
    QByteArray bytes;
    bytes.resize(static_cast<int>(message.ByteSizeLong()));
    message.SerializeToArray(bytes.data(), bytes.size());
    return bytes;
}

using States = QList<ServiceControl::State>;

} // namespace

Q_DECLARE_METATYPE(States)

class TestServiceManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void bringsTheServiceUp_data();
    void bringsTheServiceUp();
    void checksTheVersion_data();
    void checksTheVersion();
    void startsTheRealServiceBesideTheProgram_data();
    void startsTheRealServiceBesideTheProgram();

private:
    ServiceManager* make(ServiceControl* control);

    ScriptedControl* m_control = nullptr;
    ServiceManager* m_manager = nullptr;
    QStringList m_boxes;
    QList<int> m_exits;
};

void TestServiceManager::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
    qRegisterMetaType<Message::MessageType>();
}

void TestServiceManager::init()
{
    m_boxes.clear();
    m_exits.clear();
    m_control = new ScriptedControl;
}

void TestServiceManager::cleanup()
{
    // The manager owns the control it was made with; a test that made none leaves it to us.
    if (!m_manager)
        delete m_control;
    delete m_manager;
    m_manager = nullptr;
    m_control = nullptr;
}

ServiceManager* TestServiceManager::make(ServiceControl* control)
{
    m_manager = new ServiceManager(nullptr, std::unique_ptr<ServiceControl>(control), QStringLiteral("unused"));
    m_manager->setIntervals(10, 100, 200);
    m_manager->setCriticalMessage([this](const QString& title, const QString& text) { m_boxes << title + QLatin1Char('|') + text; });
    m_manager->setExit([this](int code) { m_exits << code; });
    return m_manager;
}

void TestServiceManager::bringsTheServiceUp_data()
{
    QTest::addColumn<States>("states");
    QTest::addColumn<int>("installExit");
    QTest::addColumn<int>("startExit");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<int>("status");
    QTest::addColumn<QList<int>>("exits");

    using S = ServiceControl::State;
    QTest::newRow("running is left alone") << States{S::Running} << 0 << 0 << QStringList{"query"}
                                           << int(ServiceManager::Running) << QList<int>{};
    QTest::newRow("stopped is started") << States{S::Stopped} << 0 << 0 << QStringList{"query", "start"}
                                        << int(ServiceManager::Starting) << QList<int>{};
    QTest::newRow("start refused: access denied") << States{S::Stopped} << 0 << 5 << QStringList{"query", "start"}
                                                  << int(ServiceManager::Failed) << QList<int>{2};
    QTest::newRow("install refused") << States{S::NotInstalled} << 5 << 0 << QStringList{"query", "install"}
                                     << int(ServiceManager::Failed) << QList<int>{2};
    QTest::newRow("start pending is polled again")
        << States{S::StartPending, S::StartPending, S::Running} << 0 << 0 << QStringList{"query", "query", "query"}
        << int(ServiceManager::Running) << QList<int>{};
}

void TestServiceManager::bringsTheServiceUp()
{
    QFETCH(States, states);
    QFETCH(int, installExit);
    QFETCH(int, startExit);
    QFETCH(QStringList, calls);
    QFETCH(int, status);
    QFETCH(QList<int>, exits);

    m_control->states = states;
    m_control->installResult = exited(installExit, "  denied \n");
    m_control->startResult = exited(startExit, "denied");
    LogCapture log;
    make(m_control);
    QTRY_COMPARE(m_control->calls, calls);
    QTest::qWait(30);
    QCOMPARE(m_control->calls, calls);
    QCOMPARE(int(m_manager->status()), status);
    QCOMPARE(m_exits, exits);
    if (!exits.isEmpty()) {
        QCOMPARE(m_boxes, QStringList{QStringLiteral("ERROR|COULD NOT COMMUNICATE WITH SERVICE.")});
        const QString failed = calls.last() == QLatin1String("start")
            ? QStringLiteral("Process failed with %1 denied.").arg(startExit)
            : QStringLiteral("Process failed with %1 denied").arg(installExit);
        QCOMPARE(log.count(failed), 1);
        QCOMPARE(log.count(QStringLiteral("Service error %1.").arg(exits.first())), 1);
    }
}

void TestServiceManager::checksTheVersion_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QList<int>>("exits");
    QTest::addColumn<QString>("logged");

    QTest::newRow("another patch is fine") << int(Message::Version) << version(1, 1, 9) << QList<int>{}
                                           << "Service version: Service version: 1.1.9 App version: 1.1.4";
    QTest::newRow("another minor") << int(Message::Version) << version(1, 2, 4) << QList<int>{4}
                                   << "Service version: Service version: 1.2.4 App version: 1.1.4";
    QTest::newRow("unparsable") << int(Message::Version) << QByteArray::fromHex("ff") << QList<int>{}
                                << "Cannot update system information. Message parse failed.";
}

void TestServiceManager::checksTheVersion()
{
    QFETCH(int, type);
    QFETCH(QByteArray, payload);
    QFETCH(QList<int>, exits);
    QFETCH(QString, logged);

    make(m_control);
    QSignalSpy sent(m_manager, qOverload<Message::MessageType>(&ServiceManager::sendMessage));
    m_manager->clientConnected();
    QCOMPARE(sent.count(), 1);
    QCOMPARE(sent.at(0).at(0).value<Message::MessageType>(), Message::Version);

    LogCapture log;
    m_manager->handleMessage(static_cast<Message::MessageType>(type), payload);
    QCOMPARE(m_exits, exits);
    QCOMPARE(log.messages(), QStringList{logged});
    QCOMPARE(m_boxes.size(), exits.size());
}

void TestServiceManager::startsTheRealServiceBesideTheProgram_data()
{
    // What stands beside the program as the service: the simulated one, started by a script.
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("startTimeout");  // 0: the program's own
    QTest::addColumn<int>("status");
    QTest::addColumn<QList<int>>("exits");

    QTest::newRow("ready at once") << "exec \"$SERVICE\" \"$@\"" << 0 << int(ServiceManager::Starting) << QList<int>{};
    // A loaded machine: more than the two seconds that the service control allows a command.
    QTest::newRow("ready after 2.5 s") << "sleep 2.5; exec \"$SERVICE\" \"$@\"" << 0
                                       << int(ServiceManager::Starting) << QList<int>{};
    QTest::newRow("never listening") << "exit 0" << 300 << int(ServiceManager::Failed) << QList<int>{1};
}

void TestServiceManager::startsTheRealServiceBesideTheProgram()
{
    QFETCH(QString, script);
    QFETCH(int, startTimeout);
    QFETCH(int, status);
    QFETCH(QList<int>, exits);
    const QString service = QCoreApplication::applicationDirPath() + QStringLiteral("/Kestravin_Service");
    if (!QFileInfo(service).isExecutable())
        QSKIP("the simulated service is not part of this build");
    delete m_control;  // the scripted stand-in is not needed here
    QTemporaryDir dir;
    QFile launcher(dir.filePath(QStringLiteral("Kestravin_Service")));
    QVERIFY(launcher.open(QIODevice::WriteOnly));
    launcher.write(QStringLiteral("#!/bin/sh\nSERVICE='%1'\necho $$ >\"$0.pid\"\n%2\n").arg(service, script).toUtf8());
    launcher.close();
    launcher.setPermissions(launcher.permissions() | QFile::ExeOwner);

    const QString name = TestEnvironment::uniqueName(QStringLiteral("service"));
    auto* control = new Velmora::Platform::LinuxServiceControl(launcher.fileName(), name);
    QCOMPARE(control->query(), ServiceControl::State::Stopped);
    LogCapture log;
    make(control)->setIntervals(10, 2000, 60000);
    QSignalSpy listening(m_manager, &ServiceManager::serviceListening);
    if (startTimeout)
        m_manager->setStartTimeout(startTimeout);
    // The start must leave the event loop running: the window stays alive meanwhile.
    QElapsedTimer sinceTick;
    qint64 longestGap = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, [&] { longestGap = qMax(longestGap, sinceTick.restart()); });
    sinceTick.start();
    ticker.start(20);
    QTRY_COMPARE_WITH_TIMEOUT(int(m_manager->status()), status, 15000);
    QVERIFY2(longestGap < 500, qPrintable(QString::number(longestGap)));
    QCOMPARE(m_exits, exits);
    QCOMPARE(listening.count(), exits.isEmpty() ? 1 : 0);
    QCOMPARE(control->query(), exits.isEmpty() ? ServiceControl::State::Running : ServiceControl::State::Stopped);
    if (!exits.isEmpty())
        QCOMPARE(log.count(QStringLiteral("Process failed with 1 The service did not listen within the time limit.")), 1);

    // Stop it again: it would outlive the test otherwise.
    QFile pidFile(launcher.fileName() + QStringLiteral(".pid"));
    if (pidFile.open(QIODevice::ReadOnly) && exits.isEmpty()) {
        ::kill(pidFile.readAll().trimmed().toInt(), SIGTERM);
        QTRY_COMPARE(control->query(), ServiceControl::State::Stopped);
    }
    Velmora::Platform::LinuxServiceControl missing(service + QStringLiteral(".absent"), name);
    QCOMPARE(missing.query(), ServiceControl::State::NotInstalled);
    QCOMPARE(missing.install(100).exitCode, 1);
}

KESTRAVIN_TEST_SUITE(TestServiceManager)
#include "tst_servicemanager.moc"
