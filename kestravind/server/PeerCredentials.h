#pragma once

#include <sys/types.h>

namespace Velmora::Daemon {

// Who is on the other end of a connection, as the kernel vouches for it when it is accepted.
struct PeerCredentials {
    uid_t uid = static_cast<uid_t>(-1);
    gid_t gid = static_cast<gid_t>(-1);
    pid_t pid = 0;
};

} // namespace Velmora::Daemon
