#include "files/FilesLog.h"

namespace Velmora::Daemon::Files {

Q_LOGGING_CATEGORY(filesLog, "kestravind.files")

} // namespace Velmora::Daemon::Files
