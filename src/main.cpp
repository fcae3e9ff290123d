#include "ads/AdsManager.h"
#include "application/Application.h"
#include "application/ServiceManager.h"
#include "application/SingleInstanceGuard.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadManager.h"
#include "gui/ApplicationFonts.h"
#include "gui/FirstPaint.h"
#include "gui/GuiResources.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowWinFrame.h"
#include "logger/Logger.h"
#include "migration/MigrationController.h"
#include "performance/PerformanceCheck.h"
#include "platform/ServiceChoice.h"
#include "rest/RestClient.h"
#include "rest/TrustedAuthority.h"
#include "smart/SmartManager.h"
#include "support/SupportCaptcha.h"
#include "support/SupportManager.h"
#include "support/SupportServiceHandler.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "system/SystemManager.h"
#include "update/ApplicationUpdate.h"
#include "update/AutomaticUpdateCheck.h"
#include "update/FirmwareUpdate.h"

#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <limits>

using namespace Velmora;

// Creates and wires the long-lived objects in their fixed order; nothing else does. The objects
// live to the end of the process.
int main(int argc, char* argv[])
{
    Gui::initGuiResources();
    Gui::startReadingFontConfiguration();
    // Everything is drawn by the raster engine; loading the OpenGL driver at start would only
    // cost time and some 50 MB. A user's own choice stands.
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    // Qt's network layer otherwise looks at the machine's network configurations every 10 s, which
    // wakes an idle program in the tray for nothing: it never picks a configuration.
    if (!qEnvironmentVariableIsSet("QT_BEARER_POLL_TIMEOUT"))
        qputenv("QT_BEARER_POLL_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
    auto* app = new Application::Application(argc, argv);

    Logger::initialize(Logger::Debug);
    Logger::warning(QString(), QStringLiteral("Starting application: %1 [%2]")
                                   .arg(QCoreApplication::applicationVersion(), QStringLiteral("1.1.4-")));

    auto* guard = new Application::SingleInstanceGuard(app);
    if (guard->isOtherInstanceRunning()) {
        Logger::debug(QString(), QStringLiteral("Other instance detected. Shutting down."));
        guard->notifyOtherInstance();
        app->quit();
        // The first fonts are being read on a thread, which must not outlive the font database.
        app->finishLoadingFirstFonts();
        return 0;
    }
    Logger::debug(QString(), QStringLiteral("No instance detected."));
    guard->startLocalServer();

    const QString serverName =
        Platform::ServiceChoice::serverName(QLatin1String(Communication::NamedPipeClient::DefaultServerName));
    auto* pipeClient = new Communication::NamedPipeClient(app);
    pipeClient->setServerName(serverName);
    auto* dispatcher = new Communication::Dispatcher(app);
    QObject::connect(pipeClient, &Communication::NamedPipeClient::connectedToServer,
        dispatcher, &Communication::Dispatcher::clientConnected);
    QObject::connect(pipeClient, &Communication::NamedPipeClient::messageReceived,
        dispatcher, &Communication::Dispatcher::dispatchMessage);
    QObject::connect(dispatcher, &Communication::Dispatcher::sendMessageToClient,
        pipeClient, &Communication::NamedPipeClient::sendMessage);

    auto* serviceManager = new Application::ServiceManager(app, nullptr, serverName);
    dispatcher->registerHandler(serviceManager);
    QObject::connect(pipeClient, &Communication::NamedPipeClient::messageReceived,
        serviceManager, &Application::ServiceManager::onMessageReceived);
    QObject::connect(pipeClient, &Communication::NamedPipeClient::sendingMessage,
        serviceManager, &Application::ServiceManager::onMessageSend);
    QObject::connect(serviceManager, &Application::ServiceManager::serviceListening,
        pipeClient, &Communication::NamedPipeClient::connectToServerNow);

    const QString extraAuthority = QStringLiteral(KESTRAVIN_BACKEND_CA);
    if (!extraAuthority.isEmpty() && QFileInfo::exists(extraAuthority))
        REST::trustAuthorityBeforeFirstCall(extraAuthority);
    auto* network = new QNetworkAccessManager(app);
    auto* restClient = new REST::RestClient(QUrl(QStringLiteral(KESTRAVIN_BACKEND_URL)), network, app);
    auto* authorization = new CommunicationWeb::TarnAuthorizationService(restClient, app);

    auto* system = new System::System(app);
    System::SupportedDrivesManager::initialize(restClient, authorization);

    auto* systemManager = new System::SystemManager(system, app);
    dispatcher->registerHandler(systemManager);
    auto* smartManager = new Smart::SmartManager(system, app);
    dispatcher->registerHandler(smartManager);
    QObject::connect(system, &System::System::notifyError, app,
        qOverload<QString, QVariant>(&Application::Application::showSystemTrayCriticalMessage));
    QObject::connect(app, &Application::Application::setCurrentDrive, system, &System::System::setCurrentDrive);

    auto* downloadManager = new Download::DownloadManager(network, app);
    auto* supportServiceHandler = new Support::SupportServiceHandler(app);
    dispatcher->registerHandler(supportServiceHandler);
    auto* supportManager = new Support::SupportManager(systemManager, smartManager, supportServiceHandler, restClient,
        authorization, app);
    auto* supportCaptcha = new Support::SupportCaptcha(downloadManager, restClient->baseUrl(), app);
    auto* firmwareUpdate = new Update::FirmwareUpdate(system, restClient, authorization, app);
    auto* applicationUpdate = new Update::ApplicationUpdate(restClient, authorization, downloadManager, app);
    new Update::AutomaticUpdateCheck(system, QList<Update::UpdateInterface*>{applicationUpdate, firmwareUpdate}, app);
    auto* adsManager = new Ads::AdsManager(restClient, authorization, downloadManager, app);

    auto* performanceCheck = new Performance::PerformanceCheck(system, app);
    dispatcher->registerHandler(performanceCheck);
    auto* migrationController = new Migration::MigrationController(systemManager, system, app);
    dispatcher->registerHandler(migrationController);

    Gui::MainWindow::Collaborators collaborators;
    collaborators.performanceCheck = performanceCheck;
    collaborators.systemManager = systemManager;
    collaborators.system = system;
    collaborators.migrationController = migrationController;
    collaborators.applicationUpdate = applicationUpdate;
    collaborators.firmwareUpdate = firmwareUpdate;
    collaborators.supportManager = supportManager;
    collaborators.supportCaptcha = supportCaptcha;
    collaborators.adsManager = adsManager;
    app->finishLoadingFirstFonts();
    auto* frame = new Gui::MainWindowWinFrame(collaborators);
    Gui::MainWindow* mainWindow = frame->mainWindow();
    QObject::connect(mainWindow, &Gui::MainWindow::applicationUpdateAvailable, app,
        qOverload<QString, QVariant>(&Application::Application::showSystemTrayInformationMessage));
    QObject::connect(app, &Application::Application::showDriveStatusPage, mainWindow, &Gui::MainWindow::showDriveStatusPage);
    QObject::connect(app, &Application::Application::showMainWindow, frame, &Gui::MainWindowWinFrame::show);
    QObject::connect(guard, &Application::SingleInstanceGuard::newInstanceDetected, frame, &Gui::MainWindowWinFrame::show);
    // What the first window does not need waits until it is on the screen: the tray icon (which
    // looks for a desktop bus first), the network stack's plugins, TLS and the other font faces.
    // Started minimized, the tray icon is all there is to show.
    if (Application::Application::hasMinimizedOption(QCoreApplication::arguments()))
        app->showTrayIcon();
    else
        frame->show();
    Gui::runAfterFirstPaint(frame, app, [app, network] {
        app->showTrayIcon();
        // Only a request answered from the cache wakes the network stack without loading TLS.
        QNetworkRequest wakeUp{QUrl()};
        wakeUp.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysCache);
        network->get(wakeUp)->deleteLater();
        app->loadRemainingFonts();
        REST::prepareTls();
    });

    pipeClient->connectToServer();
    const int result = Application::Application::exec();

    Logger::warning(QString(), QStringLiteral("Closing application"));
    System::SupportedDrivesManager::release();
    // The application object is never destroyed, so the guard would keep its system-wide lock
    // objects past the end of the process, and a later start could take them for a running copy.
    delete guard;
    return result;
}
