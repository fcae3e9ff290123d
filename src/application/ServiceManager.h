#pragma once

#include "communication/Handler.h"
#include "platform/ServiceControl.h"

#include <QString>

#include <functional>
#include <memory>

class QTimer;

namespace Velmora::Application {

// Makes sure the privileged service is installed and running, checks that its version fits the
// program's, and ends the program with an error box when the service stops answering.
class ServiceManager : public Communication::Handler
{
    Q_OBJECT

public:
    enum ServiceStatus { Unknown = 0, NotInstalled = 1, Starting = 2, Stopped = 3, Running = 4, Failed = 5, Responding = 6 };
    Q_ENUM(ServiceStatus)
    enum ServiceErrorReason { ServiceFailure = 1, AccessDenied = 2 };
    Q_ENUM(ServiceErrorReason)

    static const char* const AppVersion;
    static constexpr int VersionMismatchExitCode = 4;

    // Without a control, the platform's own is used for the service beside the program.
    explicit ServiceManager(QObject* parent = nullptr, std::unique_ptr<Platform::ServiceControl> control = nullptr,
        const QString& serverName = QStringLiteral("VelmoraServer"));
    ~ServiceManager() override;

    ServiceStatus status() const { return m_status; }

    void clientConnected() override;
    void handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload) override;

    // Seams for tests: shorter intervals, and the critical box replaced by a recorder.
    void setIntervals(int pollMs, int processTimeoutMs, int responseTimeoutMs);
    void setStartTimeout(int msec) { m_startTimeout = msec; }
    using CriticalMessage = std::function<void(const QString& title, const QString& text)>;
    void setCriticalMessage(CriticalMessage show) { m_showCritical = std::move(show); }
    using Exit = std::function<void(int code)>;
    void setExit(Exit exit) { m_exit = std::move(exit); }

signals:
    void serviceError(Velmora::Application::ServiceManager::ServiceErrorReason reason);
    // The service started here listens now, so the pipe client need not wait for its next retry.
    void serviceListening();

public slots:
    void onMessageReceived();
    void onMessageSend();
    void onServiceError(Velmora::Application::ServiceManager::ServiceErrorReason reason);
    void onServiceError();
    void changeStatus(Velmora::Application::ServiceManager::ServiceStatus newStatus);
    virtual void versionRequest();

protected slots:
    void updateServiceState();

private:
    void startService();
    void installService();
    void onStartFinished(const Platform::ServiceControl::CommandResult& result);
    void failOnVersion(const QString& text);

    QString m_serviceName;
    QString m_serviceFileName;
    int m_pollInterval = 200;
    int m_processTimeout = 2000;
    int m_responseTimeout = 15000;
    // How long a service started here may take to be ready; the start does not block meanwhile.
    int m_startTimeout = 30000;
    QTimer* m_pollTimer;
    QTimer* m_responseTimer;
    ServiceStatus m_status = Unknown;
    std::unique_ptr<Platform::ServiceControl> m_control;
    CriticalMessage m_showCritical;
    Exit m_exit;
};

} // namespace Velmora::Application
