#pragma once

#include <sys/types.h>

namespace Velmora::Daemon::Files {

// Who asks, as the socket's SO_PEERCRED tells it.
struct PeerCredentials {
    uid_t uid = 0;
    gid_t gid = 0;
    pid_t pid = 0;
};

} // namespace Velmora::Daemon::Files
