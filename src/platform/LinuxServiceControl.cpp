#include "platform/LinuxServiceControl.h"

#include "platform/ServerListenWatch.h"
#include "platform/ServiceChoice.h"
#include "platform/SystemServiceControl.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

namespace Velmora::Platform {

namespace {
constexpr int ProbeTimeoutMs = 100;
constexpr int NotFoundExitCode = 1;
} // namespace

std::unique_ptr<ServiceControl> createServiceControl(const QString& fileName, const QString& serverName)
{
    if (ServiceChoice::isSystemService(serverName))
        return std::make_unique<SystemServiceControl>(serverName);
    return std::make_unique<LinuxServiceControl>(
        QCoreApplication::applicationDirPath() + QLatin1Char('/') + fileName, serverName);
}

LinuxServiceControl::LinuxServiceControl(const QString& executablePath, const QString& serverName)
    : m_executablePath(executablePath)
    , m_serverName(serverName)
{
}

LinuxServiceControl::~LinuxServiceControl()
{
    delete m_watch;
}

ServiceControl::State LinuxServiceControl::query()
{
    if (ServerListenWatch::acceptsNow(m_serverName, ProbeTimeoutMs))
        return State::Running;
    if (!QFileInfo(m_executablePath).isExecutable())
        return State::NotInstalled;
    return State::Stopped;
}

QString LinuxServiceControl::installCommand() const
{
    return QStringLiteral("test -x \"%1\"").arg(m_executablePath);
}

QString LinuxServiceControl::startCommand() const
{
    return QStringLiteral("\"%1\" --name %2 --quiet").arg(m_executablePath, m_serverName);
}

ServiceControl::CommandResult LinuxServiceControl::install(int timeoutMs)
{
    Q_UNUSED(timeoutMs)
    // Nothing to register on this platform: the executable beside the program is the service.
    CommandResult result;
    result.normalExit = true;
    result.exitCode = QFileInfo(m_executablePath).isExecutable() ? 0 : NotFoundExitCode;
    if (result.exitCode != 0)
        result.output = "No service executable at " + m_executablePath.toLocal8Bit();
    return result;
}

void LinuxServiceControl::start(int timeoutMs, Finished finished)
{
    CommandResult result;
    result.normalExit = true;
    result.exitCode = NotFoundExitCode;
    // Quiet: the service keeps its own log file and leaves our console to us.
    const QStringList arguments = {QStringLiteral("--name"), m_serverName, QStringLiteral("--quiet")};
    if (!QProcess::startDetached(m_executablePath, arguments)) {
        result.output = "Could not start " + m_executablePath.toLocal8Bit();
        finished(result);
        return;
    }
    delete m_watch;
    auto* watch = new ServerListenWatch(m_serverName, timeoutMs);
    m_watch = watch;
    QObject::connect(watch, &ServerListenWatch::finished, watch, [watch, result, finished](bool listening) mutable {
        watch->deleteLater();
        if (listening)
            result.exitCode = 0;
        else
            result.output = "The service did not listen within the time limit";
        finished(result);
    });
}

} // namespace Velmora::Platform
