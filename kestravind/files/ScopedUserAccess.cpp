#include "files/ScopedUserAccess.h"

#include "files/FilesLog.h"

#include <grp.h>
#include <pwd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>

namespace Velmora::Daemon::Files {

namespace {

// setfsuid and setfsgid answer with the previous id and take an invalid one as a question.
long fsuid(long uid) { return ::syscall(SYS_setfsuid, uid); }
long fsgid(long gid) { return ::syscall(SYS_setfsgid, gid); }
long threadGroups(const std::vector<gid_t>& groups) { return ::syscall(SYS_setgroups, groups.size(), groups.data()); }

constexpr long Query = -1;

} // namespace

std::vector<gid_t> ScopedUserAccess::groupsOf(const PeerCredentials& peer)
{
    std::vector<char> buffer(16384);
    passwd entry {};
    passwd* found = nullptr;
    if (::getpwuid_r(peer.uid, &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return {peer.gid}; // a user without an account has only the group the socket names
    int count = 32;
    std::vector<gid_t> groups(count);
    while (::getgrouplist(found->pw_name, peer.gid, groups.data(), &count) < 0)
        groups.resize(count);
    groups.resize(count);
    return groups;
}

ScopedUserAccess::ScopedUserAccess(const PeerCredentials& peer)
{
    if (peer.uid == 0) {
        m_active = true;
        return;
    }
    const int savedCount = ::getgroups(0, nullptr);
    m_savedGroups.resize(savedCount > 0 ? savedCount : 0);
    if (savedCount > 0 && ::getgroups(savedCount, m_savedGroups.data()) != savedCount) {
        qCWarning(filesLog) << "Cannot read the service's own groups";
        return;
    }
    m_savedUid = static_cast<uid_t>(fsuid(Query));
    m_savedGid = static_cast<gid_t>(fsgid(Query));
    m_switched = true;
    if (threadGroups(groupsOf(peer)) != 0) {
        qCWarning(filesLog) << "Cannot take the groups of user" << peer.uid;
        restore();
        return;
    }
    fsgid(peer.gid);
    fsuid(peer.uid);
    m_active = fsuid(Query) == long(peer.uid) && fsgid(Query) == long(peer.gid);
    if (!m_active) {
        qCWarning(filesLog) << "Cannot act on the file system as user" << peer.uid;
        restore();
    }
}

ScopedUserAccess::~ScopedUserAccess()
{
    restore();
}

void ScopedUserAccess::restore()
{
    if (!m_switched)
        return;
    m_switched = false;
    m_active = false;
    fsuid(m_savedUid);
    fsgid(m_savedGid);
    // A worker thread that kept a user's identity would serve the next request with it.
    if (fsuid(Query) != long(m_savedUid) || fsgid(Query) != long(m_savedGid) || threadGroups(m_savedGroups) != 0) {
        qCCritical(filesLog) << "Cannot give up a user's identity; stopping the service";
        std::abort();
    }
}

} // namespace Velmora::Daemon::Files
