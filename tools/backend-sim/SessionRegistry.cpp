#include "SessionRegistry.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>

namespace Velmora::BackendSim {

namespace {
// A client that keeps asking for sessions without using them must not grow the table for ever.
constexpr int MaximumSessions = 4096;
} // namespace

SessionRegistry::SessionRegistry(const QByteArray& sharedKey, int lifetimeSeconds)
    : m_sharedKey(sharedKey)
    , m_lifetimeSeconds(lifetimeSeconds)
{
}

QString SessionRegistry::open()
{
    quint32 words[4];
    QRandomGenerator::system()->fillRange(words);
    const QString session = QString::fromLatin1(
        QByteArray(reinterpret_cast<const char*>(words), sizeof(words)).toHex());

    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_sessions.size() >= MaximumSessions)
        forgetOldest();
    m_sessions.insert(session, Entry{QDateTime::currentDateTimeUtc(), false, false});
    return session;
}

bool SessionRegistry::verify(const QString& session, const QString& hash)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_sessions.find(session);
    if (it == m_sessions.end() || it->expired || outlived(*it))
        return false;
    if (hash != expectedHash(m_sharedKey, session))
        return false;
    it->verified = true;
    return true;
}

SessionRegistry::Access SessionRegistry::check(const QString& session)
{
    if (session.isEmpty())
        return Access::Missing;
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_sessions.constFind(session);
    if (it == m_sessions.constEnd())
        return Access::Unknown;
    if (it->expired || outlived(*it))
        return Access::Expired;
    return it->verified ? Access::Granted : Access::NotVerified;
}

int SessionRegistry::expireAll()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    int usable = 0;
    for (auto& entry : m_sessions) {
        if (entry.verified && !entry.expired && !outlived(entry))
            ++usable;
        entry.expired = true;
    }
    return usable;
}

QString SessionRegistry::expectedHash(const QByteArray& sharedKey, const QString& session)
{
    return QString::fromLatin1(
        QMessageAuthenticationCode::hash(session.toUtf8(), sharedKey, QCryptographicHash::Sha256).toHex());
}

QString SessionRegistry::describe(Access access)
{
    switch (access) {
    case Access::Granted:
        return QStringLiteral("granted");
    case Access::Missing:
        return QStringLiteral("no session in the query");
    case Access::Unknown:
        return QStringLiteral("unknown session");
    case Access::NotVerified:
        return QStringLiteral("session never verified");
    case Access::Expired:
        return QStringLiteral("session expired");
    }
    return QString();
}

bool SessionRegistry::outlived(const Entry& entry) const
{
    return m_lifetimeSeconds > 0 && entry.opened.secsTo(QDateTime::currentDateTimeUtc()) >= m_lifetimeSeconds;
}

void SessionRegistry::forgetOldest()
{
    auto oldest = m_sessions.begin();
    for (auto it = m_sessions.begin(); it != m_sessions.end(); ++it) {
        if (it->opened < oldest->opened)
            oldest = it;
    }
    if (oldest != m_sessions.end())
        m_sessions.erase(oldest);
}

} // namespace Velmora::BackendSim
