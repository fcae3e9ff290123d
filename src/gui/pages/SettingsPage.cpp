#include "gui/pages/SettingsPage.h"

#include "gui/pages/PageStyle.h"
#include "settings/SettingsCategory.h"

#include <QFrame>
#include <QGroupBox>
#include <QSpacerItem>
#include <QVBoxLayout>

namespace Velmora::Gui {

namespace {

const char* const Stylesheet = R"(
QGroupBox {
    color: rgb(255, 255, 255); font: 16px "Inter UI Black";
    background-color: rgb(0, 2, 40); border: 1px solid rgb(0, 36, 94); border-radius: 4px;
    margin-top: 30px;
}
QGroupBox::title { subcontrol-origin: margin; subcontrol-position: top left; left: 0; top: 0; }
QCheckBox { color: rgb(255, 255, 255); font: 14px "Inter UI Semi Bold"; spacing: 12px; }
QCheckBox::indicator { width: 16px; height: 16px; border: 1px solid rgb(0, 225, 255); background: rgb(0, 2, 63); }
QCheckBox::indicator:hover { background: rgb(0, 34, 89); }
QCheckBox::indicator:checked {
    background: qlineargradient(x1: 0, y1: 0, x2: 1, y2: 1, stop: 0 rgb(0, 225, 255), stop: 1 rgb(160, 3, 218));
}
#label_languageChangeInfo { color: rgb(0, 225, 255); }
QComboBox { combobox-popup: 0; }
QComboBox QAbstractItemView { border: 1px solid rgb(16, 44, 107); outline: none; }
QComboBox QAbstractItemView::item { min-height: 28px; padding: 0 8px; }
)";

} // namespace

SettingsPage::SettingsPage(QWidget* parent)
    : Page(parent)
{
    setObjectName(QStringLiteral("SettingsPage"));
    setStyleSheet(PageStyle::stylesheet() + QString::fromUtf8(Stylesheet));

    frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("frame"));
    frameLayout = new QVBoxLayout(frame);
    frameLayout->setContentsMargins(0, 0, 0, 0);
    frameLayout->setSpacing(24);
    frameLayout->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 16, 40, 32);
    layout->addWidget(frame);
}

void SettingsPage::addCategory(Settings::SettingsCategory* category)
{
    category->setParent(this);
    auto* box = new QGroupBox(category->name(), frame);
    box->setObjectName(QString::fromLatin1(category->metaObject()->className()).section(QStringLiteral("::"), -1));
    // Just before the spacer, which stays last.
    frameLayout->insertWidget(frameLayout->count() - 1, box);
    auto* boxLayout = new QVBoxLayout(box);
    boxLayout->setContentsMargins(0, 0, 0, 0);
    boxLayout->addWidget(category->widget());
    connect(this, &SettingsPage::applyUserChanges, category, &Settings::SettingsCategory::onApplyUserChanges);
}

} // namespace Velmora::Gui
