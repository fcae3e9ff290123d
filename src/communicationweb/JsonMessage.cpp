#include "communicationweb/JsonMessage.h"

#include "logger/Logger.h"

#include <QMetaProperty>

namespace Velmora::CommunicationWeb {

JsonMessage::JsonMessage(QObject* parent)
    : QObject(parent)
{
}

bool JsonMessage::readProperties(QObject* target, const QJsonObject& object, bool stopAtFirstMissing)
{
    const QMetaObject* meta = target->metaObject();
    bool complete = true;
    // Index 0 is objectName, which is no key of ours.
    for (int index = 1; index < meta->propertyCount(); ++index) {
        const QMetaProperty property = meta->property(index);
        const QJsonValue value = object.value(QLatin1String(property.name()));
        if (value.isUndefined()) {
            complete = false;
            if (stopAtFirstMissing)
                return false;
            continue;
        }
        // A value of another type is left to Qt's conversion; what does not convert stays as it was.
        property.write(target, value.toVariant());
    }
    return complete;
}

bool JsonMessage::fromJson(const QJsonDocument& document)
{
    if (document.isNull())
        return false;
    return readProperties(this, document.object(), false);
}

bool JsonMessage::fromJson(const QString& text)
{
    return fromJson(QJsonDocument::fromJson(text.toUtf8()));
}

QJsonDocument JsonMessage::toJson()
{
    QJsonObject object;
    const QMetaObject* meta = metaObject();
    for (int index = 1; index < meta->propertyCount(); ++index) {
        const QMetaProperty property = meta->property(index);
        object.insert(QLatin1String(property.name()), QJsonValue::fromVariant(property.read(this)));
    }
    const QJsonDocument document(object);
    Logger::debug(QString(), QStringLiteral("Serialized class: %1").arg(QString::fromUtf8(document.toJson())));
    return document;
}

QString JsonMessage::toString()
{
    const QByteArray text = toJson().toJson();
    const int zero = text.indexOf('\0');
    return QString::fromLatin1(zero < 0 ? text : text.left(zero));
}

} // namespace Velmora::CommunicationWeb
