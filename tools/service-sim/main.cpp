// Kestravin_Service, simulated: a stand-in for the privileged service that listens on the pipe
// and answers the program's requests from a scenario of a machine with drives.

#include "BenchmarkRequests.h"
#include "ClientConnection.h"
#include "FileCategoryRequests.h"
#include "FilterRequests.h"
#include "LogFileRequests.h"
#include "MigrationRequests.h"
#include "RequestRouter.h"
#include "ScenarioLoader.h"
#include "ServiceServer.h"
#include "SimulatorOptions.h"
#include "SmartRequests.h"
#include "SystemRequests.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include <QCoreApplication>

#include <cstdio>

using namespace Velmora::ServiceSim;

namespace {

// Exit codes: 0 normal end, 1 bad command line or scenario, 2 the name is taken or unusable,
// 3 ended on purpose by --exit-after.
constexpr int BadArguments = 1;
constexpr int CannotListen = 2;

QList<int> defaultVersion()
{
    QList<int> version;
    for (const QString& part : QStringLiteral(KESTRAVIN_SERVICE_VERSION).split(QLatin1Char('.')))
        version << part.toInt();
    return version;
}

void printLine(FILE* stream, const QString& text)
{
    std::fprintf(stream, "%s\n", text.toLocal8Bit().constData());
    std::fflush(stream);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("BRANTEL"));
    QCoreApplication::setApplicationName(QStringLiteral("KESTRAVIN_SERVICE"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTRAVIN_SERVICE_VERSION));

    SimulatorOptions options;
    QString error;
    if (!options.parse(QCoreApplication::arguments(), &error)) {
        printLine(stderr, error);
        return BadArguments;
    }
    if (options.listScenarios) {
        for (const QString& name : ScenarioLoader::builtInNames())
            printLine(stdout, name);
        return 0;
    }

    Velmora::Logger::setConsoleEnabled(!options.quiet);
    Velmora::Logger::initialize(Velmora::Logger::Debug);

    Machine machine;
    FaultPlan& faults = options.faults;
    if (!ScenarioLoader::load(options.scenario, &machine, &faults, &error)) {
        printLine(stderr, error);
        return BadArguments;
    }
    const QList<int> version = faults.version.isEmpty() ? defaultVersion() : faults.version;

    RequestRouter router(faults);
    router.addGroup(new SystemRequests(machine, options.timings, version));
    router.addGroup(new SmartRequests(machine, options.timings));
    router.addGroup(new FileCategoryRequests(machine, options.timings));
    router.addGroup(new BenchmarkRequests(machine, options.timings, options.seed));
    router.addGroup(new MigrationRequests(machine, options.timings));
    router.addGroup(new FilterRequests(machine, options.timings));
    router.addGroup(new LogFileRequests(machine, options.timings));

    // A pulled drive leaves the drive list, and the client hears of it at once, as the service
    // tells the program of a device change.
    router.setUnplugHandler([&machine](quint32 driveId, ClientConnection* client) {
        if (machine.removeDrive(driveId))
            client->send(Velmora::Message::Message::SystemInfo, machine.systemInfo());
        else
            Velmora::Logger::warning(QString(), QStringLiteral("No drive %1 to unplug").arg(driveId));
    });

    ServiceServer server(faults, options.timings, &router);
    if (!server.start(options.serverName, &error)) {
        Velmora::Logger::error(QString(), error);
        printLine(stderr, error);
        return CannotListen;
    }
    Velmora::Logger::info(QString(), QStringLiteral("Service %1.%2.%3 up with scenario \"%4\", %5 drives")
                                         .arg(version.value(0)).arg(version.value(1)).arg(version.value(2))
                                         .arg(options.scenario).arg(machine.systemInfo().drives_size()));
    // The line tests and scripts wait for before they connect.
    printLine(stdout, QStringLiteral("Listening on %1").arg(server.fullServerName()));
    return QCoreApplication::exec();
}
