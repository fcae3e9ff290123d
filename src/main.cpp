#include "application/Logger.h"
#include "application/ServiceManager.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "performance/PerformanceCheck.h"
#include "smart/SmartManager.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QApplication>

using namespace Velmora;

// Creates and wires the long-lived objects in their fixed order; nothing else does. The objects
// live to the end of the process.
int main(int argc, char* argv[])
{
    auto* app = new QApplication(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("BRANTEL"));
    QCoreApplication::setApplicationName(QStringLiteral("KESTRAVIN"));

    Logger::initialize(Logger::Debug);
    Logger::warning(QString(), QStringLiteral("Starting application: %1 [%2]")
                                   .arg(QCoreApplication::applicationVersion(), QStringLiteral("1.1.4-")));

    auto* pipeClient = new Communication::NamedPipeClient(app);
    auto* dispatcher = new Communication::Dispatcher(app);
    QObject::connect(pipeClient, &Communication::NamedPipeClient::connectedToServer,
        dispatcher, &Communication::Dispatcher::clientConnected);
    QObject::connect(pipeClient, &Communication::NamedPipeClient::messageReceived,
        dispatcher, &Communication::Dispatcher::dispatchMessage);
    QObject::connect(dispatcher, &Communication::Dispatcher::sendMessageToClient,
        pipeClient, &Communication::NamedPipeClient::sendMessage);

    auto* serviceManager = new Application::ServiceManager(app);
    dispatcher->registerHandler(serviceManager);
    QObject::connect(pipeClient, &Communication::NamedPipeClient::messageReceived,
        serviceManager, &Application::ServiceManager::onMessageReceived);
    QObject::connect(pipeClient, &Communication::NamedPipeClient::sendingMessage,
        serviceManager, &Application::ServiceManager::onMessageSend);

    auto* system = new System::System(app);
    System::SupportedDrivesManager::instance();

    auto* systemManager = new System::SystemManager(system, app);
    dispatcher->registerHandler(systemManager);
    auto* smartManager = new Smart::SmartManager(system, app);
    dispatcher->registerHandler(smartManager);

    auto* performanceCheck = new Performance::PerformanceCheck(system, app);
    dispatcher->registerHandler(performanceCheck);

    pipeClient->connectToServer();
    const int result = QApplication::exec();

    Logger::warning(QString(), QStringLiteral("Closing application"));
    System::SupportedDrivesManager::release();
    return result;
}
