#pragma once

#include <QColor>
#include <QFontMetrics>
#include <QToolButton>

namespace Velmora::Gui {

class MenuButton;

// A top-level entry of the menu bar: its text word-wrapped and centred on the bar's colour, with a
// drop-down of MenuButtons for the pages of its group.
class MenuBarButton : public QToolButton
{
    Q_OBJECT

public:
    explicit MenuBarButton(QWidget* parent = nullptr);

    static QColor backgroundColor() { return QColor(0, 36, 94); }
    static QColor normalTextColor() { return QColor(127, 149, 190); }
    static QColor hoverTextColor() { return QColor(154, 174, 209); }
    static QColor checkedTextColor() { return Qt::white; }

    MenuButton* addMenuItem(const QString& text);

    bool isHovered() const { return m_hovered; }
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private slots:
    // The entries are as wide as this button, or as the widest entry's text where that needs more
    // (a long translation), so that none is cut and all fill the drop-down.
    void fitMenuItems();

private:
    QFontMetrics m_metrics;
    QColor m_textColor;
    bool m_hovered = false;
};

} // namespace Velmora::Gui
