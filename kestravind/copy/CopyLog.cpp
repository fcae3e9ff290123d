#include "copy/CopyLog.h"

namespace Velmora::Daemon::Copy {

Q_LOGGING_CATEGORY(copyLog, "kestravind.copy")

} // namespace Velmora::Daemon::Copy
