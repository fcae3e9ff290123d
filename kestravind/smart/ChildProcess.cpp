#include "ChildProcess.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

#include <utility>

namespace Velmora::Daemon::Smart {

namespace {

// Short enough that a withdrawn request is noticed at once, long enough not to spin.
constexpr int PollSliceMs = 50;

QProcessEnvironment cleanEnvironment()
{
    // The service runs as root: nothing of its own environment reaches the child, and the helpers
    // speak the C locale so that their machine-readable output does not change with the system's.
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    return environment;
}

} // namespace

ChildProcess::ChildProcess(QString program, QStringList arguments, std::chrono::milliseconds timeLimit)
    : m_program(std::move(program))
    , m_arguments(std::move(arguments))
    , m_timeLimit(timeLimit)
{
}

ChildProcess::Result ChildProcess::run(const std::atomic_bool& stop) const
{
    Result result;
    QProcess process;
    process.setProcessEnvironment(cleanEnvironment());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(m_program, m_arguments, QIODevice::ReadOnly);
    if (!process.waitForStarted()) {
        result.outcome = Outcome::FailedToStart;
        return result;
    }

    QElapsedTimer clock;
    clock.start();
    Outcome killedFor = Outcome::Exited;
    while (!process.waitForFinished(PollSliceMs) && process.state() != QProcess::NotRunning) {
        result.output += process.readAllStandardOutput();
        if (stop)
            killedFor = Outcome::Stopped;
        else if (result.output.size() > OutputLimit)
            killedFor = Outcome::OutputTooLarge;
        else if (clock.elapsed() >= m_timeLimit.count())
            killedFor = Outcome::TimedOut;
        if (killedFor != Outcome::Exited) {
            process.kill();
            process.waitForFinished(-1); // SIGKILL cannot be refused: this reaps the child
            result.outcome = killedFor;
            return result;
        }
    }
    result.output += process.readAllStandardOutput();
    if (process.exitStatus() == QProcess::CrashExit) {
        result.outcome = Outcome::Crashed;
        return result;
    }
    result.outcome = result.output.size() > OutputLimit ? Outcome::OutputTooLarge : Outcome::Exited;
    result.exitCode = process.exitCode();
    return result;
}

} // namespace Velmora::Daemon::Smart
