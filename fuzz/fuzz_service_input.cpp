// Feeds arbitrary bytes from the service pipe through the program's receiving side: the frame
// parser (in reads of arbitrary sizes), the dispatcher and the handlers that parse payloads into
// the drive model. Whatever the peer sends, nothing may crash.

#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "logger/Logger.h"
#include "message/FrameReader.h"
#include "performance/PerformanceCheck.h"
#include "smart/SmartManager.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>

using namespace Velmora;

namespace {

struct Program {
    Program()
    {
        static int argc = 1;
        static char name[] = "fuzz";
        static char* argv[] = {name, nullptr};
        app = new QCoreApplication(argc, argv);
        Logger::initialize(Logger::Error);
        Logger::setConsoleEnabled(false);
        client = new Communication::NamedPipeClient(app);
        dispatcher = new Communication::Dispatcher(app);
        QObject::connect(client, &Communication::NamedPipeClient::messageReceived, dispatcher,
            &Communication::Dispatcher::dispatchMessage);
        system = new System::System(app);
        dispatcher->registerHandler(new System::SystemManager(system, app));
        dispatcher->registerHandler(new Smart::SmartManager(system, app));
        dispatcher->registerHandler(new Performance::PerformanceCheck(system, app));
    }

    QCoreApplication* app;
    Communication::NamedPipeClient* client;
    Communication::Dispatcher* dispatcher;
    System::System* system;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Program program;
    if (size == 0)
        return 0;
    // The first byte chooses how the rest is cut into reads.
    const size_t piece = 1 + data[0] % 64;
    const char* bytes = reinterpret_cast<const char*>(data + 1);
    size_t left = size - 1;
    Message::FrameReader reader;
    while (left > 0) {
        const size_t take = left < piece ? left : piece;
        const QByteArray read(bytes, static_cast<int>(take));
        program.client->receiveBytes(read);
        reader.append(read);
        Message::FrameReader::Frame frame;
        while (reader.next(frame)) {
        }
        bytes += take;
        left -= take;
    }
    return 0;
}
