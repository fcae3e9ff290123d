#include "gui/GuiResources.h"

#include <QtGlobal>

// Resource files compiled into a static library stay out of the program unless each is named
// once. Q_INIT_RESOURCE may not stand inside a namespace.
static void initGuiResourcesOnce()
{
    Q_INIT_RESOURCE(style);
    Q_INIT_RESOURCE(icons);
    Q_INIT_RESOURCE(licenses);
    Q_INIT_RESOURCE(tray);
}

namespace Velmora::Gui {

void initGuiResources()
{
    static const bool done = (initGuiResourcesOnce(), true);
    Q_UNUSED(done);
}

} // namespace Velmora::Gui
