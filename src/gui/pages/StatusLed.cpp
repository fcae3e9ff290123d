#include "gui/pages/StatusLed.h"

#include "gui/GuiResources.h"

#include <QLabel>
#include <QPixmap>

namespace Velmora::Gui::StatusLed {

namespace {
constexpr int LedSize = 24;
}

QLabel* create(const QString& objectName, QWidget* parent)
{
    initGuiResources();
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
