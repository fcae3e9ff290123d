// Feeds arbitrary bytes from a client through kestravind's request side, as its engines-free build
// wires it: the connection cuts them into frames under its limits, the access policy looks at
// each, and the router decodes and answers it on the worker threads. The first byte chooses
// whether the client is root or an unprivileged user. Whatever a client sends, the service must
// neither crash nor hang.

#include "server/AccessPolicy.h"
#include "server/BuiltInHandlers.h"
#include "server/ClientConnection.h"
#include "server/RequestRouter.h"

#include <google/protobuf/stubs/logging.h>

#include <QCoreApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLoggingCategory>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace Velmora::Daemon;

namespace {

// Enough turns of the event loop for every answer to reach the socket.
constexpr int EventLoopTurns = 8;

struct Service {
    AccessPolicy policy{QStringLiteral("kestravin")};
    RequestRouter router{policy};
    QLocalServer server;
    ConnectionLimits limits;
};

Service* service = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    new QCoreApplication(*argc, *argv);
    // A line per garbage byte would make the log the thing measured.
    QLoggingCategory::setFilterRules(QStringLiteral("kestravind.*=false"));
    google::protobuf::SetLogHandler(nullptr);
    service = new Service;
    service->router.addHandler(versionHandler({1, 1, 1}));
    service->router.addHandler(migrationRefusals());
    service->router.addHandler(unwiredRequests(engineRequestTypes()));
    const QString name = QStringLiteral("kestravind-fuzz-%1").arg(QCoreApplication::applicationPid());
    QLocalServer::removeServer(name);
    if (!service->server.listen(name)) {
        std::fprintf(stderr, "The service side cannot be set up\n");
        std::abort();
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    QLocalSocket peer;
    peer.connectToServer(service->server.serverName());
    if (!peer.waitForConnected(5000) || !service->server.waitForNewConnection(5000)) {
        std::fprintf(stderr, "No local connection to the service side\n");
        std::abort();
    }
    PeerCredentials credentials;
    credentials.uid = data[0] % 2 == 0 ? 0 : 65534;
    credentials.gid = credentials.uid;
    credentials.pid = static_cast<pid_t>(QCoreApplication::applicationPid());
    {
        ClientConnection connection(service->server.nextPendingConnection(), 1, credentials, service->router,
            service->limits);
        connection.receive(QByteArray(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1)));
        // Short requests of a connection run one after the other, each started by the end of
        // the one before, which the event loop hears of.
        while (!connection.calls().idle()) {
            service->router.waitForWorkers(-1);
            QCoreApplication::processEvents();
        }
        for (int turn = 0; turn < EventLoopTurns; ++turn)
            QCoreApplication::processEvents();
    }
    // Workers of the connection just ended may still post; their answers find nobody.
    service->router.waitForWorkers(-1);
    QCoreApplication::processEvents();
    peer.readAll();
    return 0;
}
