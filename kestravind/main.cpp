// kestravind: the privileged service for Linux. Listens on the service socket and answers the
// program's requests from the machine it runs on; runs as root, in the foreground, logging to
// stderr (the journal under systemd).

#include "engines/MachineEngines.h"
#include "server/AccessPolicy.h"
#include "server/BuiltInHandlers.h"
#include "server/DaemonOptions.h"
#include "server/LogFile.h"
#include "server/Log.h"
#include "server/RequestRouter.h"
#include "server/ServiceListener.h"
#include "server/TerminationSignals.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <csignal>
#include <cstdlib>
#include <cstdio>

using namespace Velmora::Daemon;

namespace {

// Exit codes: 0 normal end, 1 bad command line, 2 the socket or the work folder cannot be made.
constexpr int BadArguments = 1;
constexpr int CannotListen = 2;
// Running requests get this long to see their stop flag when the service is told to end.
constexpr int StopGraceMs = 5000;

ServiceVersion serviceVersion()
{
    const QStringList parts = QStringLiteral(KESTRAVIND_VERSION).split(QLatin1Char('.'));
    return {parts.value(0).toUInt(), parts.value(1).toUInt(), parts.value(2).toUInt()};
}

} // namespace

int main(int argc, char* argv[])
{
    // A client that hangs up under a write must cost an error code, not the process.
    std::signal(SIGPIPE, SIG_IGN);
    qSetMessagePattern(QStringLiteral("%{if-category}%{category}: %{endif}%{message}"));
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kestravind"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTRAVIND_VERSION));

    DaemonOptions options;
    QString error;
    if (!options.parse(QCoreApplication::arguments(), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return BadArguments;
    }

    if (!options.logDirectory.isEmpty() && !LogFile::install(options.logDirectory, &error))
        qCWarning(serverLog, "%s", qPrintable(error));

    const AccessPolicy policy(options.group);
    if (!policy.groupExists())
        qCWarning(serverLog, "No group \"%s\": only root may run speed tests and change settings", qPrintable(options.group));

    // A migration mounts partitions in a folder of the service's own, which only root may enter.
    QByteArray workFolder = QFile::encodeName(QDir::tempPath() + QStringLiteral("/kestravind-XXXXXX"));
    if (!::mkdtemp(workFolder.data())) {
        qCCritical(serverLog, "Cannot make a work folder in %s", qPrintable(QDir::tempPath()));
        return CannotListen;
    }
    // Before the router: its workers use the engines until the router has waited for them.
    MachineEngines engines({options.includeLoop, options.logDirectory, QFile::decodeName(workFolder)});
    RequestRouter router(policy);
    router.addHandler(versionHandler(serviceVersion()));
    engines.plugInto(router);
    // What no engine answers is turned down; a type keeps the first handler it was given.
    router.addHandler(migrationRefusals());

    ServiceListener listener(router, options.limits);
    if (!listener.listen(options.socketPath, &error)) {
        qCCritical(serverLog, "%s", qPrintable(error));
        ::rmdir(workFolder.constData());
        return CannotListen;
    }
    TerminationSignals termination;
    if (!termination.install())
        qCWarning(serverLog, "Cannot catch termination signals; a stop will not be clean");
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &app, [](int number) {
        qCInfo(serverLog, "Signal %d: ending the service", number);
        QCoreApplication::quit();
    });
    qCInfo(serverLog, "Service %s up", KESTRAVIND_VERSION);

    const int result = QCoreApplication::exec();
    listener.shutDown();
    if (!router.waitForWorkers(StopGraceMs))
        qCWarning(serverLog, "Requests still running after %d ms; ending without them", StopGraceMs);
    // Empty unless a mount was left behind, and then it must stay: nothing is removed recursively.
    ::rmdir(workFolder.constData());
    return result;
}
