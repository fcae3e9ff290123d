#include "common/UdevQueue.h"

#include "common/ChildProcess.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardPaths>

namespace Velmora::Daemon {

namespace {
Q_LOGGING_CATEGORY(lcUdev, "kestravind.udev")
constexpr std::chrono::seconds SettleLimit{15};
} // namespace

void waitForUdevQueue(const std::atomic_bool& stop)
{
    static const QString udevadm = QStandardPaths::findExecutable(QStringLiteral("udevadm"),
        {QStringLiteral("/usr/bin"), QStringLiteral("/bin"), QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")});
    if (udevadm.isEmpty() || !QFileInfo::exists(QStringLiteral("/run/udev/control")))
        return;
    const ChildProcess::Result result =
        ChildProcess(udevadm, {QStringLiteral("settle"), QStringLiteral("--timeout=10")}, SettleLimit).run(stop);
    if (!result.succeeded())
        qCWarning(lcUdev).noquote() << "udev did not finish its queue:" << result.describe();
}

} // namespace Velmora::Daemon
