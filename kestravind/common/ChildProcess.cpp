#include "ChildProcess.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

namespace Velmora::Daemon {

namespace {

// Short enough that a withdrawn request is noticed at once, long enough not to spin.
constexpr int PollSliceMs = 50;

} // namespace

QString ChildProcess::Result::describe() const
{
    switch (outcome) {
    case Outcome::Exited: return QStringLiteral("exit code %1").arg(exitCode);
    case Outcome::FailedToStart: return QStringLiteral("could not be started");
    case Outcome::Crashed: return QStringLiteral("crashed");
    case Outcome::TimedOut: return QStringLiteral("killed at its time limit");
    case Outcome::Stopped: return QStringLiteral("killed: the request was withdrawn");
    case Outcome::OutputTooLarge: return QStringLiteral("killed: too much output");
    }
    return QString();
}

ChildProcess::ChildProcess(QString program, QStringList arguments, std::chrono::milliseconds timeLimit)
    : m_program(std::move(program))
    , m_arguments(std::move(arguments))
    , m_timeLimit(timeLimit)
{
}

ChildProcess::Result ChildProcess::run(const std::atomic_bool& stop) const
{
    // The service runs as root: nothing of its own environment reaches the child, and the helpers
    // speak the C locale so that their machine-readable output does not change with the system's.
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    for (int i = 0; i + 1 < m_environment.size(); i += 2)
        environment.insert(m_environment.at(i), m_environment.at(i + 1));

    Result result;
    QProcess process;
    process.setProcessEnvironment(environment);
    if (m_input.isEmpty())
        process.setStandardInputFile(QProcess::nullDevice());
    process.start(m_program, m_arguments);
    if (!process.waitForStarted()) {
        result.outcome = Outcome::FailedToStart;
        return result;
    }
    if (!m_input.isEmpty()) {
        process.write(m_input);
        process.closeWriteChannel();
    }

    QElapsedTimer clock;
    clock.start();
    Outcome killedFor = Outcome::Exited;
    while (!process.waitForFinished(PollSliceMs) && process.state() != QProcess::NotRunning) {
        result.output += process.readAllStandardOutput();
        result.errors += process.readAllStandardError();
        if (stop)
            killedFor = Outcome::Stopped;
        else if (result.output.size() + result.errors.size() > OutputLimit)
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
    result.errors += process.readAllStandardError();
    if (process.exitStatus() == QProcess::CrashExit) {
        result.outcome = Outcome::Crashed;
        return result;
    }
    result.outcome = result.output.size() + result.errors.size() > OutputLimit ? Outcome::OutputTooLarge : Outcome::Exited;
    result.exitCode = process.exitCode();
    return result;
}

} // namespace Velmora::Daemon
