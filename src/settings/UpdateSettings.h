#pragma once

#include "settings/SettingsCategory.h"

namespace Velmora::Update {
class ApplicationUpdate;
}

namespace Velmora::Settings {

// "UPDATE": the program's own update. It stores nothing; its widget works on the updater and
// leads to the about view.
class UpdateSettings : public SettingsCategory
{
    Q_OBJECT

public:
    // `aboutAppDisplay` is whatever shows the about view: its slot onAboutAppDisplayRequest() is
    // called on the widget's "ABOUT".
    UpdateSettings(QObject* aboutAppDisplay, Update::ApplicationUpdate* applicationUpdate, QObject* parent = nullptr);

signals:
    void aboutAppDisplayRequest();

public slots:
    void onApplyUserChanges() override;

protected:
    QWidget* createWidget() override;

private:
    Update::ApplicationUpdate* m_applicationUpdate;
};

} // namespace Velmora::Settings
