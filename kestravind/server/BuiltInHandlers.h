#pragma once

#include "RequestHandler.h"

#include <memory>

namespace Velmora::Daemon {

struct ServiceVersion {
    quint32 major = 0;
    quint32 minor = 0;
    quint32 patch = 0;
};

std::unique_ptr<RequestHandler> versionHandler(const ServiceVersion& version);

// The migration requests that no engine of this build answers (removing a partition, and any
// other step whose module is left out): each is turned down in its own answer message with a
// failure code, which the migration wizard shows as its error page, and logged. The copy's
// cancellation stops a running copy task.
std::unique_ptr<RequestHandler> migrationRefusals();

// The requests the service knows but has no engine for in this build: an Error message with a
// clear text and a log line, so that the program shows its usual failure instead of waiting.
std::unique_ptr<RequestHandler> unwiredRequests(const QList<quint32>& types);

// Every request type an engine module answers.
QList<quint32> engineRequestTypes();

} // namespace Velmora::Daemon
