#pragma once

#include "gui/Page.h"

#include <QString>

class QLabel;

namespace Velmora::Gui {

// Stands in the stack for a destination whose page is not written yet: it shows the caption of the
// destination and nothing else, so that the navigation can be used and seen end to end.
class PagePlaceholder : public Page
{
    Q_OBJECT

public:
    PagePlaceholder(Page::PageId id, const QString& caption, QWidget* parent = nullptr);

    Page::PageId pageId() const { return m_id; }
    QString caption() const;

private:
    Page::PageId m_id;
    QLabel* m_caption;
};

} // namespace Velmora::Gui
