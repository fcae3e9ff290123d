#pragma once

#include "gui/Page.h"

#include <QMap>
#include <QWidget>

class QAbstractButton;

namespace Velmora::Gui {

class MenuBarButton;

// The row of destinations under the title: two groups with drop-downs and three plain entries.
// Exactly one entry is checked, the one whose page is shown.
class MenuBar : public QWidget
{
    Q_OBJECT

public:
    explicit MenuBar(QWidget* parent = nullptr);

    QAbstractButton* button(Page::PageId id) const { return buttons.value(id); }
    QString caption(Page::PageId id) const;

signals:
    void menuTriggered(Velmora::Gui::Page::PageId id);

public slots:
    void onSwitchToSettingsTab();
    void onSwitchToFirmwareUpdatetPage();

private slots:
    void menuClicked();

private:
    MenuBarButton* addTopButton(const QString& objectName, const QString& text, Page::PageId id);
    void addEntry(MenuBarButton* group, const QString& text, Page::PageId id);
    void addSeparator();
    void uncheckAll();

    QMap<int, QAbstractButton*> buttons;
};

} // namespace Velmora::Gui
