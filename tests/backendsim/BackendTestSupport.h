#pragma once

#include "BackendProcess.h"
#include "TrustedClient.h"

#include <QCryptographicHash>
#include <QJsonObject>
#include <QMessageAuthenticationCode>
#include <QUrlQuery>

// The handshake as a client performs it, written here independently of the server's code.
inline QString hmacHex(const QByteArray& key, const QString& session)
{
    return QString::fromLatin1(
        QMessageAuthenticationCode::hash(session.toUtf8(), key, QCryptographicHash::Sha256).toHex());
}

inline const QByteArray& sharedKey()
{
    static const QByteArray key("Qx7mTzR4kP");
    return key;
}

inline QString openSession(TrustedClient& client, const BackendProcess& backend)
{
    return client.get(backend.api(QStringLiteral("session"))).json().object().value(QStringLiteral("session")).toString();
}

inline HttpResult verifySession(TrustedClient& client, const BackendProcess& backend, const QString& session,
                                const QString& hash)
{
    const QJsonObject body{{QStringLiteral("session"), session}, {QStringLiteral("hash"), hash}};
    return client.post(backend.api(QStringLiteral("session")), QJsonDocument(body).toJson());
}

// A session the server has verified; empty if the handshake failed.
inline QString authorizedSession(TrustedClient& client, const BackendProcess& backend)
{
    const QString session = openSession(client, backend);
    const HttpResult verdict = verifySession(client, backend, session, hmacHex(sharedKey(), session));
    return verdict.json().object().value(QStringLiteral("authenticated")).toBool() ? session : QString();
}

// `url` with one "session" query item per entry, in order.
inline QUrl withSessions(QUrl url, const QStringList& sessions)
{
    QUrlQuery query(url);
    for (const QString& session : sessions)
        query.addQueryItem(QStringLiteral("session"), session);
    url.setQuery(query);
    return url;
}
