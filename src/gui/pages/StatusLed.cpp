#include "gui/pages/StatusLed.h"

#include <QLabel>
#include <QPixmap>

// Q_INIT_RESOURCE may not stand inside a namespace.
static void initIconResourcesOnce()
{
    Q_INIT_RESOURCE(icons);
}

namespace Velmora::Gui::StatusLed {

namespace {
constexpr int LedSize = 24;
}

void initResources()
{
    static const bool done = [] {
        initIconResourcesOnce();
        return true;
    }();
    Q_UNUSED(done)
}

QLabel* create(const QString& objectName, QWidget* parent)
{
    initResources();
    auto* led = new QLabel(parent);
    led->setObjectName(objectName);
    led->setFixedSize(LedSize, LedSize);
    led->setAlignment(Qt::AlignCenter);
    return led;
}

void show(QLabel* led, const QString& image)
{
    // QPixmap's file loader keeps rendered pictures in the pixmap cache: repeated updates cost
    // nothing but a lookup.
    led->setPixmap(QPixmap(image));
}

} // namespace Velmora::Gui::StatusLed
