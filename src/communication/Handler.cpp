#include "communication/Handler.h"

namespace Velmora::Communication {

Handler::Handler(QObject* parent)
    : QObject(parent)
{
}

} // namespace Velmora::Communication
