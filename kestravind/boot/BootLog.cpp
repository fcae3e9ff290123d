#include "boot/BootLog.h"

namespace Velmora::Daemon::Boot {

Q_LOGGING_CATEGORY(lcBoot, "kestravind.boot")

} // namespace Velmora::Daemon::Boot
