#include "platform/ServiceChoice.h"

#include "logger/Logger.h"

#include <QFileInfo>
#include <QLocalSocket>

namespace Velmora::Platform {

const char* const ServiceChoice::SystemSocket = "/run/kestravin/VelmoraServer";
const char* const ServiceChoice::EnvironmentVariable = "KESTRAVIN_SERVICE";

namespace {
// A local socket that listens accepts at once; this only bounds a service that hangs.
constexpr int ProbeTimeoutMs = 200;

bool systemServiceAnswers()
{
    if (!QFileInfo::exists(QLatin1String(ServiceChoice::SystemSocket)))
        return false;
    QLocalSocket probe;
    probe.connectToServer(QLatin1String(ServiceChoice::SystemSocket));
    const bool answers = probe.waitForConnected(ProbeTimeoutMs);
    probe.abort();
    return answers;
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
