#include "system/DriveIssue.h"

#include "logger/Logger.h"

namespace Velmora::System {

DriveIssue::DriveIssue(DriveIssueType type, QObject* parent)
    : QObject(parent)
    , m_type(type)
{
}

void DriveIssue::setValue(QVariant value)
{
    if (m_value.isValid() && value == m_value)
        return;
    m_value = value;
    const DriveIssueSeverity severity = judge(value);
    if (severity == m_severity)
        return;
    m_severity = severity;
    emit severityChanged(m_type, severity);
}

DriveIssueSeverity FreeSpaceIssue::judge(const QVariant& value) const
{
    const double usedShare = value.toDouble();
    if (usedShare > 900.0) {
        Logger::debug(QString(), QStringLiteral("Free space severity: ActionNeeded"));
        return ActionNeeded;
    }
    if (usedShare > 800.0) {
        Logger::debug(QString(), QStringLiteral("Free space severity: OK"));
        return OK;
    }
    return Good;
}

DriveIssueSeverity LifeRemainingIssue::judge(const QVariant& value) const
{
    const uint life = value.toUInt();
    if (life <= 9) {
        Logger::debug(QString(), QStringLiteral("Life remaining severity: ActionNeeded"));
        return ActionNeeded;
    }
    if (life <= 69) {
        Logger::debug(QString(), QStringLiteral("Life remaining severity: OK"));
        return OK;
    }
    return Good;
}

DriveIssueSeverity SATASpeedLimitIssue::judge(const QVariant& value) const
{
    if (!value.canConvert<SATASpeedCapabilities>())
        return Good;
    const auto speeds = value.value<SATASpeedCapabilities>();
    if (speeds.supported == speeds.current)
        return Good;
    Logger::debug(QString(), QStringLiteral("SATA Speed Limit severity: ActionNeeded"));
    return ActionNeeded;
}

DriveIssueSeverity FirmwareUpdateIssue::judge(const QVariant& value) const
{
    if (value.toBool()) {
        Logger::debug(QString(), QStringLiteral("Firmware update severity: OK"));
        return OK;
    }
    return Good;
}

} // namespace Velmora::System
