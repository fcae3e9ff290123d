#include "gui/PagePlaceholder.h"

#include <QLabel>
#include <QVBoxLayout>

namespace Velmora::Gui {

PagePlaceholder::PagePlaceholder(Page::PageId id, const QString& caption, QWidget* parent)
    : Page(parent)
    , m_id(id)
    , m_caption(new QLabel(caption, this))
{
    m_caption->setObjectName(QStringLiteral("placeholderCaption"));
    m_caption->setAlignment(Qt::AlignCenter);
    m_caption->setStyleSheet(QStringLiteral("color: rgb(127, 149, 190); font: 24px \"Inter UI\";"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_caption);
}

QString PagePlaceholder::caption() const
{
    return m_caption->text();
}

} // namespace Velmora::Gui
