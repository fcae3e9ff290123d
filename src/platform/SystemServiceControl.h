#pragma once

#include "platform/ServiceControl.h"

namespace Velmora::Platform {

// The service the system installs and runs (a systemd unit): the program only looks whether it
// listens. It never installs or starts it; a start that is asked for fails with the reason, so
// that the program shows its error instead of waiting.
class SystemServiceControl : public ServiceControl
{
public:
    explicit SystemServiceControl(const QString& socketPath);

    State query() override;
    QString installCommand() const override;
    QString startCommand() const override;
    CommandResult install(int timeoutMs) override;
    void start(int timeoutMs, Finished finished) override;

private:
    CommandResult notOurs() const;

    QString m_socketPath;
};

} // namespace Velmora::Platform
