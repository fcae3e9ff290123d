#pragma once

#include <QString>

namespace Velmora::Daemon {

// Every log line of the service goes to stderr, which the journal takes, and, when a folder is
// given, also to "kestravind.log" there: the program asks for copies of that file for a support
// ticket. A file that reaches its bound becomes "kestravind.log.1", so that a service that runs
// for months keeps at most two of them.
class LogFile
{
public:
    static constexpr qint64 MaxBytes = 4 * 1024 * 1024;
    static const char* const BaseName;

    // False, with the reason, when the folder cannot take the file; stderr goes on regardless.
    static bool install(const QString& folder, QString* error);
};

} // namespace Velmora::Daemon
