#pragma once

#include "communicationweb/TarnWebHandler.h"

#include <QMetaType>
#include <QString>

class QTimer;

namespace Velmora::Smart {
class SmartManager;
}
namespace Velmora::System {
class SystemManager;
}

namespace Velmora::Support {

class SupportServiceHandler;
class SupportTicket;

enum SupportStatus {
    Idle = 0,
    CopyingServiceLogs = 1,
    CollectingReports = 2,
    PostingTicket = 3,
    Accepted = 4,
    Rejected = 5,
    ConnectionFailed = 6,
    TimedOut = 7,
    InvalidCaptcha = 8
};

// Runs one support ticket at a time: the service copies its logs into the ticket's folder, a
// worker writes the program's reports and copies its logs beside them, then the ticket is posted.
// Only "version.txt" travels with it; the rest stays on the machine and goes with the folder. A
// ticket is never sent twice: a lost post is final, and one watchdog bounds the whole run.
class SupportManager : public CommunicationWeb::TarnWebHandler
{
    Q_OBJECT

public:
    static constexpr int WatchdogInterval = 120000;

    SupportManager(System::SystemManager* systemManager, Smart::SmartManager* smartManager,
        SupportServiceHandler* supportServiceHandler, REST::RestClient* restClient,
        CommunicationWeb::TarnAuthorizationService* authorizationService, QObject* parent = nullptr);

    SupportStatus status() const { return m_status; }
    // The current ticket, or null.
    SupportTicket* ticket() const { return m_ticket; }
    int watchdogInterval() const;
    void setWatchdogInterval(int milliseconds);

public slots:
    void createSupportTicket(QString message, QString email, QString diskSerialNr, QString captcha);

signals:
    void statusChanged(Velmora::Support::SupportStatus status);

private slots:
    bool onRestResponseReceived(REST::RestResponse* response) override;
    void onServiceLogFilesCopied(uint filesCopied, QString serviceLogFileBaseName);
    void onWatchdogTimeout();

private:
    void setStatus(SupportStatus status);
    void postTicket();
    SupportStatus readAnswer(const REST::RestResponse& response);
    void dropTicket();

    System::SystemManager* m_systemManager;
    Smart::SmartManager* m_smartManager;
    SupportServiceHandler* m_supportServiceHandler;
    SupportTicket* m_ticket = nullptr;
    SupportStatus m_status = Idle;
    QTimer* m_watchdog;
};

} // namespace Velmora::Support

Q_DECLARE_METATYPE(Velmora::Support::SupportStatus)
