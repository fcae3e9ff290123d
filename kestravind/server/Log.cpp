#include "Log.h"

Q_LOGGING_CATEGORY(serverLog, "kestravind.server", QtInfoMsg)
