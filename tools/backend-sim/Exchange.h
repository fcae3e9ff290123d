#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QString>
#include <QStringList>

#include <functional>

namespace httplib {
struct Request;
struct Response;
} // namespace httplib

namespace Velmora::BackendSim {

// One request and its answer as a call group sees them, with the helpers every group needs.
class Exchange {
public:
    Exchange(const httplib::Request& request, httplib::Response& response, const QString& call,
             const QString& publicBase);

    const httplib::Request& request() const { return m_request; }
    httplib::Response& response() { return m_response; }
    QString call() const { return m_call; }
    // "https://host:port/kestravin/public/api/" as the client reached us, for addresses in answers.
    QString publicBase() const { return m_publicBase; }

    // The last value of a query item: a request re-sent after a new handshake carries the old
    // session first and the new one last.
    QString query(const char* name) const;
    QStringList queryValues(const char* name) const;
    QString header(const char* name) const;
    QByteArray body() const;
    // The first element of the path behind the call's own pattern, such as a file name.
    QString match(int index) const;

    void replyJson(int status, const QJsonDocument& document);
    void replyBytes(int status, const QByteArray& bytes, const char* contentType);
    // An error answer with a JSON reason; the reason is also logged as a warning, since every
    // refusal of bad input must leave a clear line.
    void refuse(int status, const QString& reason);
    int status() const;

private:
    const httplib::Request& m_request;
    httplib::Response& m_response;
    QString m_call;
    QString m_publicBase;
};

using CallHandler = std::function<void(Exchange&)>;

enum class Access {
    Open,       // handshake, captcha and file downloads
    WithSession // the catalogue's calls: 401 without a verified session
};

// What a call group registers its calls and test hooks with.
class Router {
public:
    virtual ~Router() = default;
    // `pattern` is a regular expression for the path behind the API's base; `call` names the
    // call for faults and the request journal.
    virtual void route(const char* method, const QString& call, const QString& pattern, Access access,
                       CallHandler handler) = 0;
    // Hooks for tests under "/admin/": no session, no faults, no journal.
    virtual void admin(const char* method, const QString& path, CallHandler handler) = 0;
};

} // namespace Velmora::BackendSim
