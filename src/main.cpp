#include "application/Logger.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QCoreApplication>

using namespace Velmora;

int main(int argc, char* argv[])
{
    auto* app = new QCoreApplication(argc, argv);
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

    auto* system = new System::System(app);
    auto* systemManager = new System::SystemManager(system, app);
    dispatcher->registerHandler(systemManager);

    pipeClient->connectToServer();
    const int result = QCoreApplication::exec();

    Logger::warning(QString(), QStringLiteral("Closing application"));
    return result;
}
