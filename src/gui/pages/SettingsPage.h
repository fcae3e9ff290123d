#pragma once

#include "gui/Page.h"

class QFrame;
class QVBoxLayout;

namespace Velmora::Settings {
class SettingsCategory;
}

namespace Velmora::Gui {

// "SETTINGS": the setting categories one below the other, each in a box titled with its name.
// Every category stores a change the moment the user makes it; there is no apply step.
class SettingsPage : public Page
{
    Q_OBJECT

public:
    explicit SettingsPage(QWidget* parent = nullptr);

    // Adds the category's box after those already there; the page takes the category over.
    void addCategory(Velmora::Settings::SettingsCategory* category);

signals:
    // A page-wide apply for categories that would wait for one; none does today.
    void applyUserChanges();

private:
    QFrame* frame = nullptr;
    QVBoxLayout* frameLayout = nullptr;
};

} // namespace Velmora::Gui
