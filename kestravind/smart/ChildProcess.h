#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>

namespace Velmora::Daemon::Smart {

// One run of a helper program on behalf of the service: an argument list (never a shell), a clean
// environment, no input, and a time limit after which the child is killed and reaped. Runs on the
// calling thread without an event loop, as the worker threads of the service have none.
class ChildProcess
{
public:
    enum class Outcome {
        Exited,         // ran to its end; exitCode holds its status
        FailedToStart,  // missing or not executable
        Crashed,        // ended by a signal
        TimedOut,       // killed at the time limit
        Stopped,        // killed because the request was withdrawn
        OutputTooLarge, // killed: more output than any honest answer holds
    };

    struct Result {
        Outcome outcome = Outcome::FailedToStart;
        int exitCode = -1;
        QByteArray output; // standard output; standard error is dropped
    };

    ChildProcess(QString program, QStringList arguments, std::chrono::milliseconds timeLimit);

    Result run(const std::atomic_bool& stop) const;

    static constexpr qint64 OutputLimit = 4 * 1024 * 1024;

private:
    QString m_program;
    QStringList m_arguments;
    std::chrono::milliseconds m_timeLimit;
};

} // namespace Velmora::Daemon::Smart
