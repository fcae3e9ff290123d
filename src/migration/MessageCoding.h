#pragma once

#include "logger/Logger.h"
#include "message/Payload.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <google/protobuf/repeated_field.h>

#include <string>

// Small conversions between the service's messages and Qt types, shared by the migration classes.
namespace Velmora::Migration {

using Velmora::Message::fromUtf8;
using Velmora::Message::toPayload;

inline std::string toUtf8(const QString& text)
{
    return text.toStdString();
}

inline QStringList toStringList(const google::protobuf::RepeatedPtrField<std::string>& list)
{
    QStringList result;
    result.reserve(list.size());
    for (const std::string& item : list)
        result.append(fromUtf8(item));
    return result;
}

inline void appendAll(google::protobuf::RepeatedPtrField<std::string>* field, const QStringList& items)
{
    for (const QString& item : items)
        field->Add(toUtf8(item));
}

// Parses a payload, or logs `failure` at error level and says no.
template <typename T>
bool parsed(T& message, const QByteArray& payload, const char* failure)
{
    if (message.ParseFromArray(payload.constData(), payload.size()))
        return true;
    Logger::error(QString(), QString::fromLatin1(failure));
    return false;
}

} // namespace Velmora::Migration
