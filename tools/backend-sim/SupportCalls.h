#pragma once

#include "Exchange.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <mutex>

namespace Velmora::BackendSim {

// "captcha.php" draws a picture and remembers its text; POST "support" takes a ticket, as a
// multi-part form whose "application/json" part holds the request and whose other parts are
// attachments (or, without attachments, as a plain JSON body). A remembered text is good for
// one ticket: right gives 201 with the ticket's id, wrong or missing gives 418.
class SupportCalls {
public:
    explicit SupportCalls(const QString& fixedCaptchaText);
    void addRoutes(Router& router);

private:
    void captcha(Exchange& exchange);
    void support(Exchange& exchange);
    void currentCaptcha(Exchange& exchange);
    void tickets(Exchange& exchange);

    // The request object and the attachments' descriptions; false after refusing the request.
    bool readTicket(Exchange& exchange, QJsonObject* request, QJsonArray* attachments);

    const QString m_fixedCaptchaText;
    std::mutex m_mutex;
    QString m_captchaText; // empty: none issued since the last ticket
    int m_lastTicketId = 1000;
    QJsonArray m_tickets;
};

} // namespace Velmora::BackendSim
