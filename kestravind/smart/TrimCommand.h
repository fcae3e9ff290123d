#pragma once

#include "SystemTrimCommand.pb.h"

#include <QString>

#include <atomic>
#include <chrono>

namespace Velmora::Daemon::Smart {

// Answers `SystemTrimCommand`: a request with TrimEnabled false reads the state, one with true
// also turns TRIM on where it is off, by enabling and starting `fstrim.timer`. The router decides
// whether the asking peer may change the system and passes that in.
class TrimCommand
{
public:
    static QString defaultSystemctlPath() { return QStringLiteral("/usr/bin/systemctl"); }
    static constexpr std::chrono::milliseconds DefaultTimeLimit{30000};

    explicit TrimCommand(QString root = QStringLiteral("/"), QString systemctlPath = defaultSystemctlPath(),
                         std::chrono::milliseconds timeLimit = DefaultTimeLimit);

    Velmora::Message::SystemTrimCommand answer(const Velmora::Message::SystemTrimCommand& request,
                                               bool mayChange, const std::atomic_bool& stop) const;

private:
    QString m_root;
    QString m_systemctlPath;
    std::chrono::milliseconds m_timeLimit;
};

} // namespace Velmora::Daemon::Smart
