#include "application/ServiceManager.h"

#include "logger/Logger.h"

#include "Version.pb.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QTimer>

namespace Velmora::Application {

using Velmora::Message::Message;
using State = Platform::ServiceControl::State;

const char* const ServiceManager::AppVersion = "1.1.4";

namespace {
// The file name of the service executable on this platform.
const char* const ServiceFileName = "Kestravin_Service";
constexpr int AccessDeniedExitCode = 5;

void showCriticalBox(const QString& title, const QString& text)
{
    QMessageBox::critical(nullptr, title, text, QMessageBox::Ok);
}
} // namespace

ServiceManager::ServiceManager(
    QObject* parent, std::unique_ptr<Platform::ServiceControl> control, const QString& serverName)
    : Handler(parent)
    , m_serviceName(QStringLiteral("Kestravin Service"))
    , m_serviceFileName(QLatin1String(ServiceFileName))
    , m_pollTimer(new QTimer(this))
    , m_responseTimer(new QTimer(this))
    , m_control(control ? std::move(control) : Platform::createServiceControl(m_serviceFileName, serverName))
    , m_showCritical(showCriticalBox)
    , m_exit([](int code) { QCoreApplication::exit(code); })
{
    qRegisterMetaType<ServiceErrorReason>("Velmora::Application::ServiceManager::ServiceErrorReason");
    m_pollTimer->setSingleShot(true);
    m_pollTimer->setInterval(m_pollInterval);
    connect(m_pollTimer, &QTimer::timeout, this, &ServiceManager::updateServiceState);
    m_responseTimer->setSingleShot(true);
    m_responseTimer->setInterval(m_responseTimeout);
    connect(m_responseTimer, &QTimer::timeout, this, qOverload<>(&ServiceManager::onServiceError));
    connect(this, &ServiceManager::serviceError, this, qOverload<ServiceErrorReason>(&ServiceManager::onServiceError));

    setName(QString::fromLatin1(metaObject()->className()));
    setMessageTypes({Message::Version});
    m_pollTimer->start();
}

ServiceManager::~ServiceManager() = default;

void ServiceManager::setIntervals(int pollMs, int processTimeoutMs, int responseTimeoutMs)
{
    m_pollInterval = pollMs;
    m_processTimeout = processTimeoutMs;
    m_responseTimeout = responseTimeoutMs;
    m_pollTimer->setInterval(pollMs);
    m_responseTimer->setInterval(responseTimeoutMs);
}

void ServiceManager::changeStatus(ServiceStatus newStatus)
{
    if (newStatus == m_status)
        return;
    Logger::debug(QString(), QStringLiteral("Chnage status %1 -> %2").arg(m_status).arg(newStatus));
    m_status = newStatus;
}

void ServiceManager::updateServiceState()
{
    // A service that is already running is reached by the pipe client at once, often before this
    // first look: once it has answered there is nothing left to find out, and arming the watchdog
    // now would end a healthy program after a quiet quarter of a minute.
    if (m_status == Failed || m_status == Responding)
        return;
    switch (m_control->query()) {
    case State::ManagerUnavailable:
        Logger::warning(QString(), QStringLiteral("Unbale to start service manager, assuming service is working"));
        changeStatus(Running);
        m_responseTimer->start();
        break;
    case State::NotInstalled:
        Logger::warning(QString(), QStringLiteral("Service not installed."));
        changeStatus(NotInstalled);
        installService();
        break;
    case State::Running:
        Logger::info(QString(), QStringLiteral("Service is running"));
        changeStatus(Running);
        m_responseTimer->start();
        break;
    case State::StartPending:
        changeStatus(Starting);
        m_pollTimer->start();
        break;
    case State::Stopped:
        Logger::warning(QString(), QStringLiteral("Service stopped."));
        changeStatus(Stopped);
        startService();
        break;
    case State::QueryFailed:
        break;
    }
}

void ServiceManager::startService()
{
    Logger::warning(QString(), QStringLiteral("Starting service."));
    Logger::debug(QString(), QCoreApplication::applicationDirPath());
    Logger::debug(QString(), m_control->startCommand());
    m_control->start(m_startTimeout,
        [this](const Platform::ServiceControl::CommandResult& result) { onStartFinished(result); });
}

void ServiceManager::onStartFinished(const Platform::ServiceControl::CommandResult& result)
{
    // The pipe client may have reached the service before the start reported back: an answer
    // already says more than the start's own outcome.
    if (m_status == Responding || m_status == Failed)
        return;
    if (result.succeeded()) {
        changeStatus(Starting);
        emit serviceListening();
        return;
    }
    Logger::error(QString(), QStringLiteral("Process failed with %1 %2.")
                                 .arg(result.exitCode).arg(QString::fromLatin1(result.output)));
    emit serviceError(result.exitCode == AccessDeniedExitCode ? AccessDenied : ServiceFailure);
}

void ServiceManager::installService()
{
    Logger::warning(QString(), QStringLiteral("Installing service."));
    Logger::debug(QString(), QCoreApplication::applicationDirPath());
    Logger::debug(QString(), m_control->installCommand());
    const Platform::ServiceControl::CommandResult result = m_control->install(m_processTimeout);
    if (result.succeeded()) {
        changeStatus(Starting);
        return;
    }
    Logger::error(QString(), QStringLiteral("Process failed with %1 %2")
                                 .arg(result.exitCode).arg(QString::fromLatin1(result.output).trimmed()));
    emit serviceError(result.exitCode == AccessDeniedExitCode ? AccessDenied : ServiceFailure);
}

void ServiceManager::onMessageSend()
{
    m_responseTimer->start();
}

void ServiceManager::onMessageReceived()
{
    changeStatus(Responding);
    m_responseTimer->stop();
}

void ServiceManager::onServiceError()
{
    onServiceError(ServiceFailure);
}

void ServiceManager::onServiceError(ServiceErrorReason reason)
{
    Logger::error(QString(), QStringLiteral("Service error %1.").arg(reason));
    if (m_status == Failed)
        return;
    changeStatus(Failed);
    m_showCritical(tr("ERROR"), tr("COULD NOT COMMUNICATE WITH SERVICE."));
    m_exit(reason);
}

void ServiceManager::clientConnected()
{
    versionRequest();
}

void ServiceManager::versionRequest()
{
    emit sendMessage(Message::Version);
}

void ServiceManager::failOnVersion(const QString& text)
{
    m_showCritical(tr("ERROR"), text);
    m_exit(VersionMismatchExitCode);
}

void ServiceManager::handleMessage(Message::MessageType type, QByteArray payload)
{
    if (type != Message::Version) {
        Logger::error(QString(), QStringLiteral("Unexpected message type: %1.").arg(Message::typeName(type)));
        return;
    }
    Velmora::Message::Version version;
    if (!version.ParseFromArray(payload.constData(), payload.size())) {
        Logger::error(QString(), QStringLiteral("Cannot update system information. Message parse failed."));
        return;
    }
    const QString serviceVersion =
        QStringLiteral("Service version: %1.%2.%3").arg(version.major()).arg(version.minor()).arg(version.patch());

    QStringList parts = QString::fromLatin1(AppVersion).split(QLatin1Char('.'));
    parts.removeAll(QString());
    if (parts.size() != 3) {
        failOnVersion(tr("ERROR PARSING APPVERSION, REINSTALL APPLICATION"));
        return;
    }
    const uint appMajor = parts.at(0).toUInt();
    const uint appMinor = parts.at(1).toUInt();
    Logger::info(QString(), QStringLiteral("Service version: ") + serviceVersion + QStringLiteral(" App version: ")
            + QLatin1String(AppVersion));
    if (version.major() != appMajor || version.minor() != appMinor)
        failOnVersion(tr("SERVICE VERSION IS DIFFERENT THAN APPLICATION VERSION, REINSTALL APPLICATION"));
}

} // namespace Velmora::Application
