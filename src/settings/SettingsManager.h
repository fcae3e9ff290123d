#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

class QMutex;
class QSettings;

namespace Velmora::Settings {

// The one key-value store of the program: a thread-safe face of one QSettings object that
// announces every real change. The change signal is emitted with the (non-recursive) lock held,
// so a slot on a direct connection must take what it needs from the arguments and not call back.
class SettingsManager : public QObject
{
    Q_OBJECT

public:
    static SettingsManager* instance();

    static QVariant value(const QString& group, const QString& key, const QVariant& defaultValue = QVariant());
    static bool contains(const QString& group, const QString& key);
    static void setValue(const QString& group, const QString& key, const QVariant& value);
    static void clear();

signals:
    void settingsChanged(QString group, QString key, QVariant value);

private:
    explicit SettingsManager(QObject* parent = nullptr);
    ~SettingsManager() override;

    QVariant readValue(const QString& group, const QString& key, const QVariant& defaultValue);
    bool hasKey(const QString& group, const QString& key);
    void writeValue(const QString& group, const QString& key, const QVariant& value);
    void clearAll();

    QMutex* mutex;
    QSettings* settings;
};

} // namespace Velmora::Settings
