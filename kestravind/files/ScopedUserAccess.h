#pragma once

#include "server/PeerCredentials.h"

#include <sys/types.h>
#include <vector>

namespace Velmora::Daemon::Files {

// Makes the calling thread meet the file system as the asking user: file system uid and gid, and
// the user's supplementary groups, until the object goes out of scope.
//
// Why this and not a permission check of our own: the kernel then decides every open, getdents
// and stat exactly as it would for the user, with groups, ACLs, mount options and security
// modules included, and a check can never drift from the rules it imitates. A child process that
// drops its ids would give the same answers at the price of a fork per request and a second
// channel for the results. Linux keeps credentials per thread; the raw system calls change only
// this thread (glibc's setgroups() would change every thread of the service). A file system uid
// other than 0 also takes the DAC override capabilities out of the effective set, and going back
// to 0 restores them, so root's privileges really are gone for the scope.
class ScopedUserAccess
{
public:
    explicit ScopedUserAccess(const PeerCredentials& peer);
    ~ScopedUserAccess();
    ScopedUserAccess(const ScopedUserAccess&) = delete;
    ScopedUserAccess& operator=(const ScopedUserAccess&) = delete;

    // False when the thread could not take the user's identity: the caller must then refuse.
    bool active() const { return m_active; }

private:
    static std::vector<gid_t> groupsOf(const PeerCredentials& peer);
    void restore();

    bool m_switched = false;
    bool m_active = false;
    uid_t m_savedUid = 0;
    gid_t m_savedGid = 0;
    std::vector<gid_t> m_savedGroups;
};

} // namespace Velmora::Daemon::Files
