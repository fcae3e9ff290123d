#include "system/DriveHealthStatus.h"

#include "system/DriveIssue.h"

namespace Velmora::System {

DriveHealthStatus::DriveHealthStatus(QObject* parent)
    : QObject(parent)
{
    static const bool registered = [] {
        qRegisterMetaType<DriveIssueType>("Velmora::System::DriveIssueType");
        qRegisterMetaType<DriveIssueSeverity>("Velmora::System::DriveIssueSeverity");
        qRegisterMetaType<SATASpeedCapabilities>("SATASpeedCapabilities");
        // Without it, two equal speed records in variants would never compare equal.
        return QMetaType::registerEqualsComparator<SATASpeedCapabilities>();
    }();
    Q_UNUSED(registered)

    addIssue(new FreeSpaceIssue(FreeSpace, this), 0.0);
    addIssue(new FirmwareUpdateIssue(FirmwareUpdate, this), false);
    addIssue(new LifeRemainingIssue(LifeRemaining, this), 100u);
    addIssue(new SATASpeedLimitIssue(SATASpeedLimit, this), QVariant::fromValue(SATASpeedCapabilities{}));
}

void DriveHealthStatus::addIssue(DriveIssue* issue, const QVariant& harmlessValue)
{
    issue->setValue(harmlessValue);
    m_issues.insert(issue->type(), issue);
    connect(issue, &DriveIssue::severityChanged, this, &DriveHealthStatus::onIssueSeverityChanged);
}

DriveIssueSeverity DriveHealthStatus::overallSeverity() const
{
    DriveIssueSeverity worst = Good;
    for (const DriveIssue* issue : m_issues)
        worst = qMin(worst, issue->severity());
    return worst;
}

void DriveHealthStatus::setIssueValue(DriveIssueType type, const QVariant& value)
{
    if (DriveIssue* rule = m_issues.value(type))
        rule->setValue(value);
}

void DriveHealthStatus::onIssueSeverityChanged(DriveIssueType type, DriveIssueSeverity severity)
{
    emit optimizationStatusChanged(overallSeverity());
    emit issueSeverityChanged(type, severity);
}

} // namespace Velmora::System
