#pragma once

#include "Smart.pb.h"
#include "SmartRequest.pb.h"

#include <QString>

#include <atomic>
#include <chrono>

namespace Velmora::Daemon::Smart {

// Answers a `SmartRequest` for one device by running smartctl on it. The router hands in the
// device path that its enumeration gave the drive id (an empty path for an unknown id).
class SmartReader
{
public:
    static QString defaultSmartctlPath() { return QStringLiteral("/usr/sbin/smartctl"); }

    // A sleeping disk behind a slow bridge can take seconds to answer; a hung one never does.
    static constexpr std::chrono::milliseconds DefaultTimeLimit{20000};

    explicit SmartReader(QString smartctlPath = defaultSmartctlPath(),
                         std::chrono::milliseconds timeLimit = DefaultTimeLimit);

    Velmora::Message::Smart read(const Velmora::Message::SmartRequest& request, const QString& devicePath,
                                 const std::atomic_bool& stop) const;

private:
    QString m_smartctlPath;
    std::chrono::milliseconds m_timeLimit;
};

} // namespace Velmora::Daemon::Smart
