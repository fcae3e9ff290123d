#pragma once

#include <QStringList>

namespace Velmora::Gui {

// Loads the typefaces that travel inside the program (":/fonts/") and lets the "Inter UI" names
// the widgets and stylesheets ask for resolve to them. Returns the families loaded; safe to call
// more than once. Needs a QGuiApplication.
QStringList registerApplicationFonts();

// The two halves for callers that load the faces themselves: make ":/fonts/" available, and let
// the "Inter UI" names resolve to the loaded faces.
void initFontResources();
void mapLegacyFontNames();

// Reads the system's font configuration on a thread of its own. The font database cannot be built
// without it, and reading it takes some milliseconds that the application object's connection to
// the display can hide. To be called before the QApplication is created; the first use of the font
// database has to wait for it.
void startReadingFontConfiguration();
void waitForFontConfiguration();

// Whether the face in the file of that name (in ":/fonts/") is one the main window's first page
// shows: regular, semi-bold and black. The others can wait until that page is on the screen.
bool isFirstWindowFace(const QString& fileName);

} // namespace Velmora::Gui
