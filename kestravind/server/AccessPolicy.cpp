#include "AccessPolicy.h"

#include "message/Message.h"

#include "SystemTrimCommand.pb.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

namespace Velmora::Daemon {

using Velmora::Message::Message;

namespace {

// Large enough for the group and passwd entries of any sane system.
constexpr size_t EntryBufferSize = 16 * 1024;

std::optional<gid_t> lookUpGroup(const QString& name)
{
    std::vector<char> buffer(EntryBufferSize);
    group entry {};
    group* found = nullptr;
    if (getgrnam_r(name.toLocal8Bit().constData(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return std::nullopt;
    return found->gr_gid;
}

// Membership as the group database says now, not as the peer's process happened to start: a user
// added to the group needs no new login to be heard, one taken out is refused at once.
bool isMember(uid_t uid, gid_t peerGid, gid_t groupId)
{
    if (peerGid == groupId)
        return true;
    std::vector<char> buffer(EntryBufferSize);
    passwd entry {};
    passwd* found = nullptr;
    if (getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return false;
    if (found->pw_gid == groupId)
        return true;
    int count = 64;
    std::vector<gid_t> groups(static_cast<size_t>(count));
    if (getgrouplist(found->pw_name, found->pw_gid, groups.data(), &count) < 0) {
        groups.resize(static_cast<size_t>(count));
        if (getgrouplist(found->pw_name, found->pw_gid, groups.data(), &count) < 0)
            return false;
    }
    groups.resize(static_cast<size_t>(count));
    return std::find(groups.begin(), groups.end(), groupId) != groups.end();
}

} // namespace

AccessPolicy::AccessPolicy(const QString& groupName)
    : m_groupName(groupName)
    , m_groupId(groupName.isEmpty() ? std::nullopt : lookUpGroup(groupName))
{
}

AccessPolicy::Access AccessPolicy::requiredAccess(quint32 type, const QByteArray& payload)
{
    switch (type) {
    case Message::Version:
    case Message::SystemInfoRequest:
    case Message::SystemReport:
    case Message::SmartRequest:
    case Message::FileTypeStructureReq:
    case Message::FileListRequest:
    case Message::MigrationFilterTypeRequest:
    case Message::MigrationFilterSystemPaths:
    // The copies land in a folder of the asking user's own, as that user.
    case Message::CopyLogFilesRequest:
        return Access::Anyone;
    case Message::SystemTrimCommand: {
        // Asking for the state is reading; a request that does not parse is taken for a change.
        Velmora::Message::SystemTrimCommand command;
        const bool reading = command.ParseFromArray(payload.constData(), payload.size()) && !command.trimenabled();
        return reading ? Access::Anyone : Access::Privileged;
    }
    default:
        return Access::Privileged;
    }
}

bool AccessPolicy::allows(const PeerCredentials& peer, quint32 type, const QByteArray& payload) const
{
    return requiredAccess(type, payload) == Access::Anyone || isPrivileged(peer);
}

bool AccessPolicy::isPrivileged(const PeerCredentials& peer) const
{
    if (peer.uid == 0)
        return true;
    return m_groupId && isMember(peer.uid, peer.gid, *m_groupId);
}

} // namespace Velmora::Daemon
