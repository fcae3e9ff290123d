#pragma once

#include <QLoggingCategory>

namespace Velmora::Daemon::Smart {

// The journal takes the service's stderr; this category lets an administrator filter the module.
Q_DECLARE_LOGGING_CATEGORY(lcSmart)

} // namespace Velmora::Daemon::Smart
