#include "gui/widgets/ProgressBar.h"

#include "gui/widgets/ColorGradient.h"

#include <QPainter>

namespace Velmora::Gui {

void ProgressBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(Qt::NoPen);

    const ColorGradient gradient;
    const int count = width() / SegmentPitch;
    // The fill is measured against the maximum alone, as the pages give ranges from 0.
    const double filled = maximum() != 0 ? double(value() - minimum()) / maximum() : 0.0;
    for (int i = 0; i < count; ++i) {
        const double t = double(i) / count;
        painter.setBrush(filled > t ? gradient.colorAt(t) : ColorGradient::unlitColor());
        painter.drawRoundedRect(QRectF(SegmentPitch * i, 0, SegmentWidth, height()), 4, 4);
    }
}

} // namespace Velmora::Gui
