#include "platform/SystemServiceControl.h"

#include "platform/ServerListenWatch.h"

namespace Velmora::Platform {

namespace {
constexpr int ProbeTimeoutMs = 100;
constexpr int NotRunningExitCode = 3;
} // namespace

SystemServiceControl::SystemServiceControl(const QString& socketPath)
    : m_socketPath(socketPath)
{
}

ServiceControl::State SystemServiceControl::query()
{
    return ServerListenWatch::acceptsNow(m_socketPath, ProbeTimeoutMs) ? State::Running : State::Stopped;
}

QString SystemServiceControl::installCommand() const
{
    return QStringLiteral("none: the system installs kestravind");
}

QString SystemServiceControl::startCommand() const
{
    return QStringLiteral("none: the system starts kestravind (systemctl start kestravind)");
}

ServiceControl::CommandResult SystemServiceControl::notOurs() const
{
    CommandResult result;
    result.normalExit = true;
    result.exitCode = NotRunningExitCode;
    result.output = "The system service does not listen on " + m_socketPath.toLocal8Bit()
        + "; start it with systemctl start kestravind";
    return result;
}

ServiceControl::CommandResult SystemServiceControl::install(int)
{
    return notOurs();
}

void SystemServiceControl::start(int, Finished finished)
{
    finished(notOurs());
}

} // namespace Velmora::Platform
