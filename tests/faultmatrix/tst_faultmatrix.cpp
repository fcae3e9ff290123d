// The faults a user's machine meets, one per row, against the real simulated service and back-end
// processes, with the program's modules wired as main() wires them. Each row breaks one thing: the
// program stays up (or ends with its exit code), tells the user what it must, keeps the user's
// setting, sends no ticket twice, and once the fault ends reads the machine and sends a ticket once.

#include "BackendTestSupport.h"
#include "SimulatorProcess.h"

#include "application/ServiceManager.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "logger/Logger.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "migration/MigrationDestDrive.h"
#include "rest/RestClient.h"
#include "rest/TrustedAuthority.h"
#include "settings/SettingsManager.h"
#include "smart/SmartManager.h"
#include "support/SupportManager.h"
#include "support/SupportServiceHandler.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QJsonArray>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <unistd.h>

using namespace Velmora;
using Settings::SettingsManager;

namespace {

enum Fault { ServiceSwitch, KillInCopy, RestartService, BackendSwitch, BackendDown, OtherAuthority, LogFull, SettingsLocked };

// The modules of the program that meet the faults, wired as main() wires them.
struct Program {
    Program(const QString& pipe, const QUrl& api)
        : rest(api), authorization(&rest), migration(&systemManager, &system),
          support(&systemManager, &smart, &supportHandler, &rest, &authorization)
    {
        client.setServerName(pipe);
        client.setServerNotFoundRetryInterval(100);
        QObject::connect(&client, &Communication::NamedPipeClient::connectedToServer, &dispatcher, &Communication::Dispatcher::clientConnected);
        QObject::connect(&client, &Communication::NamedPipeClient::messageReceived, &dispatcher, &Communication::Dispatcher::dispatchMessage);
        QObject::connect(&dispatcher, &Communication::Dispatcher::sendMessageToClient, &client, &Communication::NamedPipeClient::sendMessage);
        service = new Application::ServiceManager(&dispatcher, Platform::createServiceControl(QStringLiteral("Kestravin_Service"), pipe), pipe);
        service->setIntervals(10, 2000, 2500);
        service->setCriticalMessage([this](const QString&, const QString& text) { told.append(text); });
        service->setExit([this](int code) { exitCode = code; });
        QObject::connect(&client, &Communication::NamedPipeClient::messageReceived, service, &Application::ServiceManager::onMessageReceived);
        QObject::connect(&client, &Communication::NamedPipeClient::sendingMessage, service, &Application::ServiceManager::onMessageSend);
        for (Communication::Handler* handler : QList<Communication::Handler*>{service, &systemManager, &smart, &supportHandler, &migration})
            dispatcher.registerHandler(handler);
        QObject::connect(migration.migration(), &Migration::Migration::migrationFailed, [this](const QString& text) { told.append(text); });
        rest.setTimeout(1000);
        support.setWatchdogInterval(3000);
        support.setRetransmissionInterval(1000);
        migration.setWatchdogTimeout(1000);
        client.connectToServer();
    }
    // The verdict of one ticket, or -1 when none comes.
    int ticket(const QString& captcha)
    {
        QSignalSpy changed(&support, &Support::SupportManager::statusChanged);
        support.createSupportTicket(QStringLiteral("Slow writes"), QStringLiteral("user@example.org"), QStringLiteral("SN0"), captcha);
        const auto verdict = [&changed] { return changed.isEmpty() ? 0 : changed.last().at(0).toInt(); };
        return QTest::qWaitFor([&] { return verdict() > Support::PostingTicket; }, 8000) ? verdict() : -1;
    }
    // The machine's summary comes after the drive list: then the system drive is known.
    bool knowsMachine() { return system.drive(0) && system.drive(0)->hasOperatingSystem(); }

    Communication::NamedPipeClient client;
    Communication::Dispatcher dispatcher;
    Application::ServiceManager* service = nullptr;
    System::System system;
    System::SystemManager systemManager{&system};
    Smart::SmartManager smart{&system};
    Support::SupportServiceHandler supportHandler;
    REST::RestClient rest;
    CommunicationWeb::TarnAuthorizationService authorization;
    Migration::MigrationController migration;
    Support::SupportManager support;
    QStringList told;
    int exitCode = 0;
};

QString settingsFile() { return QSettings(QStringLiteral("BRANTEL"), QStringLiteral("KESTRAVIN")).fileName(); }
// The bytes in the file: the QSettings objects of one process share what any of them holds.
QByteArray settingsOnDisk() { QFile file(settingsFile()); return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray(); }

// Read-only for the owner; root writes through mode bits, so for root the file is made immutable.
bool lockSettings(bool locked)
{
    return geteuid() == 0 ? QProcess::execute(QStringLiteral("chattr"), {locked ? QStringLiteral("+i") : QStringLiteral("-i"), settingsFile()}) == 0
                          : QFile::setPermissions(settingsFile(), locked ? QFile::ReadOwner : QFile::ReadOwner | QFile::WriteOwner);
}

} // namespace

class TestFaultMatrix : public QObject
{
    Q_OBJECT

