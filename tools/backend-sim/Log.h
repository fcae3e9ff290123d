#pragma once

#include <QString>

namespace Velmora::BackendSim::Log {

// One line on stderr with the time of day. Handlers run on the server's worker threads, so the
// lines are written whole under a lock.
void info(const QString& text);
void warning(const QString& text);

// Silences info lines; warnings (bad input, refused requests) always go out.
void setQuiet(bool quiet);

} // namespace Velmora::BackendSim::Log
