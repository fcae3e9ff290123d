#include "migration/widgets/BaseSystemWidget.h"

namespace Velmora::System {

BaseSystemWidget::BaseSystemWidget(QWidget* parent)
    : QWidget(parent)
{
}

void BaseSystemWidget::setSelected(bool selected)
{
    m_selected = selected;
    update();
}

void BaseSystemWidget::mousePressEvent(QMouseEvent*)
{
}

void BaseSystemWidget::mouseReleaseEvent(QMouseEvent*)
{
    emit clicked();
}

} // namespace Velmora::System
