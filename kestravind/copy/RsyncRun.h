#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Velmora::Daemon::Copy {

// One run of a copying program: an argument list (never a shell), a clean environment, no input,
// in a process group of its own so that a stop kills every process it forked. A long copy has no
// time limit as a whole; a run that shows no sign of life for `stallLimit` is killed as stuck:
// no output, and no progress that the caller's `onTick` (called at least every 100 ms) saw. Output
// is handed over line by line (a carriage return ends a line too).
class RsyncRun
{
public:
    enum class Outcome { Exited, FailedToStart, Crashed, Stalled, Stopped };
    struct Result {
        Outcome outcome = Outcome::FailedToStart;
        int exitCode = -1;
    };
    using LineHandler = std::function<void(std::string_view line)>;
    using TickHandler = std::function<bool()>; // true when the work went on since the last call

    RsyncRun(std::string program, std::vector<std::string> arguments, std::chrono::milliseconds stallLimit);

    // rsync's error lines go to `onError`; its standard output only shows that it is alive.
    Result run(const std::atomic_bool& stop, const LineHandler& onError, const TickHandler& onTick) const;

    // A longer line is cut; rsync's lines are short unless a path is absurdly long.
    static constexpr size_t LineLimit = 64 * 1024;

private:
    std::string m_program;
    std::vector<std::string> m_arguments;
    std::chrono::milliseconds m_stallLimit;
};

} // namespace Velmora::Daemon::Copy
