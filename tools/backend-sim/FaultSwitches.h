#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>

#include <mutex>
#include <optional>

namespace Velmora::BackendSim {

// What a switched-on fault does to a request that it catches.
enum class FaultKind {
    Delay,    // answer normally, `milliseconds` late
    Hang,     // never answer; the connection is held until the client gives up
    Error,    // answer with `status` (500 unless told otherwise) instead of the call's answer
    Redirect, // answer 302 pointing at `location`
    Drop,     // close the connection without a word
};

struct FaultRule {
    FaultKind kind = FaultKind::Error;
    QString call = QStringLiteral("*"); // first path element under the API, or "*" for all
    QString method;                     // empty: every verb
    int times = -1;                     // requests still to catch; -1: until cleared
    int milliseconds = 0;               // Delay
    int status = 500;                   // Error
    QString location;                   // Redirect; empty: a page of this server that serves nothing

    QJsonObject toJson() const;

    // The same keys serve the command line ("kind=delay,call=firmware,ms=1500,times=2") and the
    // admin endpoint (a JSON object); an unknown key or value is refused with the reason.
    static std::optional<FaultRule> fromText(const QString& text, QString* error);
    static std::optional<FaultRule> fromJson(const QJsonObject& object, QString* error);
    static std::optional<FaultRule> fromMap(const QMap<QString, QString>& values, QString* error);
    static QString kindName(FaultKind kind);
};

// The switched-on faults, shared by all worker threads. The first rule that matches a request
// catches it and, if it is counted, uses up one of its times.
class FaultSwitches {
public:
    void add(const FaultRule& rule);
    void clear();
    std::optional<FaultRule> take(const QString& method, const QString& call);
    QJsonArray describe() const;

private:
    mutable std::mutex m_mutex;
    QList<FaultRule> m_rules;
};

} // namespace Velmora::BackendSim
