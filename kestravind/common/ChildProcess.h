#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <utility>

namespace Velmora::Daemon {

// One run of a helper program on behalf of the service: an argument list (never a shell), a clean
// environment, the given input or none, and a time limit after which the child is killed and
// reaped. Runs on the calling thread without an event loop, as the worker threads of the service
// have none.
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
        QByteArray output; // standard output
        QByteArray errors; // standard error

        bool succeeded() const { return outcome == Outcome::Exited && exitCode == 0; }
        QString describe() const;
    };

    ChildProcess(QString program, QStringList arguments, std::chrono::milliseconds timeLimit);

    void setInput(QByteArray input) { m_input = std::move(input); }
    // A variable of the child's environment beyond the clean PATH and C locale.
    void setEnvironment(const QString& name, const QString& value) { m_environment << name << value; }

    Result run(const std::atomic_bool& stop) const;

    static constexpr qint64 OutputLimit = 4 * 1024 * 1024;

private:
    QString m_program;
    QStringList m_arguments;
    std::chrono::milliseconds m_timeLimit;
    QByteArray m_input;
    QStringList m_environment; // name, value, name, value...
};

} // namespace Velmora::Daemon
