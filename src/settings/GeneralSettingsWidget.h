#pragma once

#include <QString>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;

namespace Velmora::Settings {

// Autostart, automatic update checks and the language of the program. Setting a control from the
// store is silent; only what the user does announces `settingsChanged()`.
class GeneralSettingsWidget : public QWidget
{
    Q_OBJECT

public:
    explicit GeneralSettingsWidget(QWidget* parent = nullptr);

    bool startOnSystemStartup() const;
    void setStartOnSystemStartup(bool enabled);
    bool updatesEnabled() const;
    void setUpdatesEnabled(bool enabled);

    void addLanguage(const QString& text, const QString& code);
    // The code of the chosen language.
    QString language() const;
    // Selects the language of `code`, or the first one when it is not offered.
    void setLanguage(const QString& code);

signals:
    void settingsChanged();

private slots:
    void onLanguageChanged();

private:
    QCheckBox* startOnSystemStartupBox = nullptr;
    QCheckBox* enableUpdates = nullptr;
    QLabel* label_language = nullptr;
    QComboBox* comboBox_language = nullptr;
    QLabel* label_languageChangeInfo = nullptr;
};

} // namespace Velmora::Settings
