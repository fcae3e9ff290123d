#include "gui/Page.h"

#include <QPainter>
#include <QStyleOption>

namespace Velmora::Gui {

Page::Page(QWidget* parent)
    : QWidget(parent)
{
}

void Page::paintEvent(QPaintEvent*)
{
    // A plain QWidget subclass ignores its stylesheet background unless it draws PE_Widget itself.
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

} // namespace Velmora::Gui
