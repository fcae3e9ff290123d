#include "CommandRunner.h"

#include "MigrationLog.h"

namespace Velmora::Daemon::Migration {

namespace {

// The tools' diagnostics go to the log; nothing they honestly print comes near this.
constexpr int ErrorTextLimit = 2000;

} // namespace

QString Command::text() const
{
    return (QStringList{program} + arguments).join(QLatin1Char(' '));
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
    ChildProcess process(command.program, command.arguments, command.timeLimit);
    process.setInput(command.input);
    return process.run(stop);
}

} // namespace Velmora::Daemon::Migration
