#pragma once

#include "PeerCredentials.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Velmora::Daemon {

// Who may ask what. Reading the machine is for every local user; whatever measures a disk with
// writes, changes the system or writes to a disk is for root and the members of one group.
// Anything not named here needs the privilege, so that a new request type is closed until it is
// opened on purpose.
class AccessPolicy
{
public:
    enum class Access { Anyone, Privileged };

    // A group that does not exist leaves root alone with the privilege.
    explicit AccessPolicy(const QString& groupName);

    static Access requiredAccess(quint32 type, const QByteArray& payload);
    bool allows(const PeerCredentials& peer, quint32 type, const QByteArray& payload) const;

    QString groupName() const { return m_groupName; }
    bool groupExists() const { return m_groupId.has_value(); }

private:
    bool isPrivileged(const PeerCredentials& peer) const;

    QString m_groupName;
    std::optional<gid_t> m_groupId;
};

} // namespace Velmora::Daemon
