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

// Removing a partition, which the program never asks and this service does not do: turned down in
// its own answer message with a failure code, and logged.
std::unique_ptr<RequestHandler> migrationRefusals();

// The requests the service knows but has no engine for in this build: an Error message with a
// clear text and a log line, so that the program shows its usual failure instead of waiting.
std::unique_ptr<RequestHandler> unwiredRequests(const QList<quint32>& types);

// Every request type an engine module answers.
QList<quint32> engineRequestTypes();

} // namespace Velmora::Daemon
