#pragma once

#include <QProgressBar>

namespace Velmora::Gui {

// A progress bar drawn as a row of rounded segments, lit along the gradient up to the value.
class ProgressBar : public QProgressBar
{
    Q_OBJECT

public:
    using QProgressBar::QProgressBar;

    // Segments are 5 pixels wide on a 9-pixel pitch.
    static constexpr int SegmentPitch = 9;
    static constexpr int SegmentWidth = 5;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Velmora::Gui
