#pragma once

#include <QGraphicsEllipseItem>

namespace Velmora::Gui {

// The ordinary ellipse item, painted with antialiasing.
class SmoothEllipseItem : public QGraphicsEllipseItem
{
public:
    using QGraphicsEllipseItem::QGraphicsEllipseItem;

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
};

} // namespace Velmora::Gui
