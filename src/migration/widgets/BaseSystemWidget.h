#pragma once

#include <QWidget>

namespace Velmora::System {

// Common ground of the drive and partition boxes: they can be selected, and a click counts on
// release, so that a press that is dragged away still lands on the widget under the mouse.
class BaseSystemWidget : public QWidget
{
    Q_OBJECT

public:
    explicit BaseSystemWidget(QWidget* parent = nullptr);

    bool isSelected() const { return m_selected; }

public slots:
    void setSelected(bool selected);

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool m_selected = false;
};

} // namespace Velmora::System
