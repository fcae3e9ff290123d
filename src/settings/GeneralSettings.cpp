#include "settings/GeneralSettings.h"

#include "settings/GeneralSettingsWidget.h"
#include "settings/SettingsManager.h"
#include "settings/StoredValue.h"

#include <QLocale>

namespace Velmora::Settings {

namespace {
const QString Group = QStringLiteral("Application");
const QString StartOnSystemStartupKey = QStringLiteral("StartOnSystemStartup");
const QString LanguageKey = QStringLiteral("Language");
const QString DisableUpdatesKey = QStringLiteral("DisableUpdates");
const QString DefaultLanguage = QStringLiteral("en");
const char* const Languages = "en,pl,ru,uk";
} // namespace

GeneralSettings::GeneralSettings(QObject* parent)
    : SettingsCategory(tr("GENERAL"), QIcon(QStringLiteral(":/icons/settings/general")), parent)
{
}

QStringList GeneralSettings::languageCodes()
{
    return QString::fromLatin1(Languages).split(QLatin1Char(','));
}

QString GeneralSettings::languageText(const QString& code)
{
    const QLocale locale(code);
    return QStringLiteral("%1 (%2)").arg(QLocale::languageToString(locale.language()).toUpper(),
        locale.nativeLanguageName().toUpper());
}

QWidget* GeneralSettings::createWidget()
{
    m_widget = new GeneralSettingsWidget;
    m_widget->setStartOnSystemStartup(storedBool(Group, StartOnSystemStartupKey, false));
    for (const QString& code : languageCodes())
        m_widget->addLanguage(languageText(code), code);
    m_widget->setLanguage(storedString(Group, LanguageKey, DefaultLanguage));
    // The box speaks of enabling, the store of disabling.
    m_widget->setUpdatesEnabled(!storedBool(Group, DisableUpdatesKey, false));
    m_stored = { m_widget->startOnSystemStartup(), m_widget->language(), !m_widget->updatesEnabled() };
    connect(m_widget, &GeneralSettingsWidget::settingsChanged, this, &GeneralSettings::onApplyUserChanges);
    return m_widget;
}

void GeneralSettings::onApplyUserChanges()
{
    if (!m_widget)
        return;
    const Values shown { m_widget->startOnSystemStartup(), m_widget->language(), !m_widget->updatesEnabled() };
    if (shown.startOnSystemStartup != m_stored.startOnSystemStartup)
        SettingsManager::setValue(Group, StartOnSystemStartupKey, shown.startOnSystemStartup);
    if (shown.language != m_stored.language)
        SettingsManager::setValue(Group, LanguageKey, shown.language);
    if (shown.disableUpdates != m_stored.disableUpdates)
        SettingsManager::setValue(Group, DisableUpdatesKey, shown.disableUpdates);
    m_stored = shown;
}

} // namespace Velmora::Settings
