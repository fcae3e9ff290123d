#include "BackendServer.h"

#include "Log.h"

#include <QRegularExpression>

#include <httplib.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>

#include <chrono>
#include <thread>

namespace Velmora::BackendSim {

namespace {

const QString ApiPath = QStringLiteral("/kestravin/public/api/");
const QString AdminPath = QStringLiteral("/admin/");
// The journal is for tests; a long demo run must not grow it without end.
constexpr int JournalLength = 1000;
// Never-answering requests each hold a worker, so keep enough of them for a few at once.
constexpr size_t WorkerThreads = 24;
constexpr size_t MaximumBody = 8 * 1024 * 1024;

} // namespace

BackendServer::BackendServer(const BackendOptions& options)
    : m_options(options)
    , m_sessions(options.sharedKey.toUtf8(), options.sessionLifetimeSeconds)
    , m_handshake(m_sessions)
    , m_drives(m_catalogue)
    , m_support(options.captchaText)
{
    for (const FaultRule& rule : options.faults)
        m_faults.add(rule);
}

BackendServer::~BackendServer() = default;

bool BackendServer::start(QString* error)
{
    if (!m_catalogue.load(m_options.catalogue, error) || !m_updates.configure(m_options, error))
        return false;

    m_server = std::make_unique<httplib::SSLServer>(m_options.certificate.toLocal8Bit().constData(),
                                                    m_options.privateKey.toLocal8Bit().constData());
    if (!m_server->is_valid()) {
        *error = QStringLiteral("TLS set-up failed with certificate %1 and key %2")
                     .arg(m_options.certificate, m_options.privateKey);
        return false;
    }
    m_server->new_task_queue = [] { return new httplib::ThreadPool(WorkerThreads); };
    m_server->set_payload_max_length(MaximumBody);
    // Small answers on loopback: don't let Nagle hold them back for a delayed acknowledgement.
    m_server->set_tcp_nodelay(true);
    m_server->set_logger([](const httplib::Request& request, const httplib::Response& response) {
        const QString line = QStringLiteral("%1 %2 -> %3")
                                 .arg(QString::fromStdString(request.method), QString::fromStdString(request.path))
                                 .arg(response.status);
        if (response.status >= 400 && response.body.empty())
            Log::warning(line); // refused by the library itself: unknown path, body too large
        else
            Log::info(line);
    });

    m_handshake.addRoutes(*this);
    m_drives.addRoutes(*this);
    m_updates.addRoutes(*this);
    m_support.addRoutes(*this);
    addOwnAdminRoutes();

    const std::string host = m_options.host.toStdString();
    if (m_options.port == 0) {
        m_port = m_server->bind_to_any_port(host);
    } else if (m_server->bind_to_port(host, m_options.port)) {
        m_port = m_options.port;
    }
    if (m_port <= 0) {
        *error = QStringLiteral("cannot listen on %1:%2").arg(m_options.host).arg(m_options.port);
        return false;
    }
    return true;
}

QString BackendServer::apiAddress() const
{
    return QStringLiteral("https://%1:%2%3").arg(m_options.host).arg(m_port).arg(ApiPath);
}

void BackendServer::run()
{
    m_server->listen_after_bind();
}

void BackendServer::stop()
{
    m_stopping = true;
    if (m_server)
        m_server->stop();
}

void BackendServer::route(const char* method, const QString& call, const QString& pattern, Access access,
                          CallHandler handler)
{
    const std::string fullPattern = (ApiPath + pattern).toStdString();
    const QString verb = QString::fromLatin1(method);
    registerRaw(method, fullPattern, [=](const httplib::Request& request, httplib::Response& response) {
        Exchange exchange(request, response, call, publicBase(request));
        const QStringList sessions = exchange.queryValues("session");

        const std::optional<FaultRule> fault = m_faults.take(verb, call);
        if (fault && !applyFault(*fault, exchange)) {
            const bool answered = fault->kind == FaultKind::Error || fault->kind == FaultKind::Redirect;
            note(exchange, sessions, FaultRule::kindName(fault->kind), answered ? exchange.status() : 0);
            return;
        }
        if (access == Access::WithSession) {
            const auto granted = m_sessions.check(sessions.isEmpty() ? QString() : sessions.last());
            if (granted != SessionRegistry::Access::Granted) {
                exchange.refuse(401, SessionRegistry::describe(granted));
                note(exchange, sessions, fault ? FaultRule::kindName(fault->kind) : QString(), 401);
                return;
            }
        }
        handler(exchange);
        note(exchange, sessions, fault ? FaultRule::kindName(fault->kind) : QString(), exchange.status());
    });
}

void BackendServer::admin(const char* method, const QString& path, CallHandler handler)
{
    registerRaw(method, (AdminPath + QRegularExpression::escape(path)).toStdString(),
                [=](const httplib::Request& request, httplib::Response& response) {
                    Exchange exchange(request, response, QStringLiteral("admin/") + path, publicBase(request));
                    handler(exchange);
                });
}

void BackendServer::registerRaw(const char* method, const std::string& pattern, RawHandler handler)
{
    const QByteArray verb(method);
    if (verb == "GET")
        m_server->Get(pattern, handler);
    else if (verb == "POST")
        m_server->Post(pattern, handler);
    else if (verb == "PUT")
        m_server->Put(pattern, handler);
    else if (verb == "DELETE")
        m_server->Delete(pattern, handler);
    else
        Log::warning(QStringLiteral("no route for verb %1").arg(QLatin1String(method)));
}

void BackendServer::addOwnAdminRoutes()
{
    admin("GET", QStringLiteral("faults"), [this](Exchange& exchange) {
        exchange.replyJson(200, QJsonDocument(m_faults.describe()));
    });
    admin("POST", QStringLiteral("faults"), [this](Exchange& exchange) {
        QString reason;
        const QJsonDocument document = QJsonDocument::fromJson(exchange.body());
        const auto rule = document.isObject() ? FaultRule::fromJson(document.object(), &reason) : std::nullopt;
        if (!rule) {
            exchange.refuse(400, reason.isEmpty() ? QStringLiteral("a fault is a JSON object") : reason);
            return;
        }
        m_faults.add(*rule);
        Log::info(QStringLiteral("fault switched on: %1")
                      .arg(QString::fromUtf8(QJsonDocument(rule->toJson()).toJson(QJsonDocument::Compact))));
        exchange.replyJson(201, QJsonDocument(rule->toJson()));
    });
    admin("DELETE", QStringLiteral("faults"), [this](Exchange& exchange) {
        m_faults.clear();
        Log::info(QStringLiteral("all faults switched off"));
        exchange.replyJson(200, QJsonDocument(QJsonArray()));
    });
    admin("GET", QStringLiteral("requests"), [this](Exchange& exchange) {
        std::lock_guard<std::mutex> lock(m_journalMutex);
        exchange.replyJson(200, QJsonDocument(m_journal));
    });
    admin("DELETE", QStringLiteral("requests"), [this](Exchange& exchange) {
        std::lock_guard<std::mutex> lock(m_journalMutex);
        m_journal = QJsonArray();
        exchange.replyJson(200, QJsonDocument(m_journal));
    });
}

QString BackendServer::publicBase(const httplib::Request& request) const
{
    // Addresses in answers use the host the client asked for, so that they match the name in its
    // certificate check; a Host header that isn't a plain host and port is not trusted.
    static const QRegularExpression plainHost(QStringLiteral("^([A-Za-z0-9.-]+|\\[[0-9A-Fa-f:]+\\])(:[0-9]{1,5})?$"));
    const QString host = QString::fromStdString(request.get_header_value("Host"));
    const QString authority =
        plainHost.match(host).hasMatch() ? host : QStringLiteral("%1:%2").arg(m_options.host).arg(m_port);
    return QStringLiteral("https://") + authority + ApiPath;
}

bool BackendServer::applyFault(const FaultRule& rule, Exchange& exchange)
{
    Log::warning(QStringLiteral("fault %1 applied to %2 %3")
                     .arg(FaultRule::kindName(rule.kind), QString::fromStdString(exchange.request().method),
                          exchange.call()));
    switch (rule.kind) {
    case FaultKind::Delay:
        pause(rule.milliseconds);
        return !m_stopping;
    case FaultKind::Hang:
        holdUntilClientLeaves(exchange.request());
        dropConnection(exchange.request());
        return false;
    case FaultKind::Error:
        exchange.replyJson(rule.status, QJsonDocument(QJsonObject{{QStringLiteral("error"),
                                                                   QStringLiteral("fault switched on")}}));
        return false;
    case FaultKind::Redirect: {
        const QString location = rule.location.isEmpty()
                                     ? exchange.publicBase() + QStringLiteral("moved/") + exchange.call()
                                     : rule.location;
        exchange.response().set_redirect(location.toStdString(), 302);
        return false;
    }
    case FaultKind::Drop:
        dropConnection(exchange.request());
        return false;
    }
    return true;
}

void BackendServer::pause(int milliseconds) const
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!m_stopping && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

void BackendServer::holdUntilClientLeaves(const httplib::Request& request) const
{
    const int socket = request.ssl ? SSL_get_fd(request.ssl) : -1;
    if (socket < 0)
        return;
    // The client sends nothing more on this connection while it waits for the answer, so any
    // readiness means that it closed or aborted.
    while (!m_stopping) {
        pollfd watched{socket, POLLIN | POLLRDHUP, 0};
        const int ready = poll(&watched, 1, 100);
        if (ready != 0)
            return;
    }
}

void BackendServer::dropConnection(const httplib::Request& request)
{
    const int socket = request.ssl ? SSL_get_fd(request.ssl) : -1;
    // Shut down, not closed: the library still owns the descriptor and closes it after the
    // answer it then fails to write.
    if (socket >= 0)
        ::shutdown(socket, SHUT_RDWR);
}

void BackendServer::note(const Exchange& exchange, const QStringList& sessions, const QString& fault, int status)
{
    QJsonObject entry{{QStringLiteral("method"), QString::fromStdString(exchange.request().method)},
                      {QStringLiteral("call"), exchange.call()},
                      {QStringLiteral("status"), status},
                      {QStringLiteral("sessions"), QJsonArray::fromStringList(sessions)}};
    if (!fault.isEmpty())
        entry.insert(QStringLiteral("fault"), fault);
    std::lock_guard<std::mutex> lock(m_journalMutex);
    m_journal.append(entry);
    while (m_journal.size() > JournalLength)
        m_journal.removeFirst();
}

} // namespace Velmora::BackendSim
