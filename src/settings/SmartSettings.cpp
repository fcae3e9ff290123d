#include "settings/SmartSettings.h"

#include "settings/SettingsManager.h"
#include "settings/StoredValue.h"

namespace Velmora::Settings {

namespace {
const QString Group = QStringLiteral("SMART");
const QString ReadIntervalKey = QStringLiteral("ReadInterval");
constexpr int DefaultReadInterval = 900000;
} // namespace

SmartSettings::SmartSettings(QObject* parent)
    : SettingsCategory(tr("S.M.A.R.T."), QIcon(), parent)
    , m_intervals({ { tr("NONE"), 0 }, { tr("EVERY 5 MINUTES"), 300000 }, { tr("EVERY 10 MINUTES"), 600000 },
          { tr("EVERY 15 MINUTES"), 900000 }, { tr("EVERY 30 MINUTES"), 1800000 }, { tr("EVERY HOUR"), 3600000 } })
{
}

QWidget* SmartSettings::createWidget()
{
    m_widget = new SmartSettingsWidget;
    m_widget->setIntervals(m_intervals);
    m_widget->setReadInterval(storedInt(Group, ReadIntervalKey, DefaultReadInterval));
    connect(m_widget, &SmartSettingsWidget::settingsChanged, this, &SmartSettings::onApplyUserChanges);
    return m_widget;
}

void SmartSettings::onApplyUserChanges()
{
    // The widget speaks only when the user picks another interval, so nothing is written on load.
    if (m_widget)
        SettingsManager::setValue(Group, ReadIntervalKey, m_widget->readInterval());
}

} // namespace Velmora::Settings
