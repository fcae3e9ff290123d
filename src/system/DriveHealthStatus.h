#pragma once

#include "system/DriveIssueTypes.h"

#include <QMap>
#include <QObject>
#include <QVariant>

namespace Velmora::System {

class DriveIssue;

// The health rules of one drive. Tells when one rule's verdict changes, and what the worst verdict
// of all is then.
class DriveHealthStatus : public QObject
{
    Q_OBJECT

public:
    explicit DriveHealthStatus(QObject* parent = nullptr);

    DriveIssue* issue(DriveIssueType type) const { return m_issues.value(type); }
    DriveIssueSeverity overallSeverity() const;
    // Types without a rule (bad sectors) are measured but not judged.
    void setIssueValue(DriveIssueType type, const QVariant& value);

signals:
    void optimizationStatusChanged(Velmora::System::DriveIssueSeverity severity);
    void issueSeverityChanged(Velmora::System::DriveIssueType type, Velmora::System::DriveIssueSeverity severity);

private slots:
    void onIssueSeverityChanged(Velmora::System::DriveIssueType type, Velmora::System::DriveIssueSeverity severity);

private:
    void addIssue(DriveIssue* issue, const QVariant& harmlessValue);

    QMap<int, DriveIssue*> m_issues;
};

} // namespace Velmora::System
