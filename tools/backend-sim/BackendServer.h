#pragma once

#include "BackendOptions.h"
#include "DriveCalls.h"
#include "DriveCatalogue.h"
#include "Exchange.h"
#include "FaultSwitches.h"
#include "HandshakeCalls.h"
#include "SessionRegistry.h"
#include "SupportCalls.h"
#include "UpdateCalls.h"

#include <QJsonArray>
#include <QJsonObject>

#include <atomic>
#include <memory>
#include <mutex>

namespace httplib {
class SSLServer;
}

namespace Velmora::BackendSim {

// The HTTPS server: every call of the API goes through route(), which applies a switched-on
// fault first, then the session check, then the call's own handler, and notes the outcome in a
// journal that tests can read.
class BackendServer : public Router {
public:
    explicit BackendServer(const BackendOptions& options);
    ~BackendServer() override;

    // Loads the catalogue and files, sets up TLS and binds; false with the reason on failure.
    bool start(QString* error);
    int port() const { return m_port; }
    QString apiAddress() const;
    // Serves until stop(), from any thread, ends it.
    void run();
    void stop();

    void route(const char* method, const QString& call, const QString& pattern, Access access,
               CallHandler handler) override;
    void admin(const char* method, const QString& path, CallHandler handler) override;

private:
    using RawHandler = std::function<void(const httplib::Request&, httplib::Response&)>;
    void registerRaw(const char* method, const std::string& pattern, RawHandler handler);
    void addOwnAdminRoutes();

    QString publicBase(const httplib::Request& request) const;
    // True when the request goes on to its handler.
    bool applyFault(const FaultRule& rule, Exchange& exchange);
    void pause(int milliseconds) const;
    void holdUntilClientLeaves(const httplib::Request& request) const;
    static void dropConnection(const httplib::Request& request);
    void note(const Exchange& exchange, const QStringList& sessions, const QString& fault, int status);

    BackendOptions m_options;
    std::unique_ptr<httplib::SSLServer> m_server;
    int m_port = 0;
    std::atomic<bool> m_stopping{false};

    SessionRegistry m_sessions;
    FaultSwitches m_faults;
    DriveCatalogue m_catalogue;
    HandshakeCalls m_handshake;
    DriveCalls m_drives;
    UpdateCalls m_updates;
    SupportCalls m_support;

    std::mutex m_journalMutex;
    QJsonArray m_journal;
};

} // namespace Velmora::BackendSim
