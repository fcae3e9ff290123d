#include "gui/widgets/MenuBarButton.h"

#include "gui/widgets/MenuButton.h"

#include <QCoreApplication>
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
    if (!dropDown) {
        dropDown = new QMenu(this);
        // The window may have been resized since the last opening.
        connect(dropDown, &QMenu::aboutToShow, this, &MenuBarButton::fitMenuItems);
    }

    auto* item = new MenuButton(text, dropDown);
    QFont itemFont = font();
    itemFont.setWeight(QFont::Normal);
    item->setFont(itemFont);
    // An entry is a widget, not an action of the menu: its click alone would leave the menu open over
    // the page it leads to.
    connect(item, &QAbstractButton::clicked, dropDown, &QWidget::hide);

    auto* action = new QWidgetAction(dropDown);
    action->setDefaultWidget(item);
    dropDown->addAction(action);
    setMenu(dropDown);
    return item;
}

void MenuBarButton::fitMenuItems()
{
    QList<MenuButton*> items;
    int widest = width();
    for (QAction* action : menu()->actions()) {
        auto* widgetAction = qobject_cast<QWidgetAction*>(action);
        if (auto* item = widgetAction ? qobject_cast<MenuButton*>(widgetAction->defaultWidget()) : nullptr) {
            items.append(item);
            widest = std::max(widest, item->sizeHint().width());
        }
    }
    for (MenuButton* item : qAsConst(items))
        item->setFixedWidth(widest);
    // A menu measures its entries once and keeps those sizes until its style changes: make it measure
    // them again.
    QEvent styleChange(QEvent::StyleChange);
    QCoreApplication::sendEvent(menu(), &styleChange);
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
