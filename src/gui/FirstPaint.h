#pragma once

#include <functional>

class QObject;
class QWidget;

namespace Velmora::Gui {

// Runs `work` once, on the event loop, after `window` has been painted for the first time: what the
// first window does not need should not delay it. A window that is not shown, or that no paint
// reaches within a few seconds (a window manager may keep it unmapped), does not hold the work
// back. Nothing runs if `context` is destroyed before.
void runAfterFirstPaint(QWidget* window, QObject* context, std::function<void()> work);

} // namespace Velmora::Gui
