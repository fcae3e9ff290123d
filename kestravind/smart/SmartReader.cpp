#include "SmartReader.h"

#include "common/ChildProcess.h"
#include "SmartErrors.h"
#include "SmartLog.h"
#include "SmartctlJson.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace Velmora::Daemon::Smart {

using SmartAnswer = Velmora::Message::Smart;

namespace {

SmartAnswer failure(quint32 driveId, int code)
{
    SmartAnswer answer;
    answer.set_driveid(driveId);
    answer.set_errorcode(static_cast<SmartAnswer::Error>(code));
    return answer;
}

// Keeps only the one attribute a request asks for; an absent one is the program's "no such attribute".
void keepOnly(quint32 attributeId, SmartAnswer* answer)
{
    const auto& attributes = answer->attributes();
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [attributeId](const auto& attribute) { return attribute.id() == attributeId; });
    if (found == attributes.end()) {
        answer->clear_attributes();
        answer->set_errorcode(static_cast<SmartAnswer::Error>(NoSmart));
        return;
    }
    const Velmora::Message::Smart_SmartAttribute kept = *found;
    answer->clear_attributes();
    *answer->add_attributes() = kept;
}

} // namespace

SmartReader::SmartReader(QString smartctlPath, std::chrono::milliseconds timeLimit)
    : m_smartctlPath(std::move(smartctlPath))
    , m_timeLimit(timeLimit)
{
}

SmartAnswer SmartReader::read(const Velmora::Message::SmartRequest& request, const QString& devicePath,
                              const std::atomic_bool& stop) const
{
    const quint32 driveId = request.driveid();
    // Only absolute paths: anything else on smartctl's command line could be read as an option.
    if (!devicePath.startsWith(QLatin1Char('/')) || !QFileInfo::exists(devicePath)) {
        qCWarning(lcSmart).noquote() << "No device for drive" << driveId << devicePath;
        return failure(driveId, NoDrive);
    }

    const ChildProcess smartctl(m_smartctlPath, {QStringLiteral("--json=c"), QStringLiteral("-a"), devicePath},
                                m_timeLimit);
    const ChildProcess::Result result = smartctl.run(stop);
    switch (result.outcome) {
    case ChildProcess::Outcome::Exited:
        break;
    case ChildProcess::Outcome::FailedToStart:
        qCWarning(lcSmart).noquote() << "Cannot run" << m_smartctlPath << "- is smartmontools installed?";
        return failure(driveId, ToolMissing);
    case ChildProcess::Outcome::TimedOut:
        qCWarning(lcSmart).noquote() << "smartctl on" << devicePath << "did not finish within"
                                     << m_timeLimit.count() << "ms and was killed";
        return failure(driveId, ToolTimedOut);
    case ChildProcess::Outcome::Stopped:
        qCInfo(lcSmart).noquote() << "SMART read-out of" << devicePath << "withdrawn";
        return failure(driveId, ToolFailed);
    case ChildProcess::Outcome::Crashed:
    case ChildProcess::Outcome::OutputTooLarge:
        qCWarning(lcSmart).noquote() << "smartctl on" << devicePath << "crashed or flooded its output";
        return failure(driveId, ToolFailed);
    }

    SmartAnswer answer = SmartctlJson::toSmart(result.output, result.exitCode, devicePath);
    answer.set_driveid(driveId);
    // Exit bit 1: smartctl could not open the device; if it is gone now, it was unplugged meanwhile.
    if (int(answer.errorcode()) == NoSmart && (result.exitCode & 0x2) && !QFileInfo::exists(devicePath))
        answer.set_errorcode(static_cast<SmartAnswer::Error>(NoDrive));
    if (answer.errorcode() == SmartAnswer::SUCCESS && !request.allattributes())
        keepOnly(request.attributeid(), &answer);
    return answer;
}

} // namespace Velmora::Daemon::Smart
