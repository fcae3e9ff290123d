#include "gui/widgets/ColorGradient.h"

#include <QtGlobal>

namespace Velmora::Gui {

ColorGradient::ColorGradient()
    : ColorGradient(QColor(0, 225, 255), QColor(160, 3, 218))
{
}

ColorGradient::ColorGradient(const QColor& start, const QColor& end)
    : m_start(start)
    , m_end(end)
{
}

QColor ColorGradient::colorAt(double t) const
{
    t = qBound(0.0, t, 1.0);
    const auto mix = [t](int a, int b) { return static_cast<int>(a * (1.0 - t) + b * t); };
    return QColor(mix(m_start.red(), m_end.red()), mix(m_start.green(), m_end.green()),
                  mix(m_start.blue(), m_end.blue()), 255);
}

} // namespace Velmora::Gui
