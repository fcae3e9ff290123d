#include "devices/DevicesLog.h"

namespace Velmora::Daemon::Devices {
Q_LOGGING_CATEGORY(devicesLog, "kestravind.devices")
}
