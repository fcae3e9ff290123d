#pragma once

namespace Velmora::Gui {

// Makes the pictures, the stylesheet and the licence texts compiled into the core library
// reachable under ":/". Widgets that use them call it; calling it again costs nothing.
void initGuiResources();

} // namespace Velmora::Gui
