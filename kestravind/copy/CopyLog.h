#pragma once

#include <QLoggingCategory>

namespace Velmora::Daemon::Copy {

// The journal takes the service's stderr; every line of this module carries this category.
Q_DECLARE_LOGGING_CATEGORY(copyLog)

} // namespace Velmora::Daemon::Copy
