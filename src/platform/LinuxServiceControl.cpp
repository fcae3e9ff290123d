#include "platform/LinuxServiceControl.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QThread>

namespace Velmora::Platform {

namespace {
constexpr int ProbeTimeoutMs = 100;
constexpr int ListenPollMs = 20;
constexpr int NotFoundExitCode = 1;
} // namespace

std::unique_ptr<ServiceControl> createServiceControl(const QString& fileName, const QString& serverName)
{
    return std::make_unique<LinuxServiceControl>(
        QCoreApplication::applicationDirPath() + QLatin1Char('/') + fileName, serverName);
}

LinuxServiceControl::LinuxServiceControl(const QString& executablePath, const QString& serverName)
    : m_executablePath(executablePath)
    , m_serverName(serverName)
{
}

bool LinuxServiceControl::isListening() const
{
    QLocalSocket probe;
    probe.connectToServer(m_serverName);
    const bool listening = probe.waitForConnected(ProbeTimeoutMs);
    probe.abort();
    return listening;
}

ServiceControl::State LinuxServiceControl::query()
{
    if (isListening())
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

ServiceControl::CommandResult LinuxServiceControl::start(int timeoutMs)
{
    CommandResult result;
    result.normalExit = true;
    qint64 pid = 0;
    // Quiet: the service keeps its own log file and leaves our console to us.
    const QStringList arguments = {QStringLiteral("--name"), m_serverName, QStringLiteral("--quiet")};
    if (!QProcess::startDetached(m_executablePath, arguments, QString(), &pid)) {
        result.exitCode = NotFoundExitCode;
        result.output = "Could not start " + m_executablePath.toLocal8Bit();
        return result;
    }
    QElapsedTimer waited;
    waited.start();
    while (!isListening()) {
        if (waited.elapsed() >= timeoutMs) {
            result.exitCode = NotFoundExitCode;
            result.output = "The service did not listen within the time limit";
            return result;
        }
        QThread::msleep(ListenPollMs);
    }
    result.exitCode = 0;
    return result;
}

} // namespace Velmora::Platform
