#include "settings/StoredValue.h"

#include "logger/Logger.h"
#include "settings/SettingsManager.h"

#include <QVariant>

namespace Velmora::Settings {

namespace {

QVariant stored(const QString& group, const QString& key)
{
    return SettingsManager::value(group, key, QVariant());
}

void reportUnreadable(const QString& group, const QString& key, const QVariant& value)
{
    Logger::warning(QString(), QStringLiteral("Settings: %1:%2 holds an unreadable value (%3), using the default")
                                   .arg(group, key, value.toString()));
}

} // namespace

bool storedBool(const QString& group, const QString& key, bool defaultValue)
{
    const QVariant value = stored(group, key);
    if (!value.isValid())
        return defaultValue;
    if (value.userType() == QMetaType::Bool)
        return value.toBool();
    // The text form is what a settings file holds after a restart.
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    reportUnreadable(group, key, value);
    return defaultValue;
}

int storedInt(const QString& group, const QString& key, int defaultValue)
{
    const QVariant value = stored(group, key);
    if (!value.isValid())
        return defaultValue;
    bool ok = false;
    // A list ("1, 2" in the file) or a flag converts to an empty or non-numeric text.
    const int number = value.userType() == QMetaType::Bool ? 0 : value.toString().trimmed().toInt(&ok);
    if (ok)
        return number;
    reportUnreadable(group, key, value);
    return defaultValue;
}

QString storedString(const QString& group, const QString& key, const QString& defaultValue)
{
    const QVariant value = stored(group, key);
    if (!value.isValid())
        return defaultValue;
    if (value.userType() == QMetaType::QString)
        return value.toString();
    reportUnreadable(group, key, value);
    return defaultValue;
}

} // namespace Velmora::Settings