    QTemporaryDir m_ours, m_strangers;
    std::unique_ptr<BackendProcess> m_backend;
    std::unique_ptr<TrustedClient> m_admin;
    int m_port = 0;

    // (Re)starts the back-end on the port of the first start, so that the program's address stays.
    bool startBackend(const QString& certificates)
    {
        m_backend.reset();
        const QStringList port{QStringLiteral("--port"), QString::number(m_port)};
        m_backend = std::make_unique<BackendProcess>(certificates, QStringList{QStringLiteral("--quiet")} + (m_port ? port : QStringList()));
        return m_backend->start();
    }
    QString captcha()
    {
        m_admin->get(m_backend->api(QStringLiteral("captcha.php")));
        return m_admin->get(m_backend->admin(QStringLiteral("captcha"))).json().object().value(QStringLiteral("text")).toString();
    }
    int tickets() { return m_admin->get(m_backend->admin(QStringLiteral("tickets"))).json().array().size(); }

private slots:
    void initTestCase()
    {
        Logger::setConsoleEnabled(false);
        qRegisterMetaType<Message::Message::MessageType>();
        QString error;
        QVERIFY2(BackendProcess::makeCertificates(m_ours.path(), &error), qPrintable(error));
        QVERIFY2(BackendProcess::makeCertificates(m_strangers.path(), &error), qPrintable(error));
        QVERIFY(REST::addTrustedAuthority(m_ours.filePath(QStringLiteral("ca.pem"))));
        m_admin = std::make_unique<TrustedClient>(m_ours.filePath(QStringLiteral("ca.pem")));
        QVERIFY(startBackend(m_ours.path()));
        m_port = m_backend->port();
    }
    void cleanup()
    {
        if (m_backend && m_admin->remove(m_backend->admin(QStringLiteral("faults"))).status == 200)
            m_admin->remove(m_backend->admin(QStringLiteral("requests")));
        lockSettings(false);
        Logger::shutdown();
    }
    void matrix_data();
    void matrix();
};

void TestFaultMatrix::matrix_data()
{
    QTest::addColumn<int>("fault");
    QTest::addColumn<QStringList>("switches"); // of the simulated service, or the back-end's fault for every call
    QTest::addColumn<int>("exitCode");        // 0: stays up
    QTest::addColumn<QString>("told");        // what the user is shown, if anything
    QTest::addColumn<int>("verdict");         // of a ticket sent during the fault; 0: none sent

    QTest::newRow("service silent after the handshake") << int(ServiceSwitch) << QStringList{"--never", "SystemInfoRequest"} << 1 << QStringLiteral("COULD NOT COMMUNICATE WITH SERVICE.") << 0;
    QTest::newRow("service of another version") << int(ServiceSwitch) << QStringList{"--service-version", "1.2.4"} << 4 << QStringLiteral("SERVICE VERSION IS DIFFERENT THAN APPLICATION VERSION, REINSTALL APPLICATION") << 0;
    QTest::newRow("garbage between frames") << int(ServiceSwitch) << QStringList{"--garbage", "9"} << 0 << QString() << int(Support::Accepted);
    QTest::newRow("service killed in the copy") << int(KillInCopy) << QStringList{"--copy-step-ms", "300"} << 0 << QStringLiteral("SERVICE IS NOT RESPONSIVE.") << 0;
    QTest::newRow("service restarted") << int(RestartService) << QStringList() << 0 << QString() << 0;
    QTest::newRow("back-end down") << int(BackendDown) << QStringList() << 0 << QString() << int(Support::ConnectionFailed);
    QTest::newRow("back-end slow") << int(BackendSwitch) << QStringList{R"({"kind":"delay","ms":2500})"} << 0 << QString() << int(Support::TimedOut);
    QTest::newRow("back-end answers 401") << int(BackendSwitch) << QStringList{R"({"kind":"error","status":401})"} << 0 << QString() << int(Support::TimedOut);
    QTest::newRow("back-end answers 500") << int(BackendSwitch) << QStringList{R"({"kind":"error","status":500})"} << 0 << QString() << int(Support::Rejected);
    QTest::newRow("back-end redirects") << int(BackendSwitch) << QStringList{R"({"kind":"redirect"})"} << 0 << QString() << int(Support::Rejected);
    QTest::newRow("certificate of another authority") << int(OtherAuthority) << QStringList() << 0 << QString() << int(Support::ConnectionFailed);
    QTest::newRow("log folder full") << int(LogFull) << QStringList() << 0 << QString() << int(Support::Accepted);
    QTest::newRow("settings file read-only") << int(SettingsLocked) << QStringList() << 0 << QString() << int(Support::Accepted);
}

