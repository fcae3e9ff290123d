#include "settings/SettingsCategory.h"

namespace Velmora::Settings {

SettingsCategory::SettingsCategory(const QString& name, const QIcon& icon, QObject* parent)
    : QObject(parent)
    , m_name(name)
    , m_icon(icon)
{
}

SettingsCategory::~SettingsCategory()
{
    if (m_widget && !m_widget->parent())
        delete m_widget;
}

QWidget* SettingsCategory::widget()
{
    if (!m_widget)
        m_widget = createWidget();
    return m_widget;
}

QString SettingsCategory::name() const
{
    return m_name;
}

QIcon SettingsCategory::icon() const
{
    return m_icon;
}

} // namespace Velmora::Settings
