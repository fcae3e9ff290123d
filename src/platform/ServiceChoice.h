#pragma once

#include <QString>

namespace Velmora::Platform {

// Which service the program talks to. The system's own service, installed and started by the
// system, is used when its socket answers; otherwise the simulated service beside the program,
// which the program starts itself. KESTRAVIN_SERVICE=system or =simulated settles it without a
// look at the socket.
class ServiceChoice
{
public:
    static const char* const SystemSocket;
    static const char* const EnvironmentVariable;

    // The server name to connect to: the system socket's path, or `simulatedName`.
    static QString serverName(const QString& simulatedName);
    static bool isSystemService(const QString& serverName) { return serverName == QLatin1String(SystemSocket); }
};

} // namespace Velmora::Platform
