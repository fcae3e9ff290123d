#pragma once

#include "server/PeerCredentials.h"

#include "CopyLogFiles.pb.h"

#include <string>

namespace Velmora::Daemon::Files {

// Copies the service's log files into a folder that the asking user names, for a support ticket.
// The folder must be the user's own and be reached without a symbolic link anywhere on its path;
// each copy is made new (never over an existing file, never through a link) and belongs to the
// user, because it is made with the user's file system identity.
class LogCopy
{
public:
    // The files of `logDirectory` whose names begin with `logBaseName` are the logs.
    LogCopy(std::string logDirectory, std::string logBaseName);

    // SUCCESS with the number copied (a name that already exists in the folder is passed over
    // and logged); INVALID_REQUEST for a relative path; NOT_FOUND for a folder that is not there;
    // ACCESS_DENIED for a folder of another user, one behind a symbolic link, or when nothing
    // could be copied because every name was taken.
    Velmora::Message::CopyLogFilesResponse run(const Velmora::Message::CopyLogFilesRequest& request,
        const PeerCredentials& peer) const;

private:
    std::string m_logDirectory;
    std::string m_logBaseName;
};

} // namespace Velmora::Daemon::Files
