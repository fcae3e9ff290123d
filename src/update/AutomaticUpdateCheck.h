#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>

class QTimer;

namespace Velmora::System {
class System;
}

namespace Velmora::Update {

class UpdateInterface;

// The waits of the automatic check, in milliseconds; tests shorten them.
struct UpdateCheckIntervals {
    int enableDelay = 5000;
    int periodic = 3600000;
    int driveChangeDelay = 1000;
};

// The clock of the update checks: one 5 s after being enabled, then hourly, and one a second
// after the drives change (a burst of changes gives one check). The user switches it off with
// the setting "DisableUpdates"; a manual check does not come through here.
class AutomaticUpdateCheck : public QObject
{
    Q_OBJECT

public:
    using Intervals = UpdateCheckIntervals;

    AutomaticUpdateCheck(System::System* system, const QList<UpdateInterface*>& updateInterfaces,
        QObject* parent = nullptr, const Intervals& intervals = Intervals());

    bool isActive() const { return m_active; }
    const Intervals& intervals() const { return m_intervals; }

private slots:
    void checkForUpdates();
    // Arrives with the settings lock held: it lives on its arguments alone.
    void onSettingsChanged(QString group, QString key, QVariant value);

private:
    void setActive(bool active);

    QTimer* m_periodicTimer;
    QTimer* m_delayTimer;
    QList<UpdateInterface*> m_updateInterfaces;
    Intervals m_intervals;
    bool m_active = false;
};

} // namespace Velmora::Update
