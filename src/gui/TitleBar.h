#pragma once

#include <QPoint>
#include <QWidget>

namespace Velmora::Gui {

// The header of the main window. It reports drags and double clicks; the frame decides what to
// make of them.
class TitleBar : public QWidget
{
    Q_OBJECT

public:
    explicit TitleBar(QWidget* parent = nullptr);

signals:
    void moveWindowBy(QPoint movement);
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QPoint m_pressOffset;
    QPoint m_lastOffset;
    bool m_moveSuppressed = false;
};

} // namespace Velmora::Gui
