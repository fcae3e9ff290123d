#include "SmartLog.h"

namespace Velmora::Daemon::Smart {

Q_LOGGING_CATEGORY(lcSmart, "kestravind.smart")

} // namespace Velmora::Daemon::Smart
