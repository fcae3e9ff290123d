#pragma once

#include <QLoggingCategory>

// The journal takes stderr; each module logs under a category of its own.
Q_DECLARE_LOGGING_CATEGORY(serverLog)
