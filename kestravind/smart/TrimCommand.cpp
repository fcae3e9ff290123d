#include "TrimCommand.h"

#include "common/ChildProcess.h"
#include "SmartLog.h"
#include "TrimState.h"

#include <utility>

namespace Velmora::Daemon::Smart {

using Velmora::Message::SystemTrimCommand;

namespace {

SystemTrimCommand reply(Velmora::Message::Code code, bool trimEnabled)
{
    SystemTrimCommand answer;
    answer.set_code(code);
    answer.set_trimenabled(trimEnabled);
    return answer;
}

} // namespace

TrimCommand::TrimCommand(QString root, QString systemctlPath, std::chrono::milliseconds timeLimit)
    : m_root(std::move(root))
    , m_systemctlPath(std::move(systemctlPath))
    , m_timeLimit(timeLimit)
{
}

SystemTrimCommand TrimCommand::answer(const SystemTrimCommand& request, bool mayChange,
                                      const std::atomic_bool& stop) const
{
    const TrimState state(m_root);
    const TrimState::Facts before = state.read();
    if (!request.trimenabled() || before.trimEnabled())
        return reply(Velmora::Message::SUCCESS, before.trimEnabled());
    if (!mayChange) {
        qCWarning(lcSmart) << "Refused to enable TRIM for a peer that may not change the system";
        return reply(Velmora::Message::ACCESS_DENIED, false);
    }
    if (!before.discardCapableSsdMounted) {
        qCInfo(lcSmart) << "Not enabling TRIM: no mounted solid-state drive accepts discards";
        return reply(Velmora::Message::NOT_FOUND, false);
    }

    const ChildProcess systemctl(m_systemctlPath,
                                 {QStringLiteral("enable"), QStringLiteral("--now"), QStringLiteral("fstrim.timer")},
                                 m_timeLimit);
    const ChildProcess::Result result = systemctl.run(stop);
    const bool enabledNow = state.read().trimEnabled();
    if (result.outcome != ChildProcess::Outcome::Exited || result.exitCode != 0 || !enabledNow) {
        qCWarning(lcSmart).noquote() << "Enabling fstrim.timer failed: outcome" << int(result.outcome)
                                     << "exit status" << result.exitCode << "TRIM now" << (enabledNow ? "on" : "off");
        return reply(Velmora::Message::FAILED, enabledNow);
    }
    qCInfo(lcSmart) << "TRIM enabled";
    return reply(Velmora::Message::SUCCESS, true);
}

} // namespace Velmora::Daemon::Smart
