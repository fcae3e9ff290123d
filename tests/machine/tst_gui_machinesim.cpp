#include <QApplication>

#include "SimulatorProcess.h"
#include "WidgetShots.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "gui/ApplicationFonts.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowWinFrame.h"
#include "gui/MenuBar.h"
#include "gui/pages/HomePage.h"
#include "gui/pages/PerformanceCheckPage.h"
#include "gui/pages/SSDStatusPage.h"
#include "gui/pages/SmartParametersPage.h"
#include "gui/widgets/ParamValueWidget.h"
#include "logger/Logger.h"
#include "performance/PerformanceCheck.h"
#include "rest/RestClient.h"
#include "smart/SmartManager.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/System.h"
#include "system/SystemManager.h"
#include "update/FirmwareUpdate.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>

using namespace Velmora;
using Velmora::Gui::Page;

// The main window with its pages, fed by the simulated service over a real pipe and wired as the
// program wires them; the user's way through home, status, SMART and speed test. The pictures of
// the pages stay in the suite's temporary directory.
class TestGuiMachineSim : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void homeListsTheScenariosDrives();
    void statusPageShowsTheChosenDrive();
    void smartPageShowsTheReadOut();
    void performancePageRunsTheTest();

private:
    template <typename T>
    T* current() const
    {
        return qobject_cast<T*>(m_window->findChild<QStackedWidget*>(QStringLiteral("contentStackedWidget"))
                                    ->currentWidget());
    }
    QString rowValue(const QWidget* page, const char* name) const
    {
        return page->findChild<Gui::ParamValueWidget*>(QString::fromLatin1(name))->value();
    }
    void shoot(const QString& name);

    SimulatorProcess* m_simulator = nullptr;
    System::System* m_system = nullptr;
    Gui::MainWindow* m_window = nullptr;
    Gui::MainWindowWinFrame* m_frame = nullptr;
};

void TestGuiMachineSim::initTestCase()
{
    Logger::setConsoleEnabled(false);
    Gui::registerApplicationFonts();
    m_simulator = new SimulatorProcess({ QStringLiteral("--benchmark-ms"), QStringLiteral("5"),
        QStringLiteral("--scan-step-ms"), QStringLiteral("10"), QStringLiteral("--scan-steps"), QStringLiteral("3") });
    QVERIFY2(m_simulator->start(), qPrintable(m_simulator->errorOutput()));

    auto* client = new Communication::NamedPipeClient(this);
    client->setServerName(m_simulator->name());
    auto* dispatcher = new Communication::Dispatcher(this);
    connect(client, &Communication::NamedPipeClient::connectedToServer, dispatcher,
        &Communication::Dispatcher::clientConnected);
    connect(client, &Communication::NamedPipeClient::messageReceived, dispatcher,
        &Communication::Dispatcher::dispatchMessage);
    connect(dispatcher, &Communication::Dispatcher::sendMessageToClient, client,
        &Communication::NamedPipeClient::sendMessage);

    m_system = new System::System(this);
    auto* systemManager = new System::SystemManager(m_system, this);
    auto* smartManager = new Smart::SmartManager(m_system, this);
    auto* performance = new Performance::PerformanceCheck(m_system, this);
    for (Communication::Handler* handler : std::initializer_list<Communication::Handler*> { systemManager,
             smartManager, performance })
        dispatcher->registerHandler(handler);
    // No back-end listens there: the firmware page shows what it knows without an answer.
    auto* rest = new REST::RestClient(QUrl(QStringLiteral("https://127.0.0.1:9/kestravin/public/api/")), nullptr, this);
    auto* authorization = new CommunicationWeb::TarnAuthorizationService(rest, this);
    auto* firmwareUpdate = new Update::FirmwareUpdate(m_system, rest, authorization, this);

    Gui::MainWindow::Collaborators collaborators;
    collaborators.performanceCheck = performance;
    collaborators.systemManager = systemManager;
    collaborators.system = m_system;
    collaborators.firmwareUpdate = firmwareUpdate;
    m_frame = new Gui::MainWindowWinFrame(collaborators);
    m_window = m_frame->mainWindow();
    m_frame->setScreenAreas([] { return QList<QRect> { QRect(0, 0, 1920, 1080) }; });
    m_frame->show();

    QSignalSpy added(m_system, &System::System::driveAdded);
    client->connectToServer();
    QTRY_VERIFY_WITH_TIMEOUT(added.count() >= 4, 10000);
}

void TestGuiMachineSim::cleanupTestCase()
{
    delete m_frame;
    delete m_simulator;
}

void TestGuiMachineSim::shoot(const QString& name)
{
    const QImage shot = grabWidget(*m_frame, name);
    QCOMPARE(shot.size(), QSize(1280, 1024));
}

