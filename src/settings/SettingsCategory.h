#pragma once

#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QWidget>

namespace Velmora::Settings {

// One entry of the settings page: a name, an icon and a widget made the first time it is asked
// for. The category moves what the user changes on its widget into the store.
class SettingsCategory : public QObject
{
    Q_OBJECT

public:
    // `name` comes already translated.
    SettingsCategory(const QString& name, const QIcon& icon, QObject* parent = nullptr);
    ~SettingsCategory() override;

    virtual QWidget* widget();
    virtual QString name() const;
    virtual QIcon icon() const;

public slots:
    virtual void onApplyUserChanges() = 0;

signals:
    // For a category that would rather report a change than write it; the present ones write.
    void userSettingChange(QString group, QString key, QVariant value);

protected:
    virtual QWidget* createWidget() = 0;

private:
    // Handed to the page, which takes it over; guarded so that a widget the page never took does
    // not outlive the category.
    QPointer<QWidget> m_widget;
    QString m_name;
    QIcon m_icon;
};

} // namespace Velmora::Settings
