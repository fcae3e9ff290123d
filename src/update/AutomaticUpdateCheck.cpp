#include "update/AutomaticUpdateCheck.h"

#include "settings/SettingsManager.h"
#include "settings/StoredValue.h"
#include "system/System.h"
#include "update/UpdateInterface.h"

#include <QTimer>

namespace Velmora::Update {

namespace {

const QString SettingsGroup = QStringLiteral("Application");
const QString DisableUpdatesKey = QStringLiteral("DisableUpdates");

} // namespace

AutomaticUpdateCheck::AutomaticUpdateCheck(System::System* system, const QList<UpdateInterface*>& updateInterfaces,
    QObject* parent, const Intervals& intervals)
    : QObject(parent)
    , m_periodicTimer(new QTimer(this))
    , m_delayTimer(new QTimer(this))
    , m_updateInterfaces(updateInterfaces)
    , m_intervals(intervals)
{
    m_periodicTimer->setInterval(m_intervals.periodic);
    m_delayTimer->setInterval(m_intervals.driveChangeDelay);
    m_delayTimer->setSingleShot(true);
    connect(m_periodicTimer, &QTimer::timeout, this, &AutomaticUpdateCheck::checkForUpdates);
    connect(m_delayTimer, &QTimer::timeout, this, &AutomaticUpdateCheck::checkForUpdates);

    auto startDelay = [this] { m_delayTimer->start(); };
    connect(system, &System::System::driveAdded, m_delayTimer, startDelay);
    connect(system, &System::System::driveRemoved, m_delayTimer, startDelay);

    connect(Settings::SettingsManager::instance(), &Settings::SettingsManager::settingsChanged, this,
        &AutomaticUpdateCheck::onSettingsChanged);
    setActive(!Settings::storedBool(SettingsGroup, DisableUpdatesKey, false));
}

void AutomaticUpdateCheck::setActive(bool active)
{
    m_active = active;
    if (!active) {
        m_periodicTimer->stop();
        m_delayTimer->stop();
        return;
    }
    m_periodicTimer->start();
    // Not a member timer: enabling twice in a row schedules two checks, and one scheduled before a
    // disabling still fires, to stop at the test in checkForUpdates().
    QTimer::singleShot(m_intervals.enableDelay, this, &AutomaticUpdateCheck::checkForUpdates);
}

void AutomaticUpdateCheck::onSettingsChanged(QString group, QString key, QVariant value)
{
    if (group == SettingsGroup && key == DisableUpdatesKey)
        setActive(!value.toBool());
}

void AutomaticUpdateCheck::checkForUpdates()
{
    if (!m_active)
        return;
    for (UpdateInterface* updateInterface : qAsConst(m_updateInterfaces))
        updateInterface->checkForUpdates();
}

} // namespace Velmora::Update
