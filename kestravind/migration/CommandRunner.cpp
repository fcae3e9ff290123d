#include "CommandRunner.h"

#include "MigrationLog.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

namespace Velmora::Daemon::Migration {

namespace {

// Short enough that a withdrawn request is noticed at once, long enough not to spin.
constexpr int PollSliceMs = 50;
// The tools' diagnostics go to the log; nothing they honestly print comes near this.
constexpr int ErrorTextLimit = 2000;

QProcessEnvironment cleanEnvironment()
{
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    return environment;
}

} // namespace

QString Command::text() const
{
    return (QStringList{program} + arguments).join(QLatin1Char(' '));
}

QString CommandResult::describe() const
{
    switch (outcome) {
    case Outcome::Exited: return QStringLiteral("exit code %1").arg(exitCode);
    case Outcome::FailedToStart: return QStringLiteral("could not be started");
    case Outcome::Crashed: return QStringLiteral("crashed");
    case Outcome::TimedOut: return QStringLiteral("killed at its time limit");
    case Outcome::Stopped: return QStringLiteral("killed: the request was withdrawn");
    }
    return QString();
}

CommandResult CommandRunner::run(const Command& command, const std::atomic_bool& stop)
{
    qCInfo(lcMigration, "Running %s", qPrintable(command.text()));
    const CommandResult result = execute(command, stop);
    if (result.succeeded()) {
        qCInfo(lcMigration, "%s: done", qPrintable(command.program));
    } else {
        const QString errors = QString::fromLocal8Bit(result.errors.left(ErrorTextLimit)).simplified();
        qCWarning(lcMigration, "%s: %s%s%s", qPrintable(command.program), qPrintable(result.describe()),
            errors.isEmpty() ? "" : ": ", qPrintable(errors));
    }
    return result;
}

CommandResult ProcessRunner::execute(const Command& command, const std::atomic_bool& stop)
{
    CommandResult result;
    QProcess process;
    process.setProcessEnvironment(cleanEnvironment());
    if (command.input.isEmpty())
        process.setStandardInputFile(QProcess::nullDevice());
    process.start(command.program, command.arguments);
    if (!process.waitForStarted())
        return result;
    if (!command.input.isEmpty()) {
        process.write(command.input);
        process.closeWriteChannel();
    }
    QElapsedTimer clock;
    clock.start();
    while (!process.waitForFinished(PollSliceMs) && process.state() != QProcess::NotRunning) {
        result.output += process.readAllStandardOutput();
        result.errors += process.readAllStandardError();
        const bool late = clock.elapsed() >= command.timeLimit.count();
        if (stop || late) {
            process.kill();
            process.waitForFinished(-1); // SIGKILL cannot be refused: this reaps the child
            result.outcome = stop ? CommandResult::Outcome::Stopped : CommandResult::Outcome::TimedOut;
            return result;
        }
    }
    result.output += process.readAllStandardOutput();
    result.errors += process.readAllStandardError();
    result.outcome = process.exitStatus() == QProcess::CrashExit ? CommandResult::Outcome::Crashed
                                                                 : CommandResult::Outcome::Exited;
    result.exitCode = process.exitCode();
    return result;
}

} // namespace Velmora::Daemon::Migration
