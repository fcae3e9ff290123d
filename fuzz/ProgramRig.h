#pragma once

// The program's receiving side as main() wires it: the pipe client, the dispatcher and every
// handler of the service link over one drive model. The service control is a stand-in that says
// the service runs, so that nothing is started or installed, and the error box and the exit are
// disarmed so that a version mismatch is logged rather than ending the process.

#include "application/ServiceManager.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "migration/MigrationController.h"
#include "performance/PerformanceCheck.h"
#include "platform/ServiceControl.h"
#include "smart/SmartManager.h"
#include "support/SupportServiceHandler.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QObject>
#include <memory>

namespace Velmora::Fuzz {

class RunningServiceControl : public Platform::ServiceControl
{
public:
    State query() override { return State::Running; }
    QString installCommand() const override { return QString(); }
    QString startCommand() const override { return QString(); }
    CommandResult install(int) override { return {}; }
    void start(int, Finished) override {}
};

struct ProgramRig {
    explicit ProgramRig(QObject* owner)
        : client(new Communication::NamedPipeClient(owner))
        , dispatcher(new Communication::Dispatcher(owner))
        , system(new System::System(owner))
        , serviceManager(new Application::ServiceManager(owner, std::make_unique<RunningServiceControl>()))
        , systemManager(new System::SystemManager(system, owner))
        , smartManager(new Smart::SmartManager(system, owner))
        , supportServiceHandler(new Support::SupportServiceHandler(owner))
        , performanceCheck(new Performance::PerformanceCheck(system, owner))
        , migrationController(new Migration::MigrationController(systemManager, system, owner))
    {
        using Communication::Dispatcher;
        using Communication::NamedPipeClient;
        serviceManager->setCriticalMessage([](const QString&, const QString&) {});
        serviceManager->setExit([](int) {});
        QObject::connect(client, &NamedPipeClient::connectedToServer, dispatcher, &Dispatcher::clientConnected);
        QObject::connect(client, &NamedPipeClient::messageReceived, dispatcher, &Dispatcher::dispatchMessage);
        QObject::connect(dispatcher, &Dispatcher::sendMessageToClient, client, &NamedPipeClient::sendMessage);
        QObject::connect(client, &NamedPipeClient::messageReceived, serviceManager,
            &Application::ServiceManager::onMessageReceived);
        dispatcher->registerHandler(serviceManager);
        dispatcher->registerHandler(systemManager);
        dispatcher->registerHandler(smartManager);
        dispatcher->registerHandler(supportServiceHandler);
        dispatcher->registerHandler(performanceCheck);
        dispatcher->registerHandler(migrationController);
    }

    Communication::NamedPipeClient* client;
    Communication::Dispatcher* dispatcher;
    System::System* system;
    Application::ServiceManager* serviceManager;
    System::SystemManager* systemManager;
    Smart::SmartManager* smartManager;
    Support::SupportServiceHandler* supportServiceHandler;
    Performance::PerformanceCheck* performanceCheck;
    Migration::MigrationController* migrationController;
};

} // namespace Velmora::Fuzz
