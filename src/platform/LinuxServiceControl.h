#pragma once

#include "platform/ServiceControl.h"

namespace Velmora::Platform {

// On Linux the service is a plain executable beside the program. It counts as installed when the
// file is there, as running when its socket accepts a connection, and "start" launches it detached
// and succeeds once its socket listens.
class LinuxServiceControl : public ServiceControl
{
public:
    LinuxServiceControl(const QString& executablePath, const QString& serverName);

    State query() override;
    QString installCommand() const override;
    QString startCommand() const override;
    CommandResult install(int timeoutMs) override;
    CommandResult start(int timeoutMs) override;

private:
    bool isListening() const;

    QString m_executablePath;
    QString m_serverName;
};

} // namespace Velmora::Platform
