#include "gui/TitleBar.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyleOption>

#include <cmath>

namespace Velmora::Gui {

TitleBar::TitleBar(QWidget* parent)
    : QWidget(parent)
{
}

void TitleBar::paintEvent(QPaintEvent*)
{
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

void TitleBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressOffset = event->globalPos() - frameGeometry().topLeft();
        m_lastOffset = QPoint(0, 0);
    }
    event->accept();
}

void TitleBar::mouseMoveEvent(QMouseEvent* event)
{
    if ((event->buttons() & Qt::LeftButton) && !m_moveSuppressed) {
        const QPoint difference = event->globalPos() - m_pressOffset;
        emit moveWindowBy(difference - m_lastOffset);
        m_lastOffset = difference;
    }
    event->accept();
}

void TitleBar::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    m_moveSuppressed = false;
    // Dropping the bar on the top edge of the screen zooms, as a double click would.
    if (std::lround(event->screenPos().y()) == 0)
        emit doubleClicked();
}

void TitleBar::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->accept();
    m_moveSuppressed = true;
    emit doubleClicked();
}

} // namespace Velmora::Gui
