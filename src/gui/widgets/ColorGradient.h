#pragma once

#include <QColor>

namespace Velmora::Gui {

// The one gradient of the look: every lit dot, bar segment and chart takes its colour from here.
class ColorGradient
{
public:
    ColorGradient();
    ColorGradient(const QColor& start, const QColor& end);

    QColor start() const { return m_start; }
    QColor end() const { return m_end; }

    // t is clamped to 0..1; each channel is truncated, alpha is always opaque.
    QColor colorAt(double t) const;

    // The colour of a dot that is not lit.
    static QColor unlitColor() { return QColor(16, 44, 107); }

private:
    QColor m_start;
    QColor m_end;
};

} // namespace Velmora::Gui