void TestGuiMachineSim::homeListsTheScenariosDrives()
{
    auto* home = current<Gui::HomePage>();
    QVERIFY(home);
    auto* combo = home->findChild<QComboBox*>(QStringLiteral("DriveSelectComboBox"));
    // The placeholder, then every drive but the USB stick.
    QCOMPARE(combo->count(), 4);
    QCOMPARE(combo->itemText(0), QStringLiteral("CHOOSE YOUR DRIVE"));
    for (int i = 1; i < combo->count(); ++i) {
        const System::Drive* drive = m_system->drive(combo->itemData(i).toInt());
        QVERIFY(drive);
        QVERIFY(!drive->isUsb());
        QCOMPARE(combo->itemText(i), drive->displayText(true));
    }
    shoot(QStringLiteral("program-home"));
}

void TestGuiMachineSim::statusPageShowsTheChosenDrive()
{
    auto* combo = current<Gui::HomePage>()->findChild<QComboBox*>(QStringLiteral("DriveSelectComboBox"));
    // The maker's SATA drive, which holds the system and data.
    const int makers = combo->findText(QStringLiteral("BRANTEL Corvid S3"), Qt::MatchStartsWith);
    QVERIFY(makers > 0);
    const int driveId = combo->itemData(makers).toInt();
    combo->setCurrentIndex(makers);

    auto* status = current<Gui::SSDStatusPage>();
    QVERIFY(status);
    QCOMPARE(m_system->currentDriveId(), driveId);
    const System::Drive* drive = m_system->drive(driveId);
    QCOMPARE(rowValue(status, "DriveModel"), drive->model());
    QCOMPARE(rowValue(status, "DriveFirmware"), drive->firmwareVersion());
    QVERIFY(m_window->findChild<QWidget*>(QStringLiteral("menu"))->isVisible());
    QCOMPARE(m_window->findChild<QComboBox*>(QStringLiteral("currentDrive"))->currentData().toInt(), driveId);

    // A scan of the file types ends with the time of the snapshot beside "ANALYZED:".
    auto* reload = status->findChild<QPushButton*>(QStringLiteral("reload_button"));
    QTRY_VERIFY_WITH_TIMEOUT(reload->isEnabled(), 5000);
    reload->click();
    auto* analyzed = status->findChild<QLabel*>(QStringLiteral("label_analyzed"));
    QTRY_VERIFY_WITH_TIMEOUT(!analyzed->text().contains(QStringLiteral("NO DATA")) && reload->isEnabled(), 10000);
    QTest::qWait(600); // the charts' half-second animation, for the picture only
    shoot(QStringLiteral("program-status"));
}

void TestGuiMachineSim::smartPageShowsTheReadOut()
{
    m_window->findChild<Gui::MenuBar*>(QStringLiteral("menu"))->button(Page::SmartParametersId)->click();
    auto* smart = current<Gui::SmartParametersPage>();
    QVERIFY(smart);
    // The maker's drive answers every row with a number.
    QTRY_VERIFY2_WITH_TIMEOUT(rowValue(smart, "life_param").endsWith(QLatin1Char('%')),
        qPrintable(rowValue(smart, "life_param")), 5000);
    for (const char* row : { "temp_param", "powerOnHours_param", "powerCycles_param", "GBWritten_param" })
        QVERIFY2(rowValue(smart, row) != QStringLiteral("NOT SUPPORTED"), row);
    QVERIFY(rowValue(smart, "temp_param").endsWith(QStringLiteral(" °C")));
    shoot(QStringLiteral("program-smart"));
}

void TestGuiMachineSim::performancePageRunsTheTest()
{
    m_window->findChild<Gui::MenuBar*>(QStringLiteral("menu"))->button(Page::PerformanceTestId)->click();
    auto* page = current<Gui::PerformanceCheckPage>();
    QVERIFY(page);
    auto* toggle = page->findChild<QPushButton*>(QStringLiteral("toggleTest"));
    QCOMPARE(toggle->text(), QStringLiteral("START"));
    toggle->click();
    QCOMPARE(toggle->text(), QStringLiteral("CANCEL"));
    auto* status = page->findChild<QLabel*>(QStringLiteral("testStatus"));
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), QStringLiteral("TEST FINISHED"), 10000);
    QCOMPARE(toggle->text(), QStringLiteral("START"));
    QCOMPARE(page->findChild<QLabel*>(QStringLiteral("testProgress"))->text(), QStringLiteral("100%"));
    for (const char* result : { "readResult", "writeResult" }) {
        const QString text = page->findChild<QLabel*>(QString::fromLatin1(result))->text();
        QVERIFY2(text.endsWith(QStringLiteral(" MB/s")) && text.section(QLatin1Char(' '), 0, 0).toDouble() > 0,
            qPrintable(text));
    }
    shoot(QStringLiteral("program-performance"));
}

KESTRAVIN_GUI_TEST_SUITE(TestGuiMachineSim)
#include "tst_gui_machinesim.moc"
