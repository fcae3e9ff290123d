// Feeds arbitrary text to the JSON messages of the web layer as the back-end's answer would reach
// them; the first byte chooses the message, the list of supported drives last. A message that takes a text must give it back: its
// own JSON parses again into the same JSON.

#include "communicationweb/AdAvabilityResponse.h"
#include "communicationweb/ApplicationUpdateResponse.h"
#include "communicationweb/AuthorizationRequest.h"
#include "communicationweb/AuthorizationResponse.h"
#include "communicationweb/FirmwareResponse.h"
#include "communicationweb/SessionResponse.h"
#include "communicationweb/SupportRequest.h"
#include "communicationweb/SupportResponse.h"
#include "communicationweb/SupportedDrivesResponse.h"

#include "logger/Logger.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>

using namespace Velmora::CommunicationWeb;

namespace {

template <typename T>
std::unique_ptr<JsonMessage> make()
{
    return std::make_unique<T>();
}

const std::function<std::unique_ptr<JsonMessage>()> messages[] = {
    make<AdAvabilityResponse>,
    make<ApplicationUpdateResponse>,
    make<AuthorizationRequest>,
    make<AuthorizationResponse>,
    make<FirmwareResponse>,
    make<SessionResponse>,
    make<SupportRequest>,
    make<SupportResponse>,
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    new QCoreApplication(*argc, *argv);
    Velmora::Logger::initialize(Velmora::Logger::Error);
    Velmora::Logger::setConsoleEnabled(false);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));
    constexpr size_t count = sizeof(messages) / sizeof(messages[0]);
    const size_t choice = data[0] % (count + 1);
    if (choice == count) {
        SupportedDrivesResponse list;
        list.fromJson(text);
        return 0;
    }
    const std::unique_ptr<JsonMessage> message = messages[choice]();
    if (!message->fromJson(text))
        return 0;
    const QJsonDocument json = message->toJson();
    const std::unique_ptr<JsonMessage> again = messages[choice]();
    if (!again->fromJson(json) || again->toJson() != json)
        std::abort();
    return 0;
}
