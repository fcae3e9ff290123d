#pragma once

#include <QPushButton>

namespace Velmora::Gui {

// An entry of a MenuBarButton's drop-down: as wide as the drop-down, text at the left.
class MenuButton : public QPushButton
{
    Q_OBJECT

public:
    explicit MenuButton(QWidget* parent = nullptr);
    explicit MenuButton(const QString& text, QWidget* parent = nullptr);

    static constexpr int TextLeft = 50;
    static constexpr int TextRight = 24;

    bool isHovered() const { return m_hovered; }
    // Room for the whole text: the drop-down grows rather than cut a long entry.
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_hovered = false;
};

} // namespace Velmora::Gui
