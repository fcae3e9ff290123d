#pragma once

#include <QLoggingCategory>

namespace Velmora::Daemon::Files {

// The journal takes the service's stderr; every line of this module carries this category.
Q_DECLARE_LOGGING_CATEGORY(filesLog)

} // namespace Velmora::Daemon::Files
