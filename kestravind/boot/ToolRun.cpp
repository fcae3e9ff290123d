#include "boot/ToolRun.h"

#include "boot/BootLog.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

namespace Velmora::Daemon::Boot {

namespace {

constexpr int PollSliceMs = 50;
// Enough of the end of a tool's output to say why it failed, not so much that it floods the journal.
constexpr int KeptOutput = 4096;

QProcessEnvironment cleanEnvironment()
{
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    // The new system's menu lists that system, not whatever else this machine has attached.
    environment.insert(QStringLiteral("GRUB_DISABLE_OS_PROBER"), QStringLiteral("true"));
    return environment;
}

void keepTail(QByteArray* kept, const QByteArray& more)
{
    kept->append(more);
    if (kept->size() > KeptOutput)
        kept->remove(0, kept->size() - KeptOutput);
}

} // namespace

ToolRun::Outcome ToolRun::run(const QString& program, const QStringList& arguments, std::chrono::seconds timeLimit,
    const std::atomic_bool& stop)
{
    const QString command = (QStringList(program) + arguments).join(QLatin1Char(' '));
    qCInfo(lcBoot).noquote() << "Running" << command;
    QProcess process;
    process.setProcessEnvironment(cleanEnvironment());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments, QIODevice::ReadOnly);
    if (!process.waitForStarted()) {
        qCWarning(lcBoot).noquote() << "Cannot start" << program << ":" << process.errorString();
        return Outcome::FailedToStart;
    }
    QElapsedTimer clock;
    clock.start();
    QByteArray output;
    while (!process.waitForFinished(PollSliceMs) && process.state() != QProcess::NotRunning) {
        keepTail(&output, process.readAll());
        const bool timedOut = clock.elapsed() >= std::chrono::milliseconds(timeLimit).count();
        if (stop || timedOut) {
            process.kill();
            process.waitForFinished(-1);
            if (stop)
                qCWarning(lcBoot).noquote() << command << "stopped: the request was withdrawn";
            else
                qCWarning(lcBoot).noquote() << command << "killed at its time limit of" << timeLimit.count() << "s";
            return stop ? Outcome::Stopped : Outcome::TimedOut;
        }
    }
    keepTail(&output, process.readAll());
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
        qCInfo(lcBoot).noquote() << command << "succeeded in" << clock.elapsed() << "ms";
        return Outcome::Succeeded;
    }
    qCWarning(lcBoot).noquote() << command << "failed"
                                << (process.exitStatus() == QProcess::CrashExit ? QStringLiteral("(crashed)")
                                                                               : QStringLiteral("with status %1").arg(process.exitCode()))
                                << "; its output ends:\n" << QString::fromLocal8Bit(output);
    return Outcome::Failed;
}

} // namespace Velmora::Daemon::Boot