void TestFaultMatrix::matrix()
{
    QFETCH(int, fault);
    QFETCH(QStringList, switches);
    QFETCH(int, exitCode);
    QFETCH(QString, told);
    QFETCH(int, verdict);

    SettingsManager::setValue(QStringLiteral("Application"), QStringLiteral("Language"), QStringLiteral("pl"));
    const QString log = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/Velmora.log");
    if (fault == LogFull) {
        // Every write fails with "no space left on device", as on a full disk; opening still works.
        QDir().mkpath(QFileInfo(log).path());
        QFile::remove(log);
        QVERIFY(QFile::link(QStringLiteral("/dev/full"), log));
    }
    Logger::initialize(Logger::Debug);
    // A container may deny root the immutable flag; then this row cannot be made here.
    if (fault == SettingsLocked && !lockSettings(true))
        QSKIP("the settings file cannot be made read-only here");

    auto peer = std::make_unique<SimulatorProcess>((fault == BackendSwitch ? QStringList() : switches) + QStringList{"--scenario", "migration"});
    QVERIFY2(peer->start(), qPrintable(peer->errorOutput()));
    Program program(peer->name(), m_backend->api(QString()));
    const int ticketsBefore = tickets();
    if (exitCode) {
        // One answer stops the watchdog, so a service gone silent is noticed at the next request: a reload.
        QTRY_VERIFY_WITH_TIMEOUT(program.service->status() >= Application::ServiceManager::Failed, 8000);
        program.systemManager.sendSystemInfoRequest();
        QTRY_COMPARE_WITH_TIMEOUT(program.exitCode, exitCode, 8000);
        QCOMPARE(program.told, QStringList{told});
        return; // the program has ended: the next start is its recovery
    }
    QTRY_VERIFY_WITH_TIMEOUT(program.knowsMachine(), 8000);

    if (fault == KillInCopy) {
        Migration::Migration* run = program.migration.migration();
        run->setSourceDriveId(0);
        run->setDestDriveId(run->destinationDrives().first()->id());
        QTRY_VERIFY_WITH_TIMEOUT(run->destinationDrive()->allPartitionsInitialized(), 8000);
        run->startMigration();
        QTRY_COMPARE_WITH_TIMEOUT(run->migrationStep(), Migration::CopyingFiles, 8000);
    }
    QSignalSpy reconnected(&program.client, &Communication::NamedPipeClient::connectedToServer);
    if (fault == KillInCopy || fault == RestartService) {
        peer.reset();
        QTRY_COMPARE_WITH_TIMEOUT(program.told.size(), told.isEmpty() ? 0 : 1, 3000);
        peer = std::make_unique<SimulatorProcess>(QStringList{"--scenario", "migration"}, program.client.serverName());
        QVERIFY(peer->start());
        QTRY_COMPARE_WITH_TIMEOUT(reconnected.count(), 1, 3000);
    }
    // The user has the form's picture before the fault comes.
    const QString text = captcha();
    if (fault == BackendSwitch)
        QCOMPARE(m_admin->post(m_backend->admin(QStringLiteral("faults")), switches.first().toUtf8()).status, 201);
    if (fault == BackendDown)
        m_backend.reset();
    if (fault == OtherAuthority)
        QVERIFY(startBackend(m_strangers.path()));
    if (fault == SettingsLocked) { // the change stays in the program until the file takes it
        SettingsManager::setValue(QStringLiteral("Application"), QStringLiteral("Language"), QStringLiteral("uk"));
        QVERIFY(settingsOnDisk().contains("Language=pl"));
    }
    if (verdict)
        QCOMPARE(program.ticket(text), verdict);
    const int calls = m_backend ? m_admin->get(m_backend->admin(QStringLiteral("requests"))).json().array().size() : 0;
    QVERIFY2(calls < 20, qPrintable(QStringLiteral("%1 calls: a refused one is repeated many times a second").arg(calls)));

    // The fault ends.
    if (fault == BackendSwitch)
        QCOMPARE(m_admin->remove(m_backend->admin(QStringLiteral("faults"))).status, 200);
    if (fault == BackendDown || fault == OtherAuthority)
        QVERIFY(startBackend(m_ours.path()));
    if (fault == SettingsLocked)
        QVERIFY(lockSettings(false));
    const int ticketsAfterFault = fault == BackendDown || fault == OtherAuthority ? 0 : ticketsBefore + (verdict == Support::Accepted);
    QTest::qWait(500); // room for anything queued to go out again
    QCOMPARE(tickets(), ticketsAfterFault);
    QTRY_VERIFY_WITH_TIMEOUT(program.knowsMachine(), 8000);
    QCOMPARE(program.ticket(captcha()), int(Support::Accepted));
    QCOMPARE(tickets(), ticketsAfterFault + 1);
    QCOMPARE(program.told, told.isEmpty() ? QStringList() : QStringList{told}); // and no box ended the program
    SettingsManager::setValue(QStringLiteral("Application"), QStringLiteral("AutoStart"), true);
    QVERIFY(settingsOnDisk().contains(fault == SettingsLocked ? "Language=uk" : "Language=pl"));
    if (fault == LogFull) { // the next start writes its log again
        Logger::shutdown();
        QVERIFY(QFile::remove(log) && Logger::initialize(Logger::Debug) == 0);
        Logger::warning(QString(), QStringLiteral("Disk has room again"));
        QFile written(log);
        QVERIFY(written.open(QIODevice::ReadOnly) && written.readAll().contains("Disk has room again"));
    }
}

KESTRAVIN_TEST_MAIN(TestFaultMatrix)
#include "tst_faultmatrix.moc"
