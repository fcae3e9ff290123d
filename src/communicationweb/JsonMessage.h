#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QObject>
#include <QString>

namespace Velmora::CommunicationWeb {

// Base of every body exchanged with the web back-end. The Qt properties of a derived class are the
// JSON keys, so a new message is nothing but a property list.
class JsonMessage : public QObject
{
    Q_OBJECT

public:
    explicit JsonMessage(QObject* parent = nullptr);

    // False for a null document or when any property's key is missing; the keys that are present
    // are set all the same. Extra keys are ignored and a null value counts as present.
    virtual bool fromJson(const QJsonDocument& document);
    virtual bool fromJson(const QString& text);
    virtual QJsonDocument toJson();
    virtual QString toString();

protected:
    // Sets every property of `target` (objectName excepted) from `object`. With `stopAtFirstMissing`
    // the walk ends at the first missing key; otherwise it goes on and only the result records it.
    static bool readProperties(QObject* target, const QJsonObject& object, bool stopAtFirstMissing);
};

} // namespace Velmora::CommunicationWeb
