#pragma once

#include <QStringList>

namespace Velmora::Gui {

// Loads the typefaces that travel inside the program (":/fonts/") and lets the "Inter UI" names
// the widgets and stylesheets ask for resolve to them. Returns the families loaded; safe to call
// more than once. Needs a QGuiApplication.
QStringList registerApplicationFonts();

} // namespace Velmora::Gui
