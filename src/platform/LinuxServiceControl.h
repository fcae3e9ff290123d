#pragma once

#include "platform/ServiceControl.h"

#include <QPointer>

namespace Velmora::Platform {

class ServerListenWatch;

// On Linux the service is a plain executable beside the program. It counts as installed when the
// file is there, as running when its socket accepts a connection, and "start" launches it detached
// and succeeds once its socket listens, which may take a while on a loaded machine.
class LinuxServiceControl : public ServiceControl
{
public:
    LinuxServiceControl(const QString& executablePath, const QString& serverName);
    ~LinuxServiceControl() override;

    State query() override;
    QString installCommand() const override;
    QString startCommand() const override;
    CommandResult install(int timeoutMs) override;
    void start(int timeoutMs, Finished finished) override;

private:
    QString m_executablePath;
    QString m_serverName;
    // The wait for a started service to listen; it ends with this control, so that no outcome
    // reaches a caller that is gone.
    QPointer<ServerListenWatch> m_watch;
};

} // namespace Velmora::Platform
