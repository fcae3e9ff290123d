#pragma once

#include "system/DriveIssueTypes.h"

#include <QObject>
#include <QVariant>

namespace Velmora::System {

// One rule of a drive's health: judges a measured value and reports when its verdict changes.
class DriveIssue : public QObject
{
    Q_OBJECT

public:
    DriveIssue(DriveIssueType type, QObject* parent = nullptr);

    virtual DriveIssueSeverity severity() const { return m_severity; }
    // Judges `value` unless it equals the stored one.
    virtual void setValue(QVariant value);
    virtual DriveIssueType type() const { return m_type; }

signals:
    void severityChanged(Velmora::System::DriveIssueType type, Velmora::System::DriveIssueSeverity severity);

protected:
    virtual DriveIssueSeverity judge(const QVariant& value) const = 0;

private:
    DriveIssueType m_type;
    QVariant m_value;
    DriveIssueSeverity m_severity = Good;
};

// Used share of the capacity in thousandths: above 900 (under 10% free) action is needed.
class FreeSpaceIssue : public DriveIssue
{
    Q_OBJECT
public:
    using DriveIssue::DriveIssue;
protected:
    DriveIssueSeverity judge(const QVariant& value) const override;
};

// Percent of life remaining: 9 and below needs action, up to 69 is only OK.
class LifeRemainingIssue : public DriveIssue
{
    Q_OBJECT
public:
    using DriveIssue::DriveIssue;
protected:
    DriveIssueSeverity judge(const QVariant& value) const override;
};

// A SATA link slower than the drive could run.
class SATASpeedLimitIssue : public DriveIssue
{
    Q_OBJECT
public:
    using DriveIssue::DriveIssue;
protected:
    DriveIssueSeverity judge(const QVariant& value) const override;
};

// Newer firmware is known; worth mentioning, never urgent.
class FirmwareUpdateIssue : public DriveIssue
{
    Q_OBJECT
public:
    using DriveIssue::DriveIssue;
protected:
    DriveIssueSeverity judge(const QVariant& value) const override;
};

} // namespace Velmora::System
