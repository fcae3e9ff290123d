// Feeds arbitrary bytes from the service pipe through the program's receiving side as main()
// wires it: the frame parser (in reads of arbitrary sizes), the dispatcher and every handler of
// the service link over a fresh drive model. The peers' own frame reader gets the same bytes.
// Whatever the service sends, nothing may crash, hang or leak.

#include "ProgramRig.h"
#include "logger/Logger.h"
#include "message/FrameReader.h"

#include <google/protobuf/stubs/logging.h>

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>

using namespace Velmora;

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    new QCoreApplication(*argc, *argv);
    // A line for every byte of garbage (what the log is asked to keep) would make the log the
    // thing measured; the texts are still composed, only not written.
    Logger::initialize(Logger::Error + 1);
    Logger::setConsoleEnabled(false);
    google::protobuf::SetLogHandler(nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    QObject owner;
    Fuzz::ProgramRig program(&owner);
    program.dispatcher->clientConnected();
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
    // What the handlers queued for the next turn of the event loop runs before the model goes.
    QCoreApplication::processEvents();
    return 0;
}
