#include "settings/GeneralSettingsWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace Velmora::Settings {

GeneralSettingsWidget::GeneralSettingsWidget(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("GeneralSettingsWidget"));
    startOnSystemStartupBox = new QCheckBox(tr("START ON SYSTEM STARTUP"), this);
    startOnSystemStartupBox->setObjectName(QStringLiteral("startOnSystemStartup"));
    enableUpdates = new QCheckBox(tr("ENABLE AUTOMATIC UPDATES CHECK"), this);
    enableUpdates->setObjectName(QStringLiteral("enableUpdates"));

    label_language = new QLabel(tr("LANGUAGE"), this);
    label_language->setObjectName(QStringLiteral("label_language"));
    comboBox_language = new QComboBox(this);
    comboBox_language->setObjectName(QStringLiteral("comboBox_language"));
    comboBox_language->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    // Lets the page's stylesheet give the items of the open list their room.
    comboBox_language->setItemDelegate(new QStyledItemDelegate(comboBox_language));
    label_languageChangeInfo = new QLabel(tr("CHANGES WILL TAKE EFFECT AFTER AN APPLICATION RESTART"), this);
    label_languageChangeInfo->setObjectName(QStringLiteral("label_languageChangeInfo"));
    label_languageChangeInfo->setWordWrap(true);
    // Keeps its room while hidden, so that the list keeps its width and nothing moves when it shows.
    QSizePolicy hintPolicy = label_languageChangeInfo->sizePolicy();
    hintPolicy.setRetainSizeWhenHidden(true);
    label_languageChangeInfo->setSizePolicy(hintPolicy);
    label_languageChangeInfo->hide();

    // The hint stands beside the list it is about, so that it takes no row of its own.
    auto* languageLayout = new QHBoxLayout;
    languageLayout->setSpacing(16);
    languageLayout->addWidget(label_language);
    languageLayout->addWidget(comboBox_language);
    languageLayout->addSpacing(8);
    // It takes the rest of the row, and wraps only where the window is too narrow for it.
    languageLayout->addWidget(label_languageChangeInfo, 1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(16);
    layout->addWidget(startOnSystemStartupBox);
    layout->addWidget(enableUpdates);
    layout->addLayout(languageLayout);

    connect(startOnSystemStartupBox, &QCheckBox::toggled, this, &GeneralSettingsWidget::settingsChanged);
    connect(enableUpdates, &QCheckBox::toggled, this, &GeneralSettingsWidget::settingsChanged);
    connect(comboBox_language, qOverload<int>(&QComboBox::currentIndexChanged), this,
        &GeneralSettingsWidget::onLanguageChanged);
}

bool GeneralSettingsWidget::startOnSystemStartup() const
{
    return startOnSystemStartupBox->isChecked();
}

void GeneralSettingsWidget::setStartOnSystemStartup(bool enabled)
{
    const QSignalBlocker blocker(startOnSystemStartupBox);
    startOnSystemStartupBox->setChecked(enabled);
}

bool GeneralSettingsWidget::updatesEnabled() const
{
    return enableUpdates->isChecked();
}

void GeneralSettingsWidget::setUpdatesEnabled(bool enabled)
{
    const QSignalBlocker blocker(enableUpdates);
    enableUpdates->setChecked(enabled);
}

void GeneralSettingsWidget::addLanguage(const QString& text, const QString& code)
{
    const QSignalBlocker blocker(comboBox_language);
    comboBox_language->addItem(text, code);
}

QString GeneralSettingsWidget::language() const
{
    return comboBox_language->currentData().toString();
}

void GeneralSettingsWidget::setLanguage(const QString& code)
{
    const QSignalBlocker blocker(comboBox_language);
    comboBox_language->setCurrentIndex(qMax(0, comboBox_language->findData(code)));
}

void GeneralSettingsWidget::onLanguageChanged()
{
    label_languageChangeInfo->show();
    emit settingsChanged();
}

} // namespace Velmora::Settings
