#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace REST {

enum RequestType { GET = 0, POST = 1, PUT = 2, DELETE = 3, PATCH = 4, HEAD = 5, OPTIONS = 6 };

// The verb's text for logs; "Out of range" for a number that is no verb.
QString requestTypeName(int type);

enum ParameterKind { QueryParameter = 0, PathParameter = 1, HeaderParameter = 2, BodyParameter = 3 };

struct RestParameter {
    QString name;  // the content type, for a body
    QVariant value;
    ParameterKind kind;
    bool operator==(const RestParameter& other) const
    {
        return name == other.name && value == other.value && kind == other.kind;
    }
};

struct RestFileParameter {
    QString name;
    QString path;
    QString contentType;
    bool operator==(const RestFileParameter& other) const
    {
        return name == other.name && path == other.path && contentType == other.contentType;
    }
};

// What one web call is: a verb, a path relative to the back-end's base address (it may hold
// {name} placeholders), parameters of four kinds and file attachments, each in the order added.
class RestRequest
{
public:
    explicit RestRequest(RequestType type = GET, const QString& path = QString());

    RequestType type() const { return m_type; }
    QString path() const { return m_path; }
    const QList<RestParameter>& parameters() const { return m_parameters; }
    const QList<RestFileParameter>& fileParameters() const { return m_fileParameters; }

    void addQueryParameter(const QString& name, const QVariant& value);
    void addPathParameter(const QString& name, const QVariant& value);
    void addHeader(const QString& name, const QVariant& value);
    void addBody(const QString& contentType, const QByteArray& bytes);
    void addJsonBody(const QJsonDocument& document);
    void addFile(const QString& name, const QString& path, const QString& contentType);

    QString description() const;

    bool operator==(const RestRequest& other) const;
    bool operator!=(const RestRequest& other) const { return !(*this == other); }

private:
    RequestType m_type;
    QString m_path;
    QList<RestParameter> m_parameters;
    QList<RestFileParameter> m_fileParameters;
};

} // namespace REST
