#include "settings/UpdateSettings.h"

#include "logger/Logger.h"
#include "update/UpdateSettingsWidget.h"

namespace Velmora::Settings {

UpdateSettings::UpdateSettings(QObject* aboutAppDisplay, Update::ApplicationUpdate* applicationUpdate, QObject* parent)
    : SettingsCategory(tr("UPDATE"), QIcon(QStringLiteral(":/icons/settings/update")), parent)
    , m_applicationUpdate(applicationUpdate)
{
    // The settings know the about view only by its slot, so that they need nothing of the window.
    if (!connect(this, SIGNAL(aboutAppDisplayRequest()), aboutAppDisplay, SLOT(onAboutAppDisplayRequest())))
        Logger::error(QString(), QStringLiteral("The about view cannot be reached from the update settings"));
}

QWidget* UpdateSettings::createWidget()
{
    auto* widget = new Update::UpdateSettingsWidget(m_applicationUpdate);
    connect(widget, &Update::UpdateSettingsWidget::showAboutApp, this, &UpdateSettings::aboutAppDisplayRequest);
    return widget;
}

void UpdateSettings::onApplyUserChanges()
{
    // Nothing of this category is stored: the update is an action, not a setting.
}

} // namespace Velmora::Settings
