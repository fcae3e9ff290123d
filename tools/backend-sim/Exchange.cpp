#include "Exchange.h"

#include "Log.h"

#include <QJsonObject>

#include <httplib.h>

namespace Velmora::BackendSim {

Exchange::Exchange(const httplib::Request& request, httplib::Response& response, const QString& call,
                   const QString& publicBase)
    : m_request(request)
    , m_response(response)
    , m_call(call)
    , m_publicBase(publicBase)
{
}

QString Exchange::query(const char* name) const
{
    const QStringList values = queryValues(name);
    return values.isEmpty() ? QString() : values.last();
}

QStringList Exchange::queryValues(const char* name) const
{
    // httplib keeps repeated items in arrival order within the multimap's equal range.
    QStringList values;
    const auto range = m_request.params.equal_range(name);
    for (auto it = range.first; it != range.second; ++it)
        values.append(QString::fromStdString(it->second));
    return values;
}

QString Exchange::header(const char* name) const
{
    return QString::fromStdString(m_request.get_header_value(name));
}

QByteArray Exchange::body() const
{
    return QByteArray::fromStdString(m_request.body);
}

QString Exchange::match(int index) const
{
    if (index < 0 || size_t(index) >= m_request.matches.size())
        return QString();
    return QString::fromStdString(m_request.matches[size_t(index)].str());
}

void Exchange::replyJson(int status, const QJsonDocument& document)
{
    replyBytes(status, document.toJson(QJsonDocument::Compact), "application/json");
}

void Exchange::replyBytes(int status, const QByteArray& bytes, const char* contentType)
{
    m_response.status = status;
    m_response.set_content(bytes.constData(), size_t(bytes.size()), contentType);
}

void Exchange::refuse(int status, const QString& reason)
{
    Log::warning(QStringLiteral("%1 %2 refused with %3: %4")
                     .arg(QString::fromStdString(m_request.method), m_call)
                     .arg(status)
                     .arg(reason));
    replyJson(status, QJsonDocument(QJsonObject{{QStringLiteral("error"), reason}}));
}

int Exchange::status() const
{
    return m_response.status;
}

} // namespace Velmora::BackendSim
