// Feeds arbitrary bytes from a client through the simulated service's request side: the frame
// reader cuts them into requests and each goes through the router to the group that decodes and
// answers it, over a fresh copy of a built-in machine. The answers travel over a real local socket
// to a peer that drops them. Whatever a client sends, the service must neither crash nor hang.

#include "ClientConnection.h"
#include "ScenarioLoader.h"
#include "SimulatorRig.h"
#include "logger/Logger.h"
#include "message/FrameReader.h"
#include "message/Message.h"

#include <google/protobuf/stubs/logging.h>

#include <QCoreApplication>
#include <QLocalServer>
#include <QLocalSocket>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Velmora;
using namespace Velmora::ServiceSim;

namespace {

// Enough turns of the event loop for every instant task of a request to run to its end.
constexpr int EventLoopTurns = 24;

struct Wire {
    FaultPlan faults;
    QList<Machine> machines;
    QLocalSocket* peer = nullptr;
    ClientConnection* client = nullptr;
};

Wire* wire = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    auto* app = new QCoreApplication(*argc, *argv);
    // A line for every byte of garbage (what the log is asked to keep) would make the log the
    // thing measured; the texts are still composed, only not written.
    Logger::initialize(Logger::Error + 1);
    Logger::setConsoleEnabled(false);
    google::protobuf::SetLogHandler(nullptr);
    wire = new Wire;
    for (const QString& name : ScenarioLoader::builtInNames()) {
        Machine machine;
        FaultPlan ignored;
        QString error;
        if (ScenarioLoader::load(name, &machine, &ignored, &error))
            wire->machines << machine;
    }
    auto* server = new QLocalServer(app);
    const QString name = QStringLiteral("kestravin-fuzz-%1").arg(QCoreApplication::applicationPid());
    QLocalServer::removeServer(name);
    wire->peer = new QLocalSocket(app);
    if (wire->machines.isEmpty() || !server->listen(name)) {
        std::fprintf(stderr, "The service side cannot be set up\n");
        std::abort();
    }
    wire->peer->connectToServer(name);
    if (!wire->peer->waitForConnected(5000) || !server->waitForNewConnection(5000)) {
        std::fprintf(stderr, "No local connection to the service side\n");
        std::abort();
    }
    wire->client = new ClientConnection(server->nextPendingConnection(), 1, wire->faults, instantTimings(), app);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte chooses the machine.
    SimulatorRig service(wire->machines.at(data[0] % wire->machines.size()), wire->faults);
    Message::FrameReader reader;
    reader.append(QByteArray(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1)));
    Message::FrameReader::Frame frame;
    while (reader.next(frame)) {
        // That request copies the log into whatever folder it names: not a thing to let a fuzzer
        // do to the machine it runs on. Its decoding is one protobuf parse.
        if (frame.type == Message::Message::CopyLogFilesRequest)
            continue;
        service.router.route(wire->client, frame.type, frame.payload);
    }
    for (int turn = 0; turn < EventLoopTurns; ++turn)
        QCoreApplication::processEvents();
    wire->peer->readAll();
    return 0;
}
