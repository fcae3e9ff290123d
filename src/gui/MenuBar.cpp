#include "gui/MenuBar.h"

#include "gui/widgets/MenuBarButton.h"
#include "gui/widgets/MenuButton.h"

#include <QFrame>
#include <QHBoxLayout>

namespace Velmora::Gui {

MenuBar::MenuBar(QWidget* parent)
    : QWidget(parent)
{
    // The signal carries the id across queued connections and to text-based connections too.
    qRegisterMetaType<Page::PageId>("Velmora::Gui::Page::PageId");
    setObjectName(QStringLiteral("menu"));
    setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    MenuBarButton* ssdManagement =
        addTopButton(QStringLiteral("ssdManagementButton"), tr("SSD MANAGEMENT"), Page::SsdManagementId);
    addSeparator();
    MenuBarButton* additionalFeatures =
        addTopButton(QStringLiteral("advancedFeaturesButton"), tr("ADDITIONAL FEATURES"), Page::AdditionalFeaturesId);
    addSeparator();
    addTopButton(QStringLiteral("dataMigrationButton"), tr("DATA MIGRATION"), Page::DataMigrationId);
    addSeparator();
    addTopButton(QStringLiteral("technicalSupportButton"), tr("TECHNICAL SUPPORT"), Page::TechnicalSupportId);
    addSeparator();
    addTopButton(QStringLiteral("settingsButton"), tr("SETTINGS"), Page::SettingsId);

    addEntry(ssdManagement, tr("MY SSD"), Page::SsdStatusId);
    addEntry(ssdManagement, tr("SMART PARAMETERS"), Page::SmartParametersId);
    addEntry(ssdManagement, tr("PERFORMANCE TEST"), Page::PerformanceTestId);
    addEntry(additionalFeatures, tr("FIRMWARE UPDATE"), Page::FirmwareUpdateId);

    // The groups only open their drop-downs; their entries do the navigating.
    for (int id : { Page::DataMigrationId, Page::TechnicalSupportId, Page::SettingsId })
        connect(buttons.value(id), &QAbstractButton::clicked, this, &MenuBar::menuClicked);
}

QString MenuBar::caption(Page::PageId id) const
{
    const QAbstractButton* entry = buttons.value(id);
    return entry ? entry->text() : QString();
}

MenuBarButton* MenuBar::addTopButton(const QString& objectName, const QString& text, Page::PageId id)
{
    auto* button = new MenuBarButton(this);
    button->setObjectName(objectName);
    button->setText(text);
    button->setCheckable(true);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    layout()->addWidget(button);
    buttons.insert(id, button);
    return button;
}

void MenuBar::addEntry(MenuBarButton* group, const QString& text, Page::PageId id)
{
    MenuButton* entry = group->addMenuItem(text);
    buttons.insert(id, entry);
    connect(entry, &QAbstractButton::clicked, this, &MenuBar::menuClicked);
}

void MenuBar::addSeparator()
{
    auto* line = new QFrame(this);
    line->setFrameShape(QFrame::VLine);
    line->setFixedWidth(1);
    line->setStyleSheet(QStringLiteral("color: rgb(0, 10, 50); background: rgb(0, 10, 50);"));
    layout()->addWidget(line);
}

void MenuBar::uncheckAll()
{
    for (QAbstractButton* button : qAsConst(buttons))
        button->setChecked(false);
}

void MenuBar::menuClicked()
{
    uncheckAll();
    auto* clicked = qobject_cast<QAbstractButton*>(sender());
    if (clicked)
        clicked->setChecked(true);
    emit menuTriggered(static_cast<Page::PageId>(buttons.key(clicked, Page::HomeId)));
}

void MenuBar::onSwitchToSettingsTab()
{
    uncheckAll();
    buttons.value(Page::SettingsId)->setChecked(true);
}

void MenuBar::onSwitchToFirmwareUpdatetPage()
{
    uncheckAll();
    buttons.value(Page::FirmwareUpdateId)->setChecked(true);
}

} // namespace Velmora::Gui
