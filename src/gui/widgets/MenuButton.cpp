#include "gui/widgets/MenuButton.h"

#include "gui/widgets/MenuBarButton.h"

#include <QEvent>
#include <QPainter>

namespace Velmora::Gui {

MenuButton::MenuButton(QWidget* parent)
    : MenuButton(QString(), parent)
{
}

MenuButton::MenuButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent)
{
    setFixedHeight(40);
    setCheckable(true);
}

QSize MenuButton::sizeHint() const
{
    return QSize(TextLeft + fontMetrics().horizontalAdvance(text()) + TextRight, height());
}

bool MenuButton::event(QEvent* event)
{
    if (event->type() == QEvent::Enter) {
        m_hovered = true;
        update();
    } else if (event->type() == QEvent::Leave) {
        m_hovered = false;
        update();
    }
    return QPushButton::event(event);
}

void MenuButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), MenuBarButton::backgroundColor());

    QColor color = m_hovered ? MenuBarButton::hoverTextColor() : MenuBarButton::normalTextColor();
    if (isChecked())
        color = MenuBarButton::checkedTextColor();
    painter.setPen(color);
    painter.setFont(font());
    painter.drawText(rect().adjusted(TextLeft, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text());
}

} // namespace Velmora::Gui
