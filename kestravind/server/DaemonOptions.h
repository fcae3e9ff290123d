#pragma once

#include "ClientConnection.h"

#include <QString>
#include <QStringList>

namespace Velmora::Daemon {

struct DaemonOptions {
    static const char* const DefaultSocket;

    QString socketPath = QLatin1String(DefaultSocket);
    QString group = QStringLiteral("kestravin");
    ConnectionLimits limits;
    bool includeLoop = false;
    // Where the service also writes its log, for the program's support tickets; none when empty.
    QString logDirectory;

    // False, with the reason, for a command line that cannot be followed.
    bool parse(const QStringList& arguments, QString* error);
};

} // namespace Velmora::Daemon
