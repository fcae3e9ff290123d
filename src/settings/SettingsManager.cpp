#include "settings/SettingsManager.h"

#include "logger/Logger.h"

#include <QMutex>
#include <QMutexLocker>
#include <QSettings>

namespace Velmora::Settings {

namespace {
const char* const Organisation = "BRANTEL";
const char* const Application = "KESTRAVIN";
} // namespace

SettingsManager* SettingsManager::instance()
{
    // Lives from its first use to the end of the process.
    static SettingsManager* manager = new SettingsManager;
    return manager;
}

SettingsManager::SettingsManager(QObject* parent)
    : QObject(parent)
    , mutex(new QMutex)
    , settings(new QSettings(QLatin1String(Organisation), QLatin1String(Application), this))
{
}

SettingsManager::~SettingsManager()
{
    delete mutex;
}

QVariant SettingsManager::value(const QString& group, const QString& key, const QVariant& defaultValue)
{
    return instance()->readValue(group, key, defaultValue);
}

bool SettingsManager::contains(const QString& group, const QString& key)
{
    return instance()->hasKey(group, key);
}

void SettingsManager::setValue(const QString& group, const QString& key, const QVariant& value)
{
    instance()->writeValue(group, key, value);
}

void SettingsManager::clear()
{
    instance()->clearAll();
}

QVariant SettingsManager::readValue(const QString& group, const QString& key, const QVariant& defaultValue)
{
    QMutexLocker locker(mutex);
    // Another process (a second instance, the installer) may have written meanwhile.
    settings->sync();
    settings->beginGroup(group);
    const QVariant result = settings->value(key, defaultValue);
    settings->endGroup();
    return result;
}

bool SettingsManager::hasKey(const QString& group, const QString& key)
{
    QMutexLocker locker(mutex);
    settings->beginGroup(group);
    const bool result = settings->contains(key);
    settings->endGroup();
    return result;
}

void SettingsManager::writeValue(const QString& group, const QString& key, const QVariant& value)
{
    QMutexLocker locker(mutex);
    Logger::debug(QString(), QStringLiteral("Settings: set %1:%2 = %3").arg(group, key, value.toString()));
    settings->beginGroup(group);
    if (!settings->contains(key) || settings->value(key) != value) {
        settings->setValue(key, value);
        emit settingsChanged(group, key, value);
    }
    settings->endGroup();
    settings->sync();
}

void SettingsManager::clearAll()
{
    QMutexLocker locker(mutex);
    Logger::debug(QString(), QStringLiteral("Clear settings"));
    settings->clear();
}

} // namespace Velmora::Settings
