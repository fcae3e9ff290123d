#pragma once

#include "common/ChildProcess.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>

namespace Velmora::Daemon::Migration {

// One run of a system tool: an argument list (never a shell), what it reads on stdin, and the
// time after which it is killed.
struct Command {
    QString program;
    QStringList arguments;
    QByteArray input;
    std::chrono::milliseconds timeLimit{60000};

    QString text() const;
};

// How a run went: its outcome, exit code and what it printed.
using CommandResult = ChildProcess::Result;

// Every tool that touches a disk runs through here, so that each run is logged with its outcome,
// and so that the checks before a write can be shown to run nothing at all.
class CommandRunner
{
public:
    virtual ~CommandRunner() = default;
    CommandResult run(const Command& command, const std::atomic_bool& stop);

protected:
    virtual CommandResult execute(const Command& command, const std::atomic_bool& stop) = 0;
};

// Runs the tools as child processes of the service, on the calling thread, in a clean environment.
class ProcessRunner : public CommandRunner
{
protected:
    CommandResult execute(const Command& command, const std::atomic_bool& stop) override;
};

} // namespace Velmora::Daemon::Migration
