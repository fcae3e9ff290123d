#pragma once

#include <QLoggingCategory>

namespace Velmora::Daemon::Devices {
Q_DECLARE_LOGGING_CATEGORY(devicesLog)
}
