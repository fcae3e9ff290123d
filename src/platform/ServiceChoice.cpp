#include "platform/ServiceChoice.h"

#include "logger/Logger.h"
#include "message/Message.h"
#include "platform/ServerListenWatch.h"


namespace Velmora::Platform {

const char* const ServiceChoice::SystemSocket = Velmora::Message::Message::SystemSocket;
const char* const ServiceChoice::EnvironmentVariable = "KESTRAVIN_SERVICE";

namespace {
// A local socket that listens accepts at once; this only bounds a service that hangs.
constexpr int ProbeTimeoutMs = 200;

bool systemServiceAnswers()
{
    return ServerListenWatch::acceptsNow(QLatin1String(ServiceChoice::SystemSocket), ProbeTimeoutMs);
}
} // namespace

QString ServiceChoice::serverName(const QString& simulatedName)
{
    const QString forced = qEnvironmentVariable(EnvironmentVariable).trimmed().toLower();
    bool system = false;
    if (forced == QLatin1String("system")) {
        system = true;
    } else if (forced == QLatin1String("simulated")) {
        system = false;
    } else {
        if (!forced.isEmpty())
            Logger::warning(QString(), QStringLiteral("%1=%2 is neither \"system\" nor \"simulated\"; ignored")
                                           .arg(QLatin1String(EnvironmentVariable), forced));
        system = systemServiceAnswers();
    }
    Logger::info(QString(), system ? QStringLiteral("Using the system service at %1").arg(QLatin1String(SystemSocket))
                                   : QStringLiteral("Using the simulated service"));
    return system ? QString::fromLatin1(SystemSocket) : simulatedName;
}

} // namespace Velmora::Platform
