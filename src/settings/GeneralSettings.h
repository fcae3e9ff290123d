#pragma once

#include "settings/SettingsCategory.h"

#include <QPointer>

namespace Velmora::Settings {

class GeneralSettingsWidget;

// "GENERAL": autostart, automatic update checks and the language, group "Application".
class GeneralSettings : public SettingsCategory
{
    Q_OBJECT

public:
    explicit GeneralSettings(QObject* parent = nullptr);

    // The languages offered, in this order.
    static QStringList languageCodes();
    // "ENGLISH (AMERICAN ENGLISH)": the language's English name and its own name, in capitals.
    static QString languageText(const QString& code);

public slots:
    void onApplyUserChanges() override;

protected:
    QWidget* createWidget() override;

private:
    // The widget's values as last loaded or written. Only what the user changes is written, so that a
    // value the widget cannot show (a language it does not offer) stays in the store untouched.
    struct Values {
        bool startOnSystemStartup = false;
        QString language;
        bool disableUpdates = false;
    };

    QPointer<GeneralSettingsWidget> m_widget;
    Values m_stored;
};

} // namespace Velmora::Settings
