#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

namespace Velmora::Platform {

// What the program needs of the operating system's service control: is the privileged service
// there and running, and make it so. Each platform brings its own; tests bring theirs.
class ServiceControl
{
public:
    enum class State { ManagerUnavailable, NotInstalled, Running, StartPending, Stopped, QueryFailed };

    // The outcome of one control command, as a process reports it.
    struct CommandResult {
        bool normalExit = false;
        int exitCode = -1;
        QByteArray output;
        bool succeeded() const { return normalExit && exitCode == 0; }
    };

    virtual ~ServiceControl() = default;

    virtual State query() = 0;
    // The command line the next install or start runs, for the log.
    virtual QString installCommand() const = 0;
    virtual QString startCommand() const = 0;
    virtual CommandResult install(int timeoutMs) = 0;
    // Starts the service without waiting for it: `finished` learns the outcome once the service
    // is ready or has failed, within `timeoutMs`, on the calling thread's event loop.
    using Finished = std::function<void(const CommandResult& result)>;
    virtual void start(int timeoutMs, Finished finished) = 0;
};

// The control of this platform for the service executable `fileName` beside the program, reached
// at the local socket `serverName`; for the system's own service when that is its socket.
std::unique_ptr<ServiceControl> createServiceControl(const QString& fileName, const QString& serverName);

} // namespace Velmora::Platform
