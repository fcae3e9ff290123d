#include "boot/ToolRun.h"

#include "boot/BootLog.h"
#include "common/ChildProcess.h"

#include <QElapsedTimer>

namespace Velmora::Daemon::Boot {

namespace {

// Enough of the end of a tool's output to say why it failed, not so much that it floods the journal.
constexpr int KeptOutput = 4096;

} // namespace

ToolRun::Outcome ToolRun::run(const QString& program, const QStringList& arguments, std::chrono::seconds timeLimit,
    const std::atomic_bool& stop)
{
    const QString command = (QStringList(program) + arguments).join(QLatin1Char(' '));
    qCInfo(lcBoot).noquote() << "Running" << command;
    ChildProcess tool(program, arguments, timeLimit);
    // The new system's menu lists that system, not whatever else this machine has attached.
    tool.setEnvironment(QStringLiteral("GRUB_DISABLE_OS_PROBER"), QStringLiteral("true"));
    QElapsedTimer clock;
    clock.start();
    const ChildProcess::Result result = tool.run(stop);
    switch (result.outcome) {
    case ChildProcess::Outcome::FailedToStart:
        qCWarning(lcBoot).noquote() << "Cannot start" << program;
        return Outcome::FailedToStart;
    case ChildProcess::Outcome::Stopped:
        qCWarning(lcBoot).noquote() << command << "stopped: the request was withdrawn";
        return Outcome::Stopped;
    case ChildProcess::Outcome::TimedOut:
        qCWarning(lcBoot).noquote() << command << "killed at its time limit of" << timeLimit.count() << "s";
        return Outcome::TimedOut;
    default:
        break;
    }
    if (result.succeeded()) {
        qCInfo(lcBoot).noquote() << command << "succeeded in" << clock.elapsed() << "ms";
        return Outcome::Succeeded;
    }
    const QByteArray output = (result.output + result.errors).right(KeptOutput);
    qCWarning(lcBoot).noquote() << command << "failed (" << result.describe() << "); its output ends:\n"
                                << QString::fromLocal8Bit(output);
    return Outcome::Failed;
}

} // namespace Velmora::Daemon::Boot
