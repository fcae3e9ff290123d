#include "gui/widgets/MenuBarButton.h"

#include "gui/widgets/MenuButton.h"

#include <QEvent>
#include <QMenu>
#include <QPainter>
#include <QWidgetAction>

#include <algorithm>

namespace Velmora::Gui {

MenuBarButton::MenuBarButton(QWidget* parent)
    : QToolButton(parent)
    , m_metrics(font())
    , m_textColor(normalTextColor())
{
    setPopupMode(QToolButton::InstantPopup);
}

QSize MenuBarButton::sizeHint() const
{
    int widest = 0;
    for (const QString& line : text().split(QLatin1Char('\n')))
        widest = std::max(widest, m_metrics.horizontalAdvance(line));
    return QSize(widest, 47);
}

MenuButton* MenuBarButton::addMenuItem(const QString& text)
{
    QMenu* dropDown = menu();
    if (!dropDown)
        dropDown = new QMenu(this);

    auto* item = new MenuButton(text, dropDown);
    QFont itemFont = font();
    itemFont.setWeight(QFont::Normal);
    item->setFont(itemFont);
    fitMenuItem(item);

    auto* action = new QWidgetAction(dropDown);
    action->setDefaultWidget(item);
    dropDown->addAction(action);
    setMenu(dropDown);
    return item;
}

void MenuBarButton::fitMenuItem(MenuButton* item) const
{
    item->setFixedWidth(std::max(width(), item->sizeHint().width()));
}

void MenuBarButton::fitMenuItems() const
{
    if (!menu())
        return;
    for (QAction* action : menu()->actions()) {
        auto* widgetAction = qobject_cast<QWidgetAction*>(action);
        if (auto* item = widgetAction ? qobject_cast<MenuButton*>(widgetAction->defaultWidget()) : nullptr)
            fitMenuItem(item);
    }
}

bool MenuBarButton::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::Enter:
        m_hovered = true;
        update();
        break;
    case QEvent::Leave:
        m_hovered = false;
        update();
        break;
    case QEvent::FontChange:
        m_metrics = QFontMetrics(font());
        updateGeometry();
        break;
    case QEvent::StyleChange:
    case QEvent::Resize:
        // The drop-down's entries take this width, so it may not shrink under them.
        setMinimumWidth(width());
        fitMenuItems();
        break;
    default:
        break;
    }
    return QToolButton::event(event);
}

void MenuBarButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), backgroundColor());

    QColor color = m_hovered ? hoverTextColor() : m_textColor;
    if (isChecked())
        color = checkedTextColor();
    painter.setPen(color);
    painter.setFont(font());
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, text());
}

} // namespace Velmora::Gui
