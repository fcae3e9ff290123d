#include "HandshakeCalls.h"

#include "Log.h"

#include <QJsonObject>

namespace Velmora::BackendSim {

HandshakeCalls::HandshakeCalls(SessionRegistry& sessions)
    : m_sessions(sessions)
{
}

void HandshakeCalls::addRoutes(Router& router)
{
    router.route("GET", QStringLiteral("session"), QStringLiteral("session"), Access::Open,
                 [this](Exchange& exchange) { openSession(exchange); });
    router.route("POST", QStringLiteral("session"), QStringLiteral("session"), Access::Open,
                 [this](Exchange& exchange) { verifySession(exchange); });
    router.admin("POST", QStringLiteral("sessions/expire"), [this](Exchange& exchange) { expireSessions(exchange); });
}

void HandshakeCalls::openSession(Exchange& exchange)
{
    const QString session = m_sessions.open();
    Log::info(QStringLiteral("session %1 opened").arg(session));
    exchange.replyJson(200, QJsonDocument(QJsonObject{{QStringLiteral("session"), session}}));
}

void HandshakeCalls::verifySession(Exchange& exchange)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(exchange.body(), &parseError);
    if (!document.isObject()) {
        exchange.refuse(400, QStringLiteral("authorization body is not a JSON object (%1)").arg(parseError.errorString()));
        return;
    }
    const QJsonObject object = document.object();
    const QJsonValue session = object.value(QStringLiteral("session"));
    const QJsonValue hash = object.value(QStringLiteral("hash"));
    if (!session.isString() || !hash.isString()) {
        exchange.refuse(400, QStringLiteral("authorization body needs the strings \"session\" and \"hash\""));
        return;
    }
    const bool granted = m_sessions.verify(session.toString(), hash.toString());
    if (granted)
        Log::info(QStringLiteral("session %1 verified").arg(session.toString()));
    else
        Log::warning(QStringLiteral("session %1 not verified: %2")
                         .arg(session.toString(),
                              m_sessions.check(session.toString()) == SessionRegistry::Access::Unknown
                                  ? QStringLiteral("unknown session")
                                  : QStringLiteral("wrong hash or ended session")));
    exchange.replyJson(200, QJsonDocument(QJsonObject{{QStringLiteral("authenticated"), granted}}));
}

void HandshakeCalls::expireSessions(Exchange& exchange)
{
    const int expired = m_sessions.expireAll();
    Log::info(QStringLiteral("%1 usable session(s) expired on demand").arg(expired));
    exchange.replyJson(200, QJsonDocument(QJsonObject{{QStringLiteral("expired"), expired}}));
}

} // namespace Velmora::BackendSim
