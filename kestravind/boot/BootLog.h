#pragma once

#include <QLoggingCategory>

namespace Velmora::Daemon::Boot {

// The journal takes the service's stderr; this category lets an administrator filter the module.
Q_DECLARE_LOGGING_CATEGORY(lcBoot)

} // namespace Velmora::Daemon::Boot
