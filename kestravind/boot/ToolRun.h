#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>

namespace Velmora::Daemon::Boot {

// One run of a tool: an argument list (never a shell), a clean environment, no input, a time limit
// after which it is killed, and a withdrawn request that kills it at once. The command and its
// outcome are logged; on failure, the end of what it printed too.
struct ToolRun
{
    enum class Outcome { Succeeded, FailedToStart, Failed, TimedOut, Stopped };

    static Outcome run(const QString& program, const QStringList& arguments, std::chrono::seconds timeLimit,
        const std::atomic_bool& stop);
};

} // namespace Velmora::Daemon::Boot
