#include "rest/RestRequest.h"

#include <QMap>

namespace REST {

QString requestTypeName(int type)
{
    static const QMap<int, QString> names = {{GET, QStringLiteral("GET")}, {POST, QStringLiteral("POST")},
        {PUT, QStringLiteral("PUT")}, {DELETE, QStringLiteral("DELETE")}, {PATCH, QStringLiteral("PATCH")},
        {HEAD, QStringLiteral("HEAD")}, {OPTIONS, QStringLiteral("OPTIONS")}};
    return names.value(type, QStringLiteral("Out of range"));
}

RestRequest::RestRequest(RequestType type, const QString& path)
    : m_type(type)
    , m_path(path)
{
}

void RestRequest::addQueryParameter(const QString& name, const QVariant& value)
{
    m_parameters.append({name, value, QueryParameter});
}

void RestRequest::addPathParameter(const QString& name, const QVariant& value)
{
    m_parameters.append({name, value, PathParameter});
}

void RestRequest::addHeader(const QString& name, const QVariant& value)
{
    m_parameters.append({name, value, HeaderParameter});
}

void RestRequest::addBody(const QString& contentType, const QByteArray& bytes)
{
    m_parameters.append({contentType, bytes, BodyParameter});
}

void RestRequest::addJsonBody(const QJsonDocument& document)
{
    addBody(QStringLiteral("application/json"), document.toJson());
}

void RestRequest::addFile(const QString& name, const QString& path, const QString& contentType)
{
    m_fileParameters.append({name, path, contentType});
}

QString RestRequest::description() const
{
    QString text = QStringLiteral("Request [%1 -> %2]").arg(requestTypeName(m_type), m_path);
    text += QStringLiteral("\n\tRest parameters: %1").arg(m_parameters.size());
    for (const RestParameter& parameter : m_parameters)
        text += QStringLiteral("\n\t[%1] -> [%2]").arg(parameter.name, parameter.value.toString());
    text += QStringLiteral("\n\tRest FILE parameters: %1").arg(m_fileParameters.size());
    for (const RestFileParameter& file : m_fileParameters)
        text += QStringLiteral("\n\t[%1] -> [%2 (%3)]").arg(file.name, file.path, file.contentType);
    return text;
}

bool RestRequest::operator==(const RestRequest& other) const
{
    return m_type == other.m_type && m_path == other.m_path && m_parameters == other.m_parameters
        && m_fileParameters == other.m_fileParameters;
}

} // namespace REST
