#include "gui/widgets/SmoothEllipseItem.h"

#include <QPainter>

namespace Velmora::Gui {

void SmoothEllipseItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget)
{
    painter->setRenderHint(QPainter::Antialiasing, true);
    QGraphicsEllipseItem::paint(painter, option, widget);
}

} // namespace Velmora::Gui
