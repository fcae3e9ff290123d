#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QString>

#include <mutex>

namespace Velmora::BackendSim {

// The server's half of the handshake. A client asks for a session text, proves that it knows the
// shared key by sending HMAC-SHA-256(key, session) in lower-case hex, and from then on names the
// session in the query of every call. Sessions end when their lifetime runs out or when a test
// expires them, and are then answered with 401 like any unknown one.
class SessionRegistry {
public:
    enum class Access { Granted, Missing, Unknown, NotVerified, Expired };

    SessionRegistry(const QByteArray& sharedKey, int lifetimeSeconds);

    QString open();
    // True when `hash` is exactly the lower-case hex HMAC of an open session; that session is
    // then verified. Asking again for a verified session gives the same verdict.
    bool verify(const QString& session, const QString& hash);
    Access check(const QString& session);
    // Ends every session; returns how many were usable.
    int expireAll();

    static QString expectedHash(const QByteArray& sharedKey, const QString& session);
    static QString describe(Access access);

private:
    struct Entry {
        QDateTime opened;
        bool verified = false;
        bool expired = false;
    };

    bool outlived(const Entry& entry) const;
    void forgetOldest();

    const QByteArray m_sharedKey;
    const int m_lifetimeSeconds; // 0: until expired on demand
    std::mutex m_mutex;
    QHash<QString, Entry> m_sessions;
};

} // namespace Velmora::BackendSim
