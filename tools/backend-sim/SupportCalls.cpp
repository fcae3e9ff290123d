#include "SupportCalls.h"

#include "Log.h"
#include "PictureMaker.h"

#include <QDateTime>
#include <QJsonDocument>

#include <httplib.h>

#include <algorithm>

namespace Velmora::BackendSim {

namespace {

constexpr int CaptchaLength = 5;
// Tickets are kept for the tests to inspect; the oldest go first.
constexpr int KeptTickets = 200;

const char* const JsonPartName = "application/json";

} // namespace

SupportCalls::SupportCalls(const QString& fixedCaptchaText)
    : m_fixedCaptchaText(fixedCaptchaText)
{
}

void SupportCalls::addRoutes(Router& router)
{
    router.route("GET", QStringLiteral("captcha.php"), QStringLiteral("captcha\\.php"), Access::Open,
                 [this](Exchange& exchange) { captcha(exchange); });
    router.route("POST", QStringLiteral("support"), QStringLiteral("support"), Access::WithSession,
                 [this](Exchange& exchange) { support(exchange); });
    router.admin("GET", QStringLiteral("captcha"), [this](Exchange& exchange) { currentCaptcha(exchange); });
    router.admin("GET", QStringLiteral("tickets"), [this](Exchange& exchange) { tickets(exchange); });
}

void SupportCalls::captcha(Exchange& exchange)
{
    const QString text =
        m_fixedCaptchaText.isEmpty() ? PictureMaker::randomCaptchaText(CaptchaLength) : m_fixedCaptchaText;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_captchaText = text;
    }
    Log::info(QStringLiteral("captcha issued: %1").arg(text));
    exchange.replyBytes(200, PictureMaker::captchaPng(text), "image/png");
}

void SupportCalls::support(Exchange& exchange)
{
    QJsonObject request;
    QJsonArray attachments;
    if (!readTicket(exchange, &request, &attachments))
        return;

    std::lock_guard<std::mutex> lock(m_mutex);
    const QString expected = m_captchaText;
    m_captchaText.clear();
    const QString typed = request.value(QStringLiteral("captcha")).toString().trimmed();
    if (expected.isEmpty() || typed.compare(expected, Qt::CaseInsensitive) != 0) {
        exchange.refuse(418, expected.isEmpty() ? QStringLiteral("no captcha was issued for this ticket")
                                                : QStringLiteral("captcha '%1' is wrong").arg(typed));
        return;
    }

    const int id = ++m_lastTicketId;
    QJsonObject ticket = request;
    ticket.remove(QStringLiteral("captcha"));
    ticket.insert(QStringLiteral("id"), id);
    ticket.insert(QStringLiteral("attachments"), attachments);
    ticket.insert(QStringLiteral("received"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    m_tickets.append(ticket);
    while (m_tickets.size() > KeptTickets)
        m_tickets.removeFirst();
    Log::info(QStringLiteral("support ticket %1 created with %2 attachment(s)").arg(id).arg(attachments.size()));
    exchange.replyJson(201, QJsonDocument(QJsonObject{{QStringLiteral("id"), id}}));
}

bool SupportCalls::readTicket(Exchange& exchange, QJsonObject* request, QJsonArray* attachments)
{
    const httplib::Request& http = exchange.request();
    QByteArray json;
    if (http.is_multipart_form_data()) {
        // The request travels in the part named after its content type; a client that names
        // the part otherwise is still understood by the part's type.
        auto requestPart = http.files.find(JsonPartName);
        if (requestPart == http.files.end()) {
            requestPart = std::find_if(http.files.begin(), http.files.end(), [](const auto& item) {
                return QString::fromStdString(item.second.content_type).startsWith(QLatin1String(JsonPartName));
            });
        }
        if (requestPart == http.files.end()) {
            exchange.refuse(400, QStringLiteral("multi-part ticket has no \"application/json\" part"));
            return false;
        }
        json = QByteArray::fromStdString(requestPart->second.content);
        for (auto it = http.files.begin(); it != http.files.end(); ++it) {
            if (it == requestPart)
                continue;
            const httplib::MultipartFormData& part = it->second;
            attachments->append(QJsonObject{
                {QStringLiteral("name"), QString::fromStdString(part.name)},
                {QStringLiteral("filename"), QString::fromStdString(part.filename)},
                {QStringLiteral("contentType"), QString::fromStdString(part.content_type)},
                {QStringLiteral("size"), double(part.content.size())},
                // The head of the content, for tests that check what arrived.
                {QStringLiteral("head"), QString::fromLatin1(QByteArray::fromStdString(part.content.substr(0, 256)))}});
        }
    } else if (exchange.header("Content-Type").startsWith(QLatin1String(JsonPartName))) {
        json = exchange.body();
    } else {
        exchange.refuse(400, QStringLiteral("ticket is neither multi-part nor JSON (Content-Type '%1')")
                                 .arg(exchange.header("Content-Type")));
        return false;
    }

    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (!document.isObject()) {
        exchange.refuse(400, QStringLiteral("ticket request is not a JSON object (%1)").arg(parseError.errorString()));
        return false;
    }
    *request = document.object();
    for (const char* key : {"message", "diskSerialNumber", "email", "captcha"}) {
        if (!request->value(QLatin1String(key)).isString()) {
            exchange.refuse(400, QStringLiteral("ticket request lacks the string \"%1\"").arg(QLatin1String(key)));
            return false;
        }
    }
    return true;
}

void SupportCalls::currentCaptcha(Exchange& exchange)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_captchaText.isEmpty()) {
        exchange.refuse(404, QStringLiteral("no captcha issued since the last ticket"));
        return;
    }
    exchange.replyJson(200, QJsonDocument(QJsonObject{{QStringLiteral("text"), m_captchaText}}));
}

void SupportCalls::tickets(Exchange& exchange)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    exchange.replyJson(200, QJsonDocument(m_tickets));
}

} // namespace Velmora::BackendSim
